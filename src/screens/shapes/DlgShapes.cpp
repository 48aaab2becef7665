#include "screens/shapes/DlgShapes.h"

#include "common/Refusals.h"
#include "config/AppConfig.h"
#include "control/AppControl.h"
#include "screens/host/SettingsInput.h"
#include "screens/shapes/DlgEditPolygon.h"
#include "screens/shapes/DlgEllipse.h"
#include "screens/shapes/DlgShapeFromImg.h"
#include "shapes/EllipsePath.h"
#include "ui_DlgShapes.h"
#include "widgets/ButtonStyle.h"

#include <algorithm>

static constexpr double FRESH_LENGTH = 300.0, FRESH_WIDTH = 200.0;   // mm
static constexpr double LARGEST_AREA = 1000000.0, DEEPEST = 10000.0;
static constexpr double THINNEST_MILL = 0.1, THICKEST_MILL = 100.0;
static constexpr int SCROLL_BARS = 25;   // pixels of the view

CDlgShapes::CDlgShapes(QWidget* pParent)
    : QDialog(pParent), m_pUi(std::make_unique<Ui::CDlgShapes>()), m_Map(QSize(1, 1), {})
{
    m_pUi->setupUi(this);
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setStyleSheet(BTN_BKGND_GRAY);
    m_pUi->Btn_DispGraphics->setStyleSheet(BTN_BKGND_GREEN);
    m_stCuttingInfo.stWorkArea.x = FRESH_LENGTH;
    m_stCuttingInfo.stWorkArea.y = FRESH_WIDTH;
    m_pWorkAreaImg =
        std::make_unique<QImage>(m_pUi->View_WorkArea->size() - QSize(SCROLL_BARS, SCROLL_BARS), QImage::Format_RGB888);
    m_pUi->View_WorkArea->EnableZoom(true);
    m_pUi->View_WorkArea->installEventFilter(this);
    connect(m_pUi->View_WorkArea, &CMyView::MouseMoved, this, &CDlgShapes::OnMouseMove);
    m_dlgEllipse = std::make_unique<CDlgEllipse>(*this, this);
    m_dlgEditPolygon = std::make_unique<CDlgEditPolygon>(*this, this);
    m_dlgShapeFromImg = std::make_unique<CDlgShapeFromImg>(*this, this);
}

CDlgShapes::~CDlgShapes() = default;

void CDlgShapes::ConfigSettings()
{
    for (QPushButton* pButton : {m_pUi->Btn_WorkAreaLength, m_pUi->Btn_WorkAreaWidth})
        pButton->setEnabled(!AppConfig::m_bHomeSensorsUsed);
    if (!AppConfig::m_bHomeSensorsUsed) {
        m_stCuttingInfo.stWorkArea.x = ButtonValue(m_pUi->Btn_WorkAreaLength);
        m_stCuttingInfo.stWorkArea.y = ButtonValue(m_pUi->Btn_WorkAreaWidth);
    }
    UpdatePlungeFeed();
    UpdateWorkArea();
}

void CDlgShapes::UpdatePlungeFeed()
{
    ShowNumber(m_pUi->Btn_EndMillDia, {.strCaption = QStringLiteral("End-Mill"), .iDecimals = 1},
               AppConfig::m_fEndMillDia);
    ShowNumber(m_pUi->Btn_ZAxisPlungeFeed, {.strCaption = QStringLiteral("Plunge Feed")}, AppConfig::m_fPlungeFeed);
}

void CDlgShapes::UpdateWorkArea()
{
    if (AppConfig::m_bHomeSensorsUsed) {
        m_stCuttingInfo.stWorkArea.x = AppConfig::m_fAxisPosDirLimit[X_AXIS] - AppConfig::m_fAxisWorkZero[X_AXIS];
        m_stCuttingInfo.stWorkArea.y = AppConfig::m_fAxisPosDirLimit[Y_AXIS] - AppConfig::m_fAxisWorkZero[Y_AXIS];
        ShowSize();
    }
    m_Map = CWorkAreaMap(m_pWorkAreaImg->size(), m_stCuttingInfo.stWorkArea);
    if (m_pOpen == m_dlgShapeFromImg.get()) m_dlgShapeFromImg->ConfigSettings();
    m_Picture.Forget();
    DrawWorkArea();
}

void CDlgShapes::ShowSize()
{
    const stFloatPoint& area = m_stCuttingInfo.stWorkArea;
    m_pUi->Btn_WorkAreaLength->setText(QString::number(area.x) + QStringLiteral("\nLength"));
    m_pUi->Btn_WorkAreaWidth->setText(QString::number(area.y) + QStringLiteral("\nWidth"));
}

void CDlgShapes::ResetUI(bool bEnable)
{
    for (QPushButton* pButton : findChildren<QPushButton*>(Qt::FindDirectChildrenOnly)) pButton->setEnabled(bEnable);
    for (QPushButton* pButton : {m_pUi->Btn_WorkAreaLength, m_pUi->Btn_WorkAreaWidth})
        pButton->setEnabled(bEnable && !AppConfig::m_bHomeSensorsUsed);
}

// With home sensors the area follows the work zero, which is set elsewhere.
void CDlgShapes::showEvent(QShowEvent* pEvent)
{
    QDialog::showEvent(pEvent);
    UpdateWorkArea();
}

// The start input brings up another screen: what is being edited is kept as it stands.
void CDlgShapes::hideEvent(QHideEvent* pEvent)
{
    QDialog::hideEvent(pEvent);
    if (m_pOpen && !pEvent->spontaneous()) m_pOpen->Keep();
}

// ---- Start ----------------------------------------------------------------------------------------------------------

bool CDlgShapes::StartShapeCutting()
{
    if (Host().IsEmergencyStopOn()) return false;
    AppControl& machine = Host().Machine();
    if (machine.m_eOperation == OP_SHAPES) {
        machine.m_bPause = !machine.m_bPause;
        return true;
    }
    if (!Host().IsMachineFree()) {
        LogError(MACHINE_IN_USE);
        return false;
    }
    if (Count() == 0) {
        LogError(QStringLiteral("No shapes are added"));
        return false;
    }
    if (!machine.GetHomeDone()) {
        LogError(HOMING_NOT_DONE_SHOWN);
        return false;
    }
    ResetUI(false);
    Host().ClearToolGraphics();
    machine.StartShapeCutting(&m_stCuttingInfo);
    if (machine.m_eOperation == OP_SHAPES) return true;
    ResetUI(true);   // refused; the worker has said why
    return false;
}

// ---- Messages -------------------------------------------------------------------------------------------------------

void CDlgShapes::CreateEllipsePoints(quint32 uIndex)
{
    stEllipse* pEllipse = EllipseAt(uIndex);
    if (!pEllipse) return;
    LogOnce(::CreateEllipsePoints(*pEllipse));
}

// Not at every step of a drag.
void CDlgShapes::LogOnce(const QString& strWhy)
{
    if (strWhy.isEmpty() || strWhy == m_strToldOnce) return;
    m_strToldOnce = strWhy;
    LogError(strWhy);
}

void CDlgShapes::LogAll(const QStringList& lstNotices) const
{
    for (const QString& strNotice : lstNotices) Host().AddLogMsg(strNotice, MSG_NOTICE);
}

// ---- Numbers --------------------------------------------------------------------------------------------------------

void CDlgShapes::on_Btn_WorkAreaLength_clicked()
{
    const auto fNew = AskNumber(Host(), m_pUi->Btn_WorkAreaLength,
                                {.strTitle = QStringLiteral("Work Area Length(mm)"),
                                 .strCaption = QStringLiteral("Length"),
                                 .fRange = Range(1.0, LARGEST_AREA)},
                                m_stCuttingInfo.stWorkArea.x);
    if (!fNew) return;
    m_stCuttingInfo.stWorkArea.x = *fNew;
    UpdateWorkArea();
}

void CDlgShapes::on_Btn_WorkAreaWidth_clicked()
{
    const auto fNew = AskNumber(Host(), m_pUi->Btn_WorkAreaWidth,
                                {.strTitle = QStringLiteral("Work Area Width(mm)"),
                                 .strCaption = QStringLiteral("Width"),
                                 .fRange = Range(1.0, LARGEST_AREA)},
                                m_stCuttingInfo.stWorkArea.y);
    if (!fNew) return;
    m_stCuttingInfo.stWorkArea.y = *fNew;
    UpdateWorkArea();
}

void CDlgShapes::on_Btn_ShapeDepth_clicked()
{
    const int iRow = CurrentRow();
    if (iRow < 0) return;
    stShapesCommonInfo& shape = m_stCuttingInfo.lstShapes[static_cast<size_t>(iRow)].Common();
    const auto fNew = AskNumber(Host(), m_pUi->Btn_ShapeDepth,
                                {.strTitle = QStringLiteral("Shape Depth(mm)"),
                                 .strCaption = QStringLiteral("Depth"),
                                 .fRange = DepthRange(-DEEPEST),
                                 .bSign = true},
                                shape.fDepth);
    if (fNew) shape.fDepth = *fNew;
}

void CDlgShapes::on_Btn_AxisStep_Z_clicked()
{
    const double fMost = AppConfig::m_bHomeSensorsUsed ? -AppConfig::m_fAxisNegDirLimit[Z_AXIS] : DEEPEST;
    const auto fNew = AskNumber(Host(), m_pUi->Btn_AxisStep_Z,
                                {.strTitle = QStringLiteral("Z Step(mm)"),
                                 .strCaption = QStringLiteral("z Step"),
                                 .fRange = Range(AppConfig::m_fAxisMovPerPulse[Z_AXIS], fMost)},
                                m_stCuttingInfo.fZStep);
    if (fNew) m_stCuttingInfo.fZStep = *fNew;
}

void CDlgShapes::on_Btn_ZAxisPlungeFeed_clicked()
{
    const auto fNew =
        AskNumber(Host(), m_pUi->Btn_ZAxisPlungeFeed,
                  {.strTitle = QStringLiteral("Plunge Feed(mm/sec)"),
                   .strCaption = QStringLiteral("Plunge Feed"),
                   .fRange = Range(AppConfig::m_fAxisMovPerPulse[Z_AXIS], AppConfig::m_fUserAxisFeed[Z_AXIS])},
                  AppConfig::m_fPlungeFeed);
    if (fNew) AppConfig::m_fPlungeFeed = *fNew;
}

void CDlgShapes::on_Btn_EndMillDia_clicked()
{
    const auto fNew = AskNumber(Host(), m_pUi->Btn_EndMillDia,
                                {.strTitle = QStringLiteral("End-Mill"),
                                 .strCaption = QStringLiteral("End-Mill"),
                                 .fRange = Range(THINNEST_MILL, THICKEST_MILL),
                                 .iDecimals = 1},
                                AppConfig::m_fEndMillDia);
    if (fNew) AppConfig::m_fEndMillDia = *fNew;
}
