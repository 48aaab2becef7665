#include "screens/shapes/DlgEllipse.h"

#include "config/AppConfig.h"
#include "shapes/EllipsePath.h"
#include "ui_DlgEllipse.h"
#include "widgets/ButtonStyle.h"

#include <QRectF>

#include <cmath>

static constexpr double FARTHEST_CENTER = 100000000.0, LARGEST_AXIS = 100000.0, LARGEST_STEP = 1000.0;
static constexpr double DEEPEST = -10000.0, FULL_TURN = 360.0;
static const QString TOOL_TOO_BIG = QStringLiteral("End-mill size too big. Please change the End-Mill");

CDlgEllipse::CDlgEllipse(CShapeHost& screen, QWidget* pParent)
    : CDlgShapeSource(screen, pParent), m_pUi(std::make_unique<Ui::CDlgEllipse>())
{
    m_pUi->setupUi(this);
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setStyleSheet(BTN_BKGND_GRAY);
}

CDlgEllipse::~CDlgEllipse() = default;

void CDlgEllipse::ConfigSettings()
{
    m_bAccepted = false;
    const stEllipse* pEllipse = Job().EllipseAt(m_uIndex);
    m_bHole = pEllipse && pEllipse->bHole && !pEllipse->bRing;
    m_pUi->Btn_EllipseHole->setStyleSheet(m_bHole ? BTN_BKGND_GREEN : BTN_BKGND_GRAY);
    if (pEllipse) m_pUi->Lbl_Name->setText(pEllipse->strShapeName);
    UpdateEllipseParams();
}

void CDlgEllipse::UpdateEllipseParams()
{
    stEllipse* pEllipse = Job().EllipseAt(m_uIndex);
    if (!pEllipse) return;
    ShowParams(*pEllipse);
    AfterChange();
}

void CDlgEllipse::ShowParams(const stEllipse& ellipse)
{
    const auto Show = [](QPushButton* pButton, const char* szName, double fValue) {
        ShowNumber(pButton, {.strCaption = QString::fromLatin1(szName)}, fValue);
    };
    Show(m_pUi->Btn_EllipseCenterX, "Center X", ellipse.stCenter.x);
    Show(m_pUi->Btn_EllipseCenterY, "Center Y", ellipse.stCenter.y);
    Show(m_pUi->Btn_EllipseMajorAxisDia, "Major Axis Dia", ellipse.fMajorAxisDia);
    Show(m_pUi->Btn_EllipseMinorAxisDia, "Minor Axis Dia", ellipse.fMinorAxisDia);
    Show(m_pUi->Btn_EllipseOrientation, "Orientation(deg)", ellipse.fOrientation);
    Show(m_pUi->Btn_EllipseDepth, "Depth", ellipse.fDepth);
    Show(m_pUi->Btn_EllipseXStep, "X Step", ellipse.fXAxisStep);
    Show(m_pUi->Btn_ArcStartAngle, "Arc Start Angle", ellipse.fArcStartAngle);
    Show(m_pUi->Btn_ArcEndAngle, "Arc End Angle", ellipse.fArcEndAngle);
}

void CDlgEllipse::UpdateEllipse()
{
    Screen().CreateEllipsePoints(static_cast<quint32>(m_uIndex));
    Screen().DrawWorkArea();
}

// Left where they are, the rings would clear another place than the outline.
void CDlgEllipse::AfterChange()
{
    if (m_bHole) {
        m_bHole = false;
        Job().EraseRings(m_uIndex);
        on_Btn_EllipseHole_clicked();
    }
    if (!m_bHole) UpdateEllipse();
}

void CDlgEllipse::OnDrag(const stFloatPoint& from, const stFloatPoint& to)
{
    stEllipse* pEllipse = Job().EllipseAt(m_uIndex);
    if (!pEllipse) return;
    const QRectF axes(pEllipse->stCenter.x - pEllipse->fMajorAxisDia / 2.0,
                      pEllipse->stCenter.y - pEllipse->fMinorAxisDia / 2.0, pEllipse->fMajorAxisDia,
                      pEllipse->fMinorAxisDia);
    if (!axes.contains(QPointF(from.x, from.y))) return;
    pEllipse->stCenter.x = to.x;
    pEllipse->stCenter.y = to.y;
    UpdateEllipseParams();
}

// ---- Numbers --------------------------------------------------------------------------------------------------------

bool CDlgEllipse::Ask(QPushButton* pButton, const QString& strName, const QString& strUnit, stFloatPoint range,
                      double& fField, bool bSign)
{
    const stNumberField field{
        .strTitle = strName + strUnit, .strCaption = strName, .fRange = range, .bSign = bSign, .iDecimals = PRECISION};
    const auto fNew = AskShown(Host(), pButton, field);
    if (!fNew || !IsRunning()) return false;   // the screen may have gone under the keypad, with all as it was
    fField = *fNew;
    ShowNumber(pButton, field, fField);
    return true;
}

void CDlgEllipse::on_Btn_EllipseCenterX_clicked()
{
    stEllipse* pEllipse = Job().EllipseAt(m_uIndex);
    if (pEllipse && Ask(m_pUi->Btn_EllipseCenterX, QStringLiteral("Center X"), QStringLiteral("(mm)"),
                        Range(0.01, FARTHEST_CENTER), pEllipse->stCenter.x))
        AfterChange();
}

void CDlgEllipse::on_Btn_EllipseCenterY_clicked()
{
    stEllipse* pEllipse = Job().EllipseAt(m_uIndex);
    if (pEllipse && Ask(m_pUi->Btn_EllipseCenterY, QStringLiteral("Center Y"), QStringLiteral("(mm)"),
                        Range(0.01, FARTHEST_CENTER), pEllipse->stCenter.y))
        AfterChange();
}

void CDlgEllipse::AskDiameter(QPushButton* pButton, const QString& strName, stFloatPoint range,
                              double stEllipse::*pField)
{
    stEllipse* pEllipse = Job().EllipseAt(m_uIndex);
    if (!pEllipse) return;
    double fDia = pEllipse->*pField;
    if (!Ask(pButton, strName, QStringLiteral("(mm)"), range, fDia)) return;
    if (std::fabs(fDia - pEllipse->*pField) < SMALL_NUMBER_TO_AVOID_ROUND_ERRORS) return;
    if (m_bHole && fDia < AppConfig::m_fEndMillDia) {   // the rings stay, and their outline with them
        LogError(TOOL_TOO_BIG);
        return ShowParams(*pEllipse);
    }
    pEllipse->*pField = fDia;
    AfterChange();
}

// The major axis is never the smaller one.
void CDlgEllipse::on_Btn_EllipseMajorAxisDia_clicked()
{
    AskDiameter(m_pUi->Btn_EllipseMajorAxisDia, QStringLiteral("Major Axis Dia"),
                Range(ButtonValue(m_pUi->Btn_EllipseMinorAxisDia), LARGEST_AXIS), &stEllipse::fMajorAxisDia);
}

void CDlgEllipse::on_Btn_EllipseMinorAxisDia_clicked()
{
    AskDiameter(m_pUi->Btn_EllipseMinorAxisDia, QStringLiteral("Minor Axis Dia"),
                Range(AppConfig::m_fAxisMovPerPulse[X_AXIS], ButtonValue(m_pUi->Btn_EllipseMajorAxisDia)),
                &stEllipse::fMinorAxisDia);
}

void CDlgEllipse::on_Btn_EllipseOrientation_clicked()
{
    stEllipse* pEllipse = Job().EllipseAt(m_uIndex);
    if (pEllipse && Ask(m_pUi->Btn_EllipseOrientation, QStringLiteral("Orientation(deg)"), QString(),
                        Range(0.0, FULL_TURN), pEllipse->fOrientation))
        AfterChange();
}

void CDlgEllipse::on_Btn_EllipseDepth_clicked()
{
    stEllipse* pEllipse = Job().EllipseAt(m_uIndex);
    if (!pEllipse || !Ask(m_pUi->Btn_EllipseDepth, QStringLiteral("Depth"), QStringLiteral("(mm)"), DepthRange(DEEPEST),
                          pEllipse->fDepth, true))
        return;
    if (m_bHole) Job().SetAddedDepth(pEllipse->fDepth);
}

void CDlgEllipse::on_Btn_EllipseXStep_clicked()
{
    stEllipse* pEllipse = Job().EllipseAt(m_uIndex);
    if (!pEllipse || !Ask(m_pUi->Btn_EllipseXStep, QStringLiteral("X Step"), QStringLiteral("(mm)"),
                          Range(AppConfig::m_fAxisMovPerPulse[X_AXIS], LARGEST_STEP), pEllipse->fXAxisStep))
        return;
    const double fSnapped = SnapXStep(pEllipse->fXAxisStep);
    if (fSnapped != pEllipse->fXAxisStep)
        m_pUi->Btn_EllipseXStep->setText(QString::number(fSnapped) + QStringLiteral("\nX Step"));
    pEllipse->fXAxisStep = fSnapped;
    AfterChange();
}

void CDlgEllipse::on_Btn_ArcStartAngle_clicked()
{
    stEllipse* pEllipse = Job().EllipseAt(m_uIndex);
    if (pEllipse && Ask(m_pUi->Btn_ArcStartAngle, QStringLiteral("Arc Start Angle"), QStringLiteral("(deg)"),
                        Range(0.0, ButtonValue(m_pUi->Btn_ArcEndAngle)), pEllipse->fArcStartAngle))
        AfterChange();
}

void CDlgEllipse::on_Btn_ArcEndAngle_clicked()
{
    stEllipse* pEllipse = Job().EllipseAt(m_uIndex);
    if (pEllipse && Ask(m_pUi->Btn_ArcEndAngle, QStringLiteral("Arc End Angle"), QStringLiteral("(deg)"),
                        Range(ButtonValue(m_pUi->Btn_ArcStartAngle), FULL_TURN), pEllipse->fArcEndAngle))
        AfterChange();
}

// ---- Pocket ---------------------------------------------------------------------------------------------------------

void CDlgEllipse::on_Btn_EllipseHole_clicked()
{
    stEllipse* pEllipse = Job().EllipseAt(m_uIndex);
    if (!pEllipse) return;
    if (m_bHole) {
        Job().EraseRings(m_uIndex);
        DropHole(*pEllipse);
    } else if (pEllipse->fMinorAxisDia < AppConfig::m_fEndMillDia) {
        m_pUi->Btn_EllipseHole->setStyleSheet(BTN_BKGND_GRAY);
        return LogError(TOOL_TOO_BIG);
    } else {
        MakeHole();
    }
    UpdateEllipse();
}

void CDlgEllipse::DropHole(stEllipse& ellipse)
{
    m_bHole = false;
    ellipse.bHole = false;
    m_pUi->Btn_EllipseHole->setStyleSheet(BTN_BKGND_GRAY);
}

void CDlgEllipse::MakeHole()
{
    m_bHole = true;
    m_pUi->Btn_EllipseHole->setStyleSheet(BTN_BKGND_GREEN);
    for (const QString& strWhy : Job().MakeEllipsePocket(m_uIndex)) Screen().LogOnce(strWhy);
}

// ---- End ------------------------------------------------------------------------------------------------------------

void CDlgEllipse::Keep()
{
    stEllipse* pEllipse = Job().EllipseAt(m_uIndex);
    if (!pEllipse) return Finish();
    pEllipse->fDepth = ButtonValue(m_pUi->Btn_EllipseDepth);
    if (m_bHole) Job().NumberAdded(*pEllipse);
    m_bAccepted = true;
    Finish();
}

void CDlgEllipse::on_Btn_Ok_clicked()
{
    Keep();
}

void CDlgEllipse::on_Btn_Cancel_clicked()
{
    Job().EraseAdded();
    m_bAccepted = false;
    Finish();
}
