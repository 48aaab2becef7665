#include "screens/shapes/DlgEditPolygon.h"

#include "screens/host/PressedBtn.h"
#include "screens/shapes/DlgEditPolygonVertex.h"
#include "shapes/PolygonEdit.h"
#include "ui_DlgEditPolygon.h"
#include "widgets/ButtonStyle.h"

#include <algorithm>
#include <cmath>
#include <utility>

static constexpr double FARTHEST = 10000.0, SMALLEST_SCALE = 0.01, LARGEST_SCALE = 1000.0;
static constexpr double REACH_MM = 3.0, REACH_PIXELS = 8.0;   // of a finger on the drawing

static QString VertexText(const stFloatPoint& pos)
{
    return QString::number(pos.x, 'f', PRECISION) + QLatin1Char(',') + QString::number(pos.y, 'f', PRECISION);
}

CDlgEditPolygon::CDlgEditPolygon(CShapeHost& screen, QWidget* pParent)
    : CDlgShapeSource(screen, pParent), m_pUi(std::make_unique<Ui::CDlgEditPolygon>())
{
    m_pUi->setupUi(this);
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setStyleSheet(BTN_BKGND_GRAY);
}

CDlgEditPolygon::~CDlgEditPolygon() = default;

void CDlgEditPolygon::ConfigSettings()
{
    m_pUi->Btn_ShapeOffsetX->setText(QStringLiteral("0.000\nOffset X"));
    m_pUi->Btn_ShapeOffsetY->setText(QStringLiteral("0.000\nOffset Y"));
    m_pUi->Btn_ShapeOrientation->setText(QStringLiteral("0.000\nAngle(deg)"));
    m_pUi->Btn_ShapeScale->setText(QStringLiteral("1.000\nScale"));
    m_pUi->Btn_BkGndImg->setStyleSheet(BTN_BKGND_GRAY);
    m_fOffsetX = m_fOffsetY = m_fOrientation = 0.0;
    m_fScale = 1.0;
    m_Before = Polygon() ? *Polygon() : stPolygon();
    m_pUi->Lbl_Name->setText(m_Before.strShapeName);
    m_iVertex = -1;
    UpdatePolyVertices();
}

stPolygon* CDlgEditPolygon::Polygon() const
{
    return Job().PolygonAt(m_uIndex);
}

// ---- List -----------------------------------------------------------------------------------------------------------

// Only rows that differ are written: it runs for every movement of a finger that drags.
void CDlgEditPolygon::UpdatePolyVertices()
{
    const ShapePath path = Polygon() ? Polygon()->lstVertices : ShapePath();
    QListWidget& list = *m_pUi->LW_PolygonVertices;
    const int iCount = static_cast<int>(path.size());
    while (list.count() > iCount) delete list.takeItem(list.count() - 1);
    for (int iRow = 0; iRow < iCount; ++iRow) {
        const QString strText = VertexText(path[static_cast<size_t>(iRow)]);
        if (iRow >= list.count())
            list.addItem(strText);
        else if (list.item(iRow)->text() != strText)
            list.item(iRow)->setText(strText);
    }
    list.setCurrentRow(m_iVertex);
}

int CDlgEditPolygon::CurrentVertex() const
{
    const int iRow = m_pUi->LW_PolygonVertices->currentRow();
    return Polygon() && iRow >= 0 && static_cast<size_t>(iRow) < Polygon()->lstVertices.size() ? iRow : -1;
}

void CDlgEditPolygon::SelectRow(int iRow)
{
    m_pUi->LW_PolygonVertices->setCurrentRow(iRow);
    m_iVertex = iRow;
}

void CDlgEditPolygon::AfterChange()
{
    UpdatePolyVertices();
    Screen().DrawWorkArea();
}

// The nearest vertex within a finger's reach; of several at one place the first.
void CDlgEditPolygon::LWSelectString(const stFloatPoint& point)
{
    if (!Polygon()) return;
    const ShapePath& path = Polygon()->lstVertices;
    double fBest = std::max(REACH_MM, REACH_PIXELS / Screen().Scale().fPixPerMM);
    int iBest = -1;
    for (size_t n = 0; n < path.size(); ++n) {
        const double fDistance = std::max(std::fabs(path[n].x - point.x), std::fabs(path[n].y - point.y));
        if (fDistance > fBest || (iBest >= 0 && fDistance == fBest)) continue;
        fBest = fDistance;
        iBest = static_cast<int>(n);
    }
    if (iBest >= 0) SelectRow(iBest);
}

void CDlgEditPolygon::OnPress(const stFloatPoint& at, Qt::MouseButton)
{
    LWSelectString(at);
    Screen().DrawWorkArea();
}

// The finger takes hold of what lies in a square of 6 mm around it.
static bool Holds(const stFloatPoint& at, const stFloatPoint& pos)
{
    static constexpr double HALF = 3.0;
    const auto IsIn = [](double fAt, double fPos) {   // on whole millimetres; a file may hold any number
        const double fOff = std::trunc(fPos) - (std::trunc(fAt) - HALF);
        return fOff >= 0.0 && fOff < 2.0 * HALF;
    };
    return IsIn(at.x, pos.x) && IsIn(at.y, pos.y);
}

void CDlgEditPolygon::OnDrag(const stFloatPoint& from, const stFloatPoint& to)
{
    stPolygon* pPolygon = Polygon();
    if (!pPolygon || m_iVertex < 0 || static_cast<size_t>(m_iVertex) >= pPolygon->lstVertices.size()) return;
    stFloatPoint& vertex = pPolygon->lstVertices[static_cast<size_t>(m_iVertex)];
    if (!Holds(from, vertex)) return;
    // The corner where a closed path begins and ends is one place.
    ShapePath& path = pPolygon->lstVertices;
    const bool bEnd = &vertex == &path.front() || &vertex == &path.back();
    const bool bClosed = path.front().x == path.back().x && path.front().y == path.back().y;
    vertex.x = to.x;
    vertex.y = to.y;
    if (bEnd && bClosed) path.front() = path.back() = stFloatPoint(vertex);
    UpdatePolyVertices();
}

void CDlgEditPolygon::on_LW_PolygonVertices_clicked(const QModelIndex&)
{
    m_iVertex = CurrentVertex();
    Screen().DrawWorkArea();
}

void CDlgEditPolygon::on_LW_PolygonVertices_doubleClicked(const QModelIndex&)
{
    const int iRow = CurrentVertex();
    if (iRow < 0) return;
    const auto uRow = static_cast<size_t>(iRow);
    CDlgEditPolygonVertex dialog(Host(), parentWidget());
    dialog.m_stVertex = Polygon()->lstVertices[uRow];
    dialog.ConfigSettings();
    dialog.exec();
    if (!dialog.m_bAccepted || !Polygon() || uRow >= Polygon()->lstVertices.size()) return;
    Polygon()->lstVertices[uRow] = dialog.m_stVertex;
    m_iVertex = iRow;
    AfterChange();
}

// ---- Vertices -------------------------------------------------------------------------------------------------------

void CDlgEditPolygon::SwapVertices(int iRow, int iOther)
{
    ShapePath& path = Polygon()->lstVertices;
    std::swap(path[static_cast<size_t>(iRow)], path[static_cast<size_t>(iOther)]);
    m_iVertex = iOther;
    AfterChange();
}

void CDlgEditPolygon::on_Btn_MovePtUp_clicked()
{
    if (const int iRow = CurrentVertex(); iRow > 0) SwapVertices(iRow, iRow - 1);
}

void CDlgEditPolygon::on_Btn_MovePtDown_clicked()
{
    const int iRow = CurrentVertex();
    if (iRow >= 0 && static_cast<size_t>(iRow) + 1 < Polygon()->lstVertices.size()) SwapVertices(iRow, iRow + 1);
}

void CDlgEditPolygon::on_Btn_DeletePt_clicked()
{
    const int iRow = CurrentVertex();
    if (iRow < 0) return;
    ShapePath& path = Polygon()->lstVertices;
    path.erase(path.begin() + iRow);
    m_iVertex = std::min(iRow, static_cast<int>(path.size()) - 1);
    AfterChange();
}

void CDlgEditPolygon::on_Btn_InsertPt_clicked()
{
    const int iAt = CurrentVertex() + 1;
    CDlgEditPolygonVertex dialog(Host(), parentWidget());
    dialog.ConfigSettings();
    dialog.exec();
    if (!dialog.m_bAccepted || !Polygon() || static_cast<size_t>(iAt) > Polygon()->lstVertices.size()) return;
    Polygon()->lstVertices.insert(Polygon()->lstVertices.begin() + iAt, dialog.m_stVertex);
    m_iVertex = iAt;
    AfterChange();
}

void CDlgEditPolygon::on_Btn_ClosePoly_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_ClosePoly, BTN_BKGND_GRAY, BTN_BKGND_BLUE);
    if (Polygon() && CloseShape(Polygon()->lstVertices)) AfterChange();
}

void CDlgEditPolygon::on_Btn_BkGndImg_clicked()
{
    Screen().ToggleBackground(m_pUi->Btn_BkGndImg);
}

// ---- The whole polygon ----------------------------------------------------------------------------------------------

std::optional<double> CDlgEditPolygon::AskTotal(QPushButton* pButton, const QString& strName, double fLow, double fHigh)
{
    if (!Polygon()) return std::nullopt;
    const stNumberField field{
        .strTitle = strName, .strCaption = strName, .fRange = Range(fLow, fHigh), .bSign = fLow < 0.0};
    const auto fNew = AskShown(Host(), pButton, field);
    if (fNew) ShowNumber(pButton, field, *fNew);
    return fNew;
}

void CDlgEditPolygon::on_Btn_ShapeOffsetX_clicked()
{
    const auto fNew = AskTotal(m_pUi->Btn_ShapeOffsetX, QStringLiteral("Offset X"), -FARTHEST, FARTHEST);
    if (!fNew) return;
    ShiftShape(Polygon()->lstVertices, *fNew - m_fOffsetX, 0.0);
    m_fOffsetX = *fNew;
    AfterChange();
}

void CDlgEditPolygon::on_Btn_ShapeOffsetY_clicked()
{
    const auto fNew = AskTotal(m_pUi->Btn_ShapeOffsetY, QStringLiteral("Offset Y"), -FARTHEST, FARTHEST);
    if (!fNew) return;
    ShiftShape(Polygon()->lstVertices, 0.0, *fNew - m_fOffsetY);
    m_fOffsetY = *fNew;
    AfterChange();
}

void CDlgEditPolygon::on_Btn_ShapeOrientation_clicked()
{
    const auto fNew = AskTotal(m_pUi->Btn_ShapeOrientation, QStringLiteral("Angle(deg)"), 0.0, 360.0);
    if (!fNew) return;
    const double fAngle = *fNew * SHAPE_RADIANS_PER_DEGREE;
    ChangeShapeOrientation(fAngle - m_fOrientation);
    m_fOrientation = fAngle;
}

void CDlgEditPolygon::on_Btn_ShapeScale_clicked()
{
    const auto fNew = AskTotal(m_pUi->Btn_ShapeScale, QStringLiteral("Scale"), SMALLEST_SCALE, LARGEST_SCALE);
    if (!fNew) return;
    SetShapeScale(*fNew / m_fScale);
    m_fScale = *fNew;
}

void CDlgEditPolygon::ChangeShapeOrientation(double fAngle)
{
    if (!Polygon()) return;
    TurnShape(Polygon()->lstVertices, fAngle, MiddleOf(Polygon()->lstVertices));
    AfterChange();
}

void CDlgEditPolygon::SetShapeScale(double fFactor)
{
    if (!Polygon()) return;
    ScaleShape(Polygon()->lstVertices, fFactor);
    AfterChange();
}

// ---- End ------------------------------------------------------------------------------------------------------------

void CDlgEditPolygon::Keep()
{
    Finish();
}

void CDlgEditPolygon::on_Btn_Ok_clicked()
{
    Keep();
}

void CDlgEditPolygon::on_Btn_Cancel_clicked()
{
    if (Polygon()) *Polygon() = m_Before;
    m_iVertex = -1;
    Screen().DrawWorkArea();
    Finish();
}
