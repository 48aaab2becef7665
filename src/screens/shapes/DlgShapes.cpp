#include "screens/shapes/DlgShapes.h"

#include "common/FileWriter.h"
#include "common/Paths.h"
#include "config/AppConfig.h"
#include "control/AppControl.h"
#include "screens/host/PressedBtn.h"
#include "screens/host/SettingsInput.h"
#include "screens/shapes/DlgEditPolygon.h"
#include "screens/shapes/DlgEllipse.h"
#include "screens/shapes/DlgShapeFreeDraw.h"
#include "screens/shapes/DlgShapeFromImg.h"
#include "screens/shapes/DlgShapeFromTxt.h"
#include "shapes/EllipsePath.h"
#include "shapes/WorkAreaFile.h"
#include "ui_DlgShapes.h"
#include "widgets/ButtonStyle.h"
#include "widgets/Questions.h"

#include <QFile>
#include <QFileDialog>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPointer>
#include <QTimer>

#include <algorithm>

static constexpr double FRESH_LENGTH = 300.0, FRESH_WIDTH = 200.0;   // mm
static constexpr double LARGEST_AREA = 1000000.0, DEEPEST = 10000.0;
static constexpr double THINNEST_MILL = 0.1, THICKEST_MILL = 100.0;
static constexpr int SCROLL_BARS = 25;   // pixels of the view
static constexpr int WORKER_POLL_MS = 20;
static const QString FILE_FILTER = QStringLiteral("xml Files(*.xml)");
static const QString GCODE_FILTER = QStringLiteral("text files(*.txt);;G-Code files(*.ncc)");

static std::unique_ptr<Ui::CDlgShapes> SetUp(QDialog* pDialog)
{
    auto pUi = std::make_unique<Ui::CDlgShapes>();
    pUi->setupUi(pDialog);
    return pUi;
}

CDlgShapes::CDlgShapes(QWidget* pParent)
    : QDialog(pParent), m_pUi(SetUp(this)),
      m_pWorkAreaImg(std::make_unique<QImage>(m_pUi->View_WorkArea->size() - QSize(SCROLL_BARS, SCROLL_BARS),
                                              QImage::Format_RGB888)),
      m_Rows(*m_pUi->Lw_Shapes, *this), m_Drawing(*m_pUi->View_WorkArea, *m_pWorkAreaImg, *this)
{
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setStyleSheet(BTN_BKGND_GRAY);
    m_pUi->Btn_DispGraphics->setStyleSheet(BTN_BKGND_GREEN);
    m_stCuttingInfo.stWorkArea.x = FRESH_LENGTH;
    m_stCuttingInfo.stWorkArea.y = FRESH_WIDTH;
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
    FollowEndMill();
}

// Other screens change it too: their change is seen here before anything can be cut or written.
void CDlgShapes::FollowEndMill()
{
    if (AppConfig::m_fEndMillDia == m_fEndMill || IsEditing() || Host().Operation() != OP_NONE) return;
    m_fEndMill = AppConfig::m_fEndMillDia;
    const int iRow = m_Rows.Current();
    const stEngShape current = iRow < 0 ? stEngShape() : Info().lstShapes[static_cast<size_t>(iRow)];
    const QStringList lstNotices = RemakeEllipses();
    if (lstNotices.isEmpty()) return;
    LogAll(lstNotices);
    m_Rows.ShowAll(current);
    DrawWorkArea();
}

void CDlgShapes::UpdateWorkArea()
{
    if (AppConfig::m_bHomeSensorsUsed) {
        m_stCuttingInfo.stWorkArea.x = AppConfig::m_fAxisPosDirLimit[X_AXIS] - AppConfig::m_fAxisWorkZero[X_AXIS];
        m_stCuttingInfo.stWorkArea.y = AppConfig::m_fAxisPosDirLimit[Y_AXIS] - AppConfig::m_fAxisWorkZero[Y_AXIS];
        ShowSize();
    }
    m_Drawing.FollowWorkArea();
    if (m_Drawing.Dialog() == m_dlgShapeFromImg.get()) m_dlgShapeFromImg->ConfigSettings();
    DrawWorkArea();
}

void CDlgShapes::ShowSize()
{
    const stFloatPoint& area = m_stCuttingInfo.stWorkArea;
    m_pUi->Btn_WorkAreaLength->setText(QString::number(area.x) + QStringLiteral("\nLength"));
    m_pUi->Btn_WorkAreaWidth->setText(QString::number(area.y) + QStringLiteral("\nWidth"));
}

// After a stop the worker may still be on its way out of the list: until it has gone nothing changes.
void CDlgShapes::ResetUI(bool bEnable)
{
    m_bEnableWanted = bEnable;
    const bool bFree = bEnable && !Host().MachineParts().IsWorkerBusy();
    for (QPushButton* pButton : findChildren<QPushButton*>(Qt::FindDirectChildrenOnly)) pButton->setEnabled(bFree);
    for (QPushButton* pButton : {m_pUi->Btn_WorkAreaLength, m_pUi->Btn_WorkAreaWidth})
        pButton->setEnabled(bFree && !AppConfig::m_bHomeSensorsUsed);
    if (bEnable == bFree) return;
    QTimer::singleShot(WORKER_POLL_MS, this, [this] {
        if (m_bEnableWanted) ResetUI(true);
    });
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
    if (IsEditing() && !pEvent->spontaneous()) m_Drawing.Dialog()->Keep();
}

// ---- Start ----------------------------------------------------------------------------------------------------------

bool CDlgShapes::StartShapeCutting()
{
    if (Host().IsEmergencyStopOn()) return false;
    AppControl& machine = Host().Machine();
    if (machine.m_eOperation == OP_SHAPES) {
        (void)machine.TogglePause();
        return true;
    }
    if (Host().Refused(Host().WhyNotFree())) return false;
    if (Count() == 0) return !Host().Refused(QStringLiteral("No shapes are added"));
    if (Host().Refused(Host().WhyNotHomed())) return false;
    ResetUI(false);
    Host().ClearToolGraphics();
    if (machine.StartShapeCutting(&m_stCuttingInfo)) return true;
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
    const int iRow = m_Rows.Current();
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
    if (!fNew) return;
    AppConfig::m_fEndMillDia = *fNew;
    FollowEndMill();
}

// ---- Rows -----------------------------------------------------------------------------------------------------------

void CDlgShapes::ShowDepth()
{
    if (const int iRow = m_Rows.Current(); iRow >= 0)
        ShowNumber(m_pUi->Btn_ShapeDepth, {.strCaption = QStringLiteral("Depth")},
                   m_stCuttingInfo.lstShapes[static_cast<size_t>(iRow)].Common().fDepth);
}

void CDlgShapes::on_Lw_Shapes_itemClicked(QListWidgetItem*)
{
    ShowDepth();
    m_Drawing.Show(m_Rows.Current());
}

// Of the pocket in the row's ellipse, if it has one; or they stay as ellipses of their own. False: not removed at all.
bool CDlgShapes::RemoveRings(int iRow)
{
    const std::vector<size_t> rings = RingsOf(static_cast<size_t>(iRow));
    if (rings.empty()) return true;
    const auto eAnswer =
        QMessageBox::warning(this, QStringLiteral("Warning"),
                             QStringLiteral("Do you want to delete the %1 rings of this pocket too?").arg(rings.size()),
                             QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
    if (eAnswer == QMessageBox::Yes)
        for (size_t n = rings.size(); n-- > 0;) m_Rows.Remove(static_cast<int>(rings[n]));
    return eAnswer == QMessageBox::Yes || eAnswer == QMessageBox::No;
}

void CDlgShapes::on_Btn_DelShape_clicked()
{
    const int iRow = m_Rows.Current();
    if (iRow < 0 || !RemoveRings(iRow)) return;
    m_Rows.Remove(m_Rows.Current());
    ShowDepth();   // of the row that has moved up
    DrawWorkArea();
}

void CDlgShapes::on_Btn_DelAllShapes_clicked()
{
    if (QMessageBox::warning(this, QStringLiteral("Warning"), QStringLiteral("Do you want to delete all Shapes"),
                             QMessageBox::Yes | QMessageBox::No) != QMessageBox::Yes)
        return;
    m_Rows.RemoveAll();
    DrawWorkArea();
}

void CDlgShapes::MoveRow(int iStep)
{
    if (m_Rows.MoveCurrent(iStep)) DrawWorkArea();
}

// Up is towards the end of the list: wanted, the shape is cut later.
void CDlgShapes::on_Btn_MoveShapeUp_clicked()
{
    MoveRow(1);
}

void CDlgShapes::on_Btn_MoveShapeDown_clicked()
{
    MoveRow(-1);
}

// ---- Dialogs --------------------------------------------------------------------------------------------------------

bool CDlgShapes::RunDialog(CDlgShapeSource& dialog, size_t uEdited)
{
    const QPointer<CDlgShapes> alive(this);
    m_strToldOnce.clear();
    m_Drawing.Open(dialog, uEdited);
    m_Drawing.Show(m_Rows.Current());
    Host().EnableScreenSelectors(false);
    dialog.Run();
    if (!alive) return false;
    m_Drawing.Close();
    Host().EnableScreenSelectors(true);
    return true;
}

void CDlgShapes::AdoptNewShapes()
{
    ListNewShapes();
    DrawWorkArea();
}

void CDlgShapes::ListNewShapes()
{
    if (m_Rows.AppendAdded()) ShowDepth();
}

void CDlgShapes::on_Lw_Shapes_itemDoubleClicked(QListWidgetItem*)
{
    const int iRow = m_Rows.Current();
    if (iRow < 0 || IsEditing() || Host().Operation() != OP_NONE || Host().MachineParts().IsWorkerBusy()) return;
    if (EllipseAt(static_cast<size_t>(iRow)))
        EditEllipse(static_cast<size_t>(iRow));
    else
        EditPolygon(static_cast<size_t>(iRow));
}

// A ring is edited with its outline.
void CDlgShapes::EditEllipse(size_t uRow)
{
    const size_t uIndex = BeginEditing(OutlineOf(uRow));
    const stEngShape edited = Info().lstShapes[uIndex];
    const stEllipse before = *edited.pEllipse;
    m_dlgEllipse->m_uIndex = uIndex;
    m_dlgEllipse->ConfigSettings();
    if (!RunDialog(*m_dlgEllipse, uIndex)) return;
    if (!m_dlgEllipse->m_bAccepted) {
        *edited.pEllipse = before;
        CreateEllipsePoints(static_cast<quint32>(uIndex));
    }
    EndEditing(m_dlgEllipse->m_bAccepted);
    m_Rows.ShowAll(edited);
    ShowDepth();
    DrawWorkArea();
}

void CDlgShapes::EditPolygon(size_t uIndex)
{
    BeginAdding();
    m_dlgEditPolygon->m_uIndex = uIndex;
    m_dlgEditPolygon->ConfigSettings();
    if (!RunDialog(*m_dlgEditPolygon, uIndex)) return;
    if (const stPolygon* pPolygon = PolygonAt(uIndex); pPolygon && pPolygon->lstVertices.empty()) {
        m_Rows.Remove(static_cast<int>(uIndex));
    } else if (pPolygon) {
        m_Rows.ShowName(static_cast<int>(uIndex), pPolygon->strShapeName);
    }
    ShowDepth();
    DrawWorkArea();
}

void CDlgShapes::on_Btn_AddEllipse_clicked()
{
    BeginAdding();
    AddEllipse(QStringLiteral("Ellipse_%1").arg(Count() + 1));
    m_dlgEllipse->m_uIndex = FirstAdded();
    m_dlgEllipse->ConfigSettings();
    if (RunDialog(*m_dlgEllipse)) AdoptNewShapes();
}

void CDlgShapes::on_Btn_DrawContour_clicked()
{
    BeginAdding();
    AddPolygon(QStringLiteral("Shape_%1").arg(Count() + 1));
    const QPointer<CDlgShapeFreeDraw> pDialog(new CDlgShapeFreeDraw(*this, this));   // the screen's, should it go first
    pDialog->ConfigSettings();
    if (!RunDialog(*pDialog)) return;
    delete pDialog.data();
    AdoptNewShapes();
}

void CDlgShapes::on_Btn_ShapeFromTxt_clicked()
{
    Host().GrabKeyboard(false);   // letters go to the text, not to the axes
    BeginAdding();
    const QPointer<CDlgShapeFromTxt> pDialog(new CDlgShapeFromTxt(*this, this));
    pDialog->ConfigSettings();
    if (!RunDialog(*pDialog)) return;
    delete pDialog.data();
    Host().GrabKeyboard(true);
    AdoptNewShapes();
}

void CDlgShapes::on_Btn_ShapeFromImg_clicked()
{
    BeginAdding();
    m_dlgShapeFromImg->ConfigSettings();
    if (RunDialog(*m_dlgShapeFromImg)) AdoptNewShapes();
}

// ---- Work area ------------------------------------------------------------------------------------------------------

QString CDlgShapes::AskSaveName()
{
    const QString strTyped =
        QFileDialog::getSaveFileName(this, QStringLiteral("Select file tosave..."), CPaths::Map(HOME_FOLDER),
                                     FILE_FILTER, nullptr, QFileDialog::DontUseNativeDialog);
    if (strTyped.isEmpty()) return {};
    const QString strPath = WorkAreaFileName(strTyped);
    return MayReplace(this, strTyped, strPath) ? strPath : QString();
}

// Those that are, or belong to, a pocket; or all.
static qsizetype CountEllipses(std::span<const stEngShape> shapes, bool bHolesOnly)
{
    return std::ranges::count_if(
        shapes, [&](const stEngShape& shape) { return shape.pEllipse && (shape.pEllipse->bHole || !bHolesOnly); });
}

void CDlgShapes::on_Btn_SaveWorkArea_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_SaveWorkArea, BTN_BKGND_GRAY, BTN_BKGND_BLUE);
    if (Count() == 0) return LogError(QStringLiteral("No shapes added"));
    const QString strPath = AskSaveName();
    if (strPath.isEmpty()) return;
    if (!SaveWorkArea(strPath, m_stCuttingInfo)) return LogError(QStringLiteral("Unable to Create the file"));
    Host().AddLogMsg(QStringLiteral("Work area saved to\n") + strPath, MSG_INFO);
    if (const auto iPockets = CountEllipses(Info().lstShapes, true); iPockets > 0)
        Host().AddLogMsg(
            QStringLiteral("Hole is not in the file: %1 ellipses will be loaded as outlines, with the tool "
                           "outside")
                .arg(iPockets),
            MSG_NOTICE);
}

void CDlgShapes::on_Btn_LoadWorkArea_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_LoadWorkArea, BTN_BKGND_GRAY, BTN_BKGND_BLUE);
    BeginAdding();
    const QString strPath = QFileDialog::getOpenFileName(this, QStringLiteral("Select file to open..."),
                                                         CPaths::Map(AppConfig::m_strLastFolderPath), FILE_FILTER,
                                                         nullptr, QFileDialog::DontUseNativeDialog);
    if (strPath.isEmpty()) return;
    AppConfig::m_strLastFolderPath = strPath.left(strPath.lastIndexOf(QLatin1Char('/')) + 1);
    QStringList lstNotices;
    if (!LoadWorkArea(strPath, m_stCuttingInfo, lstNotices)) return LogError(QStringLiteral("Unable to load the file"));
    LogAll(lstNotices);
    if (m_stCuttingInfo.stWorkArea.x > 0.0 && m_stCuttingInfo.stWorkArea.y > 0.0) ShowSize();
    Host().AddLogMsg(QStringLiteral("Shapes loaded: %1").arg(Added().size()), MSG_INFO);
    if (const auto iEllipses = CountEllipses(Added(), false); iEllipses > 0)
        Host().AddLogMsg(
            QStringLiteral("%1 ellipses are outlines, with the tool outside: a file does not hold Hole").arg(iEllipses),
            MSG_NOTICE);
    ListNewShapes();
    UpdateWorkArea();
}

// ---- G-Code ---------------------------------------------------------------------------------------------------------

QString CDlgShapes::AskGCodeName()
{
    const QString strTyped =
        QFileDialog::getSaveFileName(this, QStringLiteral("Select a file to Save..."), CPaths::Map(HOME_FOLDER),
                                     GCODE_FILTER, nullptr, QFileDialog::DontUseNativeDialog);
    if (strTyped.isEmpty()) return {};
    const bool bEnding = strTyped.endsWith(QLatin1String(".txt")) || strTyped.endsWith(QLatin1String(".ncc"));
    const QString strPath = bEnding ? strTyped : strTyped + QStringLiteral(".txt");
    return MayReplace(this, strTyped, strPath) ? strPath : QString();
}

void CDlgShapes::on_Btn_GenerateGCode_clicked()
{
    if (Count() == 0) return LogError(QStringLiteral("No Shapes Added"));
    if (RefuseMachineInUse(Host())) return;   // it plans with the machine's speeds, and would wait for its pause
    const CPressedBtn press(Host(), m_pUi->Btn_GenerateGCode, BTN_BKGND_GRAY, BTN_BKGND_BLUE);
    const QString strPath = AskGCodeName();
    if (strPath.isEmpty() || RefuseMachineInUse(Host())) return;
    // What is logged below says the same of a file that can't be written.
    if (!CFileWriter(strPath).Open()) LogError(QStringLiteral("Unable to Create the file\n") + strPath);
    AppControl& machine = Host().Machine();
    machine.m_pShapeCuttingInfo = &m_stCuttingInfo;
    machine.CreateGCodeFromShapes(strPath);
    Host().AddLogMsg(QStringLiteral("G-Code File Generated"), MSG_INFO);   // wanted: whatever came of it
}

// ---- Background -----------------------------------------------------------------------------------------------------

void CDlgShapes::ToggleBackground(QPushButton* pButton)
{
    if (HasBackground()) {
        pButton->setStyleSheet(BTN_BKGND_GRAY);
        m_Drawing.SetBackground(nullptr);
        return m_Drawing.Show(m_Rows.Current());
    }
    pButton->setStyleSheet(BTN_BKGND_GREEN);
    const QString strPath =
        QFileDialog::getOpenFileName(this, QStringLiteral("Select a file to Open..."), CPaths::Map(HOME_FOLDER),
                                     PICTURE_FILTER, nullptr, QFileDialog::DontUseNativeDialog);
    if (!strPath.isEmpty()) m_Drawing.SetBackground(LoadGuide(Host(), strPath));
    if (!HasBackground()) pButton->setStyleSheet(BTN_BKGND_GRAY);
    m_Drawing.Show(m_Rows.Current());
}

// ---- Drawing --------------------------------------------------------------------------------------------------------

void CDlgShapes::DrawWorkArea()
{
    m_Drawing.Draw(m_Rows.Current());
}

void CDlgShapes::on_Btn_DispGraphics_clicked()
{
    m_pUi->Btn_DispGraphics->setStyleSheet(m_Drawing.ToggleMarks() ? BTN_BKGND_GREEN : BTN_BKGND_GRAY);
    DrawWorkArea();
}

// ---- Press ----------------------------------------------------------------------------------------------------------

void CDlgShapes::mousePressEvent(QMouseEvent* pEvent)
{
    const QPointF view = m_pUi->View_WorkArea->mapFrom(this, pEvent->position());
    if (!m_Drawing.Press(view, pEvent->button())) QDialog::mousePressEvent(pEvent);
}

// Two quick touches are two points, not a double click, which would fit the view.
bool CDlgShapes::eventFilter(QObject* pObject, QEvent* pEvent)
{
    if (pObject != m_pUi->View_WorkArea || pEvent->type() != QEvent::MouseButtonDblClick || !IsEditing())
        return QDialog::eventFilter(pObject, pEvent);
    const auto* pMouse = static_cast<QMouseEvent*>(pEvent);
    (void)m_Drawing.Press(pMouse->position(), pMouse->button());
    return true;
}

void CDlgShapes::OnMouseMove()
{
    m_Drawing.Move();
    m_Drawing.Show(m_Rows.Current());
}
