#include "screens/shapes/DlgShapeFromTxt.h"

#include "common/UnitConverter.h"
#include "config/AppConfig.h"
#include "screens/host/PressedBtn.h"
#include "shapes/PolygonEdit.h"
#include "shapes/TextTrace.h"
#include "ui_DlgShapeFromTxt.h"
#include "widgets/ButtonStyle.h"
#include "widgets/DlgTextPad.h"
#include "widgets/Look.h"

#include <QAbstractItemView>

static constexpr double STEP_MM = 10.0;
static constexpr double STEP_TURN = 0.17453333333333335, FULL_TURN = 6.2832;   // radians, by the system's own pi
static constexpr double LARGEST_TEXT = 1000.0, WIDEST_SPACING = 100.0, DEEPEST = -1000.0;

CDlgShapeFromTxt::CDlgShapeFromTxt(CShapeHost& screen, QWidget* pParent)
    : CDlgShapeSource(screen, pParent), m_pUi(std::make_unique<Ui::CDlgShapeFromTxt>())
{
    m_pUi->setupUi(this);
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setStyleSheet(BTN_BKGND_GRAY);
    m_pUi->Cmb_FontSelection->setEditable(false);                 // a finger chooses from the list
    m_pUi->Cmb_FontSelection->view()->setFont(CLook::Font(24));   // whose rows are as high as their letters
    new CTextPadOpener(m_pUi->TextToCut, QStringLiteral("Text to cut"));
}

CDlgShapeFromTxt::~CDlgShapeFromTxt() = default;

void CDlgShapeFromTxt::ConfigSettings()
{
    ShowNumber(m_pUi->Btn_TextSize, {.strCaption = QStringLiteral("Text Size")}, static_cast<double>(m_fTextSize));
    ShowNumber(m_pUi->Btn_TextPos_X, {.strCaption = QStringLiteral("Position X")}, m_stTextPos.x);
    ShowNumber(m_pUi->Btn_TextPos_Y, {.strCaption = QStringLiteral("Position Y")}, m_stTextPos.y);
    ShowNumber(m_pUi->Btn_TextDepth, {.strCaption = QStringLiteral("Depth")}, static_cast<double>(m_fTextDepth));
    ShowNumber(m_pUi->Btn_Orientation, {.strCaption = QStringLiteral("Degree")}, 0.0);
    ShowNumber(m_pUi->Btn_LineSpacing, {.strCaption = QStringLiteral("Spacing")}, 0.0);
    m_pUi->TextToCut->setFocus();
}

// ---- Tracing --------------------------------------------------------------------------------------------------------

void CDlgShapeFromTxt::FindContours()
{
    const bool bNone = Job().Added().empty();
    Job().EraseAdded();
    const QString strText = m_pUi->TextToCut->toPlainText();
    if (strText.isEmpty() && bNone) return;
    const stTextToTrace text{.strText = strText,
                             .font = m_pUi->Cmb_FontSelection->currentFont(),
                             .fTextSize = m_fTextSize,
                             .fLineSpacing = m_fLineSpacing,
                             .bBold = m_bBold,
                             .bItalic = m_bItalic,
                             .stTextPos = m_stTextPos};
    for (ShapePath& path : TraceText(text, Screen().Scale())) {
        const QString strName = QStringLiteral("Text_%1").arg(Job().Count());
        Job().AddPolygon(strName, std::move(path)).fDepth = static_cast<double>(m_fTextDepth);
    }
    if (!Job().Added().empty()) {
        m_stTextCentre = MiddleOf(Job().Added());
        ChangeShapeOrientation(m_stTextPos.z);
    }
    // Letters outside of the picture, or of a font that draws nothing: the empty drawing must not be taken for a fault.
    m_pUi->Lbl_Found->setText(strText.isEmpty() ? QString() : QStringLiteral("%1 shapes").arg(Job().Added().size()));
    Screen().DrawWorkArea();
}

void CDlgShapeFromTxt::on_TextToCut_textChanged()
{
    FindContours();
}

void CDlgShapeFromTxt::on_Cmb_FontSelection_currentFontChanged(const QFont&)
{
    FindContours();
}

void CDlgShapeFromTxt::on_Btn_TextBoldSel_clicked()
{
    m_bBold = !m_bBold;
    m_pUi->Btn_TextBoldSel->setStyleSheet(m_bBold ? BTN_BKGND_GREEN : BTN_BKGND_GRAY);
    FindContours();
}

void CDlgShapeFromTxt::on_Btn_TextItalicSel_clicked()
{
    m_bItalic = !m_bItalic;
    m_pUi->Btn_TextItalicSel->setStyleSheet(m_bItalic ? BTN_BKGND_GREEN : BTN_BKGND_GRAY);
    FindContours();
}

void CDlgShapeFromTxt::on_Btn_TextSize_clicked()
{
    const auto fNew = AskNumber(Host(), m_pUi->Btn_TextSize,
                                {.strTitle = QStringLiteral("Text Size(mm)"),
                                 .strCaption = QStringLiteral("Text Size"),
                                 .fRange = Range(1.0, LARGEST_TEXT)},
                                static_cast<double>(m_fTextSize));
    if (!fNew) return;
    m_fTextSize = static_cast<float>(*fNew);
    FindContours();
    Screen().DrawWorkArea();
}

void CDlgShapeFromTxt::on_Btn_LineSpacing_clicked()
{
    const double fScale = Screen().Scale().fPixPerMM;
    const auto fNew = AskNumber(Host(), m_pUi->Btn_LineSpacing,
                                {.strTitle = QStringLiteral("Line Spacing(mm)"),
                                 .strCaption = QStringLiteral("Spacing"),
                                 .fRange = Range(0.0, WIDEST_SPACING)},
                                static_cast<double>(m_fLineSpacing) / fScale);
    if (!fNew) return;
    m_fLineSpacing = static_cast<float>(*fNew * fScale);
    FindContours();
}

void CDlgShapeFromTxt::on_Btn_TextDepth_clicked()
{
    const auto fNew = AskNumber(Host(), m_pUi->Btn_TextDepth,
                                {.strTitle = QStringLiteral("Text Depth(mm)"),
                                 .strCaption = QStringLiteral("Depth"),
                                 .fRange = DepthRange(DEEPEST),
                                 .bSign = true},
                                static_cast<double>(m_fTextDepth));
    if (!fNew) return;
    m_fTextDepth = static_cast<float>(*fNew);
    Job().SetAddedDepth(static_cast<double>(m_fTextDepth));
}

// ---- Place and turn -------------------------------------------------------------------------------------------------

// The turn comes before the centre moves, so it goes about the old centre: wanted.
void CDlgShapeFromTxt::UpdateTextPos(const stFloatPoint& newPos)
{
    if (!Job().Added().empty()) {
        const double fX = newPos.x - m_stTextPos.x, fY = newPos.y - m_stTextPos.y;
        for (const stEngShape& shape : Job().Added()) ShiftShape(shape.pPolygon->lstVertices, fX, fY);
        if (CUnitConverter::GetLong(newPos.z) != CUnitConverter::GetLong(m_stTextPos.z))
            ChangeShapeOrientation(newPos.z - m_stTextPos.z);
        m_stTextCentre.x += fX;
        m_stTextCentre.y += fY;
        Screen().DrawWorkArea();
    }
    m_stTextPos = newPos;
}

void CDlgShapeFromTxt::ChangeShapeOrientation(double fAngle)
{
    for (const stEngShape& shape : Job().Added()) TurnShape(shape.pPolygon->lstVertices, fAngle, m_stTextCentre);
}

stFloatPoint CDlgShapeFromTxt::FarthestPos() const
{
    const stDisplayScale& scale = Screen().Scale();
    return Range((scale.size.width() - scale.iMargin) / scale.fPixPerMM,
                 (scale.size.height() - scale.iMargin) / scale.fPixPerMM);
}

void CDlgShapeFromTxt::AskPos(QPushButton* pButton, const QString& strName, double stFloatPoint::*pAxis)
{
    stFloatPoint newPos = m_stTextPos;
    const auto fNew = AskNumber(Host(), pButton,
                                {.strTitle = strName + QStringLiteral("(mm)"),
                                 .strCaption = strName,
                                 .fRange = Range(0.0, FarthestPos().*pAxis)},
                                newPos.*pAxis);
    if (!fNew || CUnitConverter::GetLong(*fNew) == CUnitConverter::GetLong(newPos.*pAxis)) return;
    newPos.*pAxis = *fNew;
    UpdateTextPos(newPos);
}

void CDlgShapeFromTxt::on_Btn_TextPos_X_clicked()
{
    AskPos(m_pUi->Btn_TextPos_X, QStringLiteral("Position X"), &stFloatPoint::x);
}

void CDlgShapeFromTxt::on_Btn_TextPos_Y_clicked()
{
    AskPos(m_pUi->Btn_TextPos_Y, QStringLiteral("Position Y"), &stFloatPoint::y);
}

void CDlgShapeFromTxt::on_Btn_Orientation_clicked()
{
    stFloatPoint newPos = m_stTextPos;
    const auto fNew = AskNumber(Host(), m_pUi->Btn_Orientation,
                                {.strTitle = QStringLiteral("Degree"),
                                 .strCaption = QStringLiteral("Degree"),
                                 .fRange = Range(-360.0, 360.0),
                                 .bSign = true},
                                newPos.z * SHAPE_DEGREES_PER_RADIAN);
    if (!fNew) return;
    newPos.z = *fNew * SHAPE_RADIANS_PER_DEGREE;
    UpdateTextPos(newPos);
}

void CDlgShapeFromTxt::Step(QPushButton* pStep, QPushButton* pShown, const QString& strName,
                            double stFloatPoint::*pAxis, double fStep)
{
    const CPressedBtn press(Host(), pStep);
    stFloatPoint newPos = m_stTextPos;
    newPos.*pAxis += fStep;
    if (newPos.*pAxis > FarthestPos().*pAxis || newPos.*pAxis < 0.0) return;
    UpdateTextPos(newPos);
    ShowNumber(pShown, {.strCaption = strName}, newPos.*pAxis);
}

void CDlgShapeFromTxt::on_Btn_PosX_Inc_clicked()
{
    Step(m_pUi->Btn_PosX_Inc, m_pUi->Btn_TextPos_X, QStringLiteral("Postion X"), &stFloatPoint::x, STEP_MM);
}

void CDlgShapeFromTxt::on_Btn_PosX_Dec_clicked()
{
    Step(m_pUi->Btn_PosX_Dec, m_pUi->Btn_TextPos_X, QStringLiteral("Postion X"), &stFloatPoint::x, -STEP_MM);
}

void CDlgShapeFromTxt::on_Btn_PosY_Inc_clicked()
{
    Step(m_pUi->Btn_PosY_Inc, m_pUi->Btn_TextPos_Y, QStringLiteral("Postion Y"), &stFloatPoint::y, STEP_MM);
}

void CDlgShapeFromTxt::on_Btn_PosY_Dec_clicked()
{
    Step(m_pUi->Btn_PosY_Dec, m_pUi->Btn_TextPos_Y, QStringLiteral("Postion Y"), &stFloatPoint::y, -STEP_MM);
}

// A whole turn is none again.
void CDlgShapeFromTxt::StepTurn(QPushButton* pStep, double fStep)
{
    const CPressedBtn press(Host(), pStep);
    stFloatPoint newPos = m_stTextPos;
    newPos.z += fStep;
    if (newPos.z > FULL_TURN || newPos.z < -FULL_TURN) newPos.z = 0.0;
    UpdateTextPos(newPos);
    ShowNumber(m_pUi->Btn_Orientation, {.strCaption = QStringLiteral("Degree")}, newPos.z * SHAPE_DEGREES_PER_RADIAN);
}

void CDlgShapeFromTxt::on_Btn_Orientation_CW_clicked()
{
    StepTurn(m_pUi->Btn_Orientation_CW, STEP_TURN);
}

void CDlgShapeFromTxt::on_Btn_Orientation_CCW_clicked()
{
    StepTurn(m_pUi->Btn_Orientation_CCW, -STEP_TURN);
}

// ---- End ------------------------------------------------------------------------------------------------------------

void CDlgShapeFromTxt::Keep()
{
    Finish();
}

void CDlgShapeFromTxt::on_Btn_Ok_clicked()
{
    Keep();
}

void CDlgShapeFromTxt::on_Btn_Cancel_clicked()
{
    Job().EraseAdded();
    Screen().DrawWorkArea();
    Finish();
}
