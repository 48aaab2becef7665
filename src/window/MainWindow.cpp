#include "window/MainWindow.h"

#include "common/Paths.h"
#include "common/Refusals.h"
#include "config/AppConfig.h"
#include "config/ConfigNotice.h"
#include "hardware/VantorGpio.h"
#include "screens/host/PressedBtn.h"
#include "screens/host/SettingsInput.h"
#include "ui_MainWindow.h"
#include "widgets/Look.h"
#include "window/FeedPanel.h"
#include "window/KeyPilot.h"
#include "window/KeypadEntry.h"
#include "window/LogList.h"
#include "window/MachineButtons.h"
#include "window/OperationStates.h"
#include "window/PicturePanel.h"
#include "window/PositionPanel.h"
#include "window/ScreenStack.h"
#include "window/SpindlePanel.h"
#include "window/StartStop.h"
#include "window/StopOver.h"
#include "window/UsbProgram.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMessageBox>
#include <QScreen>
#include <QThread>
#include <QTimer>

static constexpr int SUPERVISION_MS = 34;
static constexpr int BUTTON_MS = 150;   // a press stays visible so long
static constexpr QSize WINDOW_SIZE(1250, 840);
static constexpr QPoint WORK_AREA(10, 45), JOG_PANEL(540, 450);

// ---- Start-up -------------------------------------------------------------------------------------------------------

MainWindow::MainWindow(QWidget* pParent)
    : QMainWindow(pParent), m_pUi(new Ui_MainWindow), m_BtnStop(this), m_BtnStart(this), m_BtnPause(this),
      m_BtnReset(this)
{
    m_pUi->setupUi(this);
    MakeParts();
    SetUpWindow();
    LoadSettings();
    CVANTORGPIO::InitGpio();
    if (AppConfig::m_bPWMCtrlUsed) CVANTORGPIO::PwmStart();
    m_pStates->SetFiveAxes(AppConfig::m_iMchType == MAX_AXES);
    m_pPicture->SetUp(this);
    m_AppControl.setParent(this);
    connect(&m_AppControl, &AppControl::AddMsg, this, &MainWindow::AddLogMsg);
    (void)m_AppControl.InitMachine(m_bSettingsDoubtful ? QStringLiteral("check all settings first") : QString());
    PlaceScreens();
    SetUpRoundButtons();
    m_pSupervisionTimer = new QTimer(this);
    connect(m_pSupervisionTimer, &QTimer::timeout, this, &MainWindow::OnTimer);
    m_pSupervisionTimer->start(SUPERVISION_MS);
    SetUpSlideBars();
    m_CncCamera.setParent(this);
    m_CncCamera.SetWhileWaiting([this] { m_pStartStop->WatchStopInput(); });   // no tick comes meanwhile
    connect(&m_CncCamera, &CCncCamera::NewImage, this, &MainWindow::OnNewCncCamImage);
    m_pBtnClickTimer = new QTimer(this);
    connect(m_pBtnClickTimer, &QTimer::timeout, this, &MainWindow::OnBtnClickTimerElapsed);
    ClearToolGraphics();
    qApp->installEventFilter(this);
    m_pKeys->UpdateGrab();
    m_bStarting = false;
}

void MainWindow::MakeParts()
{
    Ui_MainWindow& form = *m_pUi;
    m_pLog = std::make_unique<CLogList>(*form.LV_Log);
    m_pStates = std::make_unique<COperationStates>(form, m_dlgManual);
    m_pScreens = std::make_unique<CScreenStack>(std::vector<stScreen>{
        {&m_dlgJobSettings, form.Btn_JobSettings, {}},
        {&m_dlgGCode, form.Btn_GCode, [this] { return m_dlgGCode.StartGCode(); }},
        {&m_dlgShapes, form.Btn_ShapeCarving, [this] { return StartShapes(); },
         [this] { m_dlgShapes.UpdatePlungeFeed(); }},
        {&m_dlgImageCarving, form.Btn_ImageCarving, [this] { return m_dlgImageCarving.StartImgCarving(); },
         [this] { m_dlgImageCarving.UpdatePlungeFeed(); }},
        {&m_dlgUserSettings, form.Btn_UserSettings, {}},
        {&m_dlgMachineSettings, form.Btn_MachineSettings, {}, {}, true},
    });
    m_pPositions = std::make_unique<CPositionPanel>(*form.LE_CurPos, m_AppControl);
    m_pFeeds = std::make_unique<CFeedPanel>(m_G01FeedBar, m_G00FeedBar, *this);
    m_pSpindle =
        std::make_unique<CSpindlePanel>(*form.Btn_SpindleCWOnOff, *form.Btn_SpindleCCWOnOff, m_SpindleSpeedBar, *this);
    m_pPicture = std::make_unique<CPicturePanel>(
        CPicturePanel::stWidgets{m_ToolPathView, form.Btn_SetWorkPieceLength, form.Btn_SetWorkPieceWidth,
                                 form.Btn_SetWorkPieceHeight, form.Btn_SelectToolPaths, form.Btn_SelectCamera,
                                 form.Btn_CameraRecStop},
        m_CncCamera, *this);
    m_pMachineButtons = std::make_unique<CMachineButtons>(
        form, *this, m_Supervision, *m_pSpindle, [this] { return m_pKeys->IsMeasured(Qt::Key_5); },
        [this] { m_pStartStop->WatchStopInput(); });
    m_pStartStop = std::make_unique<CStartStop>(
        CStartStop::stWidgets{m_BtnStart, m_BtnPause, m_BtnReset, m_BtnStop, *form.Btn_StartPause, *form.Btn_Reset},
        *this, m_Supervision, *m_pScreens, [this](const stOperationEnd& end) { ShowOperationEnd(end); });
    m_pKeys = std::make_unique<CKeyPilot>(CKeyPilot::stFaces{
        *this, *this, m_Supervision, *m_pStartStop, *m_pFeeds, *m_pSpindle, [this] { on_Btn_GCode_clicked(); },
        [this] { LoadGCodeFromUSBOnKeyPress(); }, [this] { on_Btn_MoveWorkZero_clicked(); },
        [this] { m_dlgUserSettings.on_Btn_AutoHomeSequence_clicked(); }});
}

void MainWindow::SetUpWindow()
{
    setStyleSheet(CLook::WINDOW_STYLE);
    setFixedSize(WINDOW_SIZE);
    for (QPushButton* pButton : m_pUi->centralwidget->findChildren<QPushButton*>())
        pButton->setStyleSheet(BTN_BKGND_GRAY);
    m_pScreens->SetUp();
    m_pPositions->SetUp(*m_pUi->frame);

    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    if (screen.width() < width() || screen.height() < height())
        AddLogMsg(QStringLiteral("Screen of %1 by %2 is smaller than the window of 1250 by 840")
                      .arg(screen.width())
                      .arg(screen.height()),
                  MSG_ERROR);
    else if (screen.size() == size())
        setWindowFlag(Qt::FramelessWindowHint);   // the touch screen of the machine has no room for a frame
    move(screen.center() - rect().center());
}

void MainWindow::LoadSettings()
{
    COperatorScreen::Set(this);
    if (const QString strHome = CPaths::Establish(); strHome != HOME_FOLDER)
        AddLogMsg(QStringLiteral("Files are kept in ") + strHome, MSG_INFO);
    if (!AppConfig::LoadConfig(CONFIG_FILE))
        QMessageBox::information(this, QStringLiteral("Error"),
                                 QStringLiteral("Old VANTOR.dat file. Please take note of your settings and\n"
                                                "delete VANTOR.dat file in /home/vantor/VANTOR folder."),
                                 QMessageBox::Ok);
    const QString strNotice = TakeConfigNotice();
    if (strNotice.isEmpty()) return;
    m_bSettingsDoubtful = true;
    AddLogMsg(strNotice, MSG_ERROR);
    ShowCriticalBox(QStringLiteral("Configuration"), strNotice);
}

void MainWindow::PlaceScreens()
{
    for (QWidget* pScreen :
         std::initializer_list<QWidget*>{&m_dlgJobSettings, &m_dlgImageCarving, &m_dlgShapes, &m_dlgGCode,
                                         &m_dlgUserSettings, &m_dlgMachineSettings, &m_dlgManual}) {
        pScreen->setParent(this);
        pScreen->move(pScreen == &m_dlgManual ? JOG_PANEL : WORK_AREA);
        pScreen->hide();
    }
    m_dlgJobSettings.ConfigSettings();
    m_dlgImageCarving.ConfigSettings();
    m_dlgShapes.ConfigSettings();
    m_dlgGCode.ConfigSettings();
    m_dlgUserSettings.ConfigSettings();
    m_dlgMachineSettings.ConfigSettings();
    m_dlgManual.ConfigSettings();
    m_pScreens->Show(m_dlgGCode);
    m_dlgManual.show();
}

void MainWindow::SetUpRoundButtons()
{
    m_pStartStop->SetUp();
    connect(&m_BtnStart, &CMyRndBtn::pressed, this, &MainWindow::Btn_Start_pressed);
    connect(&m_BtnStart, &CMyRndBtn::released, this, &MainWindow::Btn_Start_released);
    connect(&m_BtnPause, &CMyRndBtn::pressed, this, &MainWindow::Btn_Pause_pressed);
    connect(&m_BtnReset, &CMyRndBtn::pressed, this, &MainWindow::Btn_Reset_pressed);
    connect(&m_BtnStop, &CMyRndBtn::pressed, this, &MainWindow::Btn_Stop_pressed);
    connect(&m_BtnStop, &CMyRndBtn::released, this, &MainWindow::Btn_Stop_released);
}

void MainWindow::SetUpSlideBars()
{
    m_pFeeds->SetUp(m_pUi->Frame_FeedSettings);
    m_pSpindle->SetUp(m_pUi->Frame_SpindleSpeedSetting);
    connect(&m_G01FeedBar, &CdlgMyHorizSlideBar::ValueChanged, this, &MainWindow::OnG01FeedChange);
    connect(&m_G00FeedBar, &CdlgMyHorizSlideBar::ValueChanged, this, &MainWindow::OnG00FeedChange);
    connect(&m_SpindleSpeedBar, &CdlgMyHorizSlideBar::ValueChanged, this, &MainWindow::OnSpindleSpeedChange);
}

// ---- The supervision loop -------------------------------------------------------------------------------------------

// The order of the steps is binding. One that must not go on ends the whole loop: after an error of which nothing is
// known the machine is not to be run.
void MainWindow::OnTimer()
{
    if (m_bInOnTimer) return;
    try {
        AddLogMsg(m_Supervision.MeasureLateness(SUPERVISION_MS), MSG_NOTICE);
        m_Supervision.SendSpindleFrequency();
        m_bInOnTimer = true;
        ShowMessages(m_Supervision.NextMessages());
        m_pPositions->Show();
        if (m_Supervision.TakeStartRequest()) m_pStartStop->LightStart();
        ShowToolChangePause();
        if (m_Supervision.TakeOperationEnd()) OnOperationFinish();
        if (m_AppControl.m_eOperation == OP_IMG_CARVING) m_dlgImageCarving.FollowCarving();
        m_pPicture->FollowJob();
        m_pStartStop->WatchStopInput();
        WatchStartInput();
        m_pKeys->ActOnHeldKey();
        m_pSpindle->FollowProgram();
        m_bInOnTimer = false;
    } catch (...) {
        m_bInOnTimer = true;
        m_pStartStop->StopForGood();   // no input is read any more, and no message
        AddLogMsg(QStringLiteral("Unknown error"), MSG_ERROR);
    }
}

// One of each kind a tick, so that a flood of messages does not hold the window.
void MainWindow::ShowMessages(const stMessages& messages)
{
    AddLogMsg(messages.strError, MSG_ERROR);
    AddLogMsg(messages.strInfo, MSG_INFO);
}

void MainWindow::ShowToolChangePause()
{
    if (!m_Supervision.BeginToolChange()) return;
    m_pSpindle->ShowToolChange();
    Btn_Pause_pressed();   // takes the request
    EnableJogPanel(true);
}

void MainWindow::WatchStartInput()
{
    switch (m_Supervision.ReadStartInput()) {
    case START_INPUT_SAME: break;
    case START_INPUT_REFUSED: return AddLogMsg(MACHINE_IN_USE, MSG_ERROR);
    case START_INPUT_RISEN: on_Btn_GCode_clicked(); return m_pStartStop->LightStart();
    }
}

// ---- What the worker may call ---------------------------------------------------------------------------------------

template <class Fn> bool MainWindow::PostToInterface(Fn&& fnCall)
{
    if (QThread::currentThread() == thread()) return false;
    QMetaObject::invokeMethod(this, std::forward<Fn>(fnCall), Qt::QueuedConnection);
    return true;
}

void MainWindow::AddLogMsg(const QString& strMsg, eAppMsgType eMsgType)
{
    if (strMsg.isEmpty() || PostToInterface([this, strMsg, eMsgType] { AddLogMsg(strMsg, eMsgType); })) return;
    m_pLog->Add(strMsg, eMsgType);
}

void MainWindow::ClearToolGraphics()
{
    if (!PostToInterface([this] { ClearToolGraphics(); })) m_pPicture->Clear();
}

void MainWindow::UpdateWorkArea()
{
    if (!PostToInterface([this] { UpdateWorkArea(); })) m_dlgShapes.UpdateWorkArea();
}

void MainWindow::EnableDisableWindows()
{
    if (PostToInterface([this] { EnableDisableWindows(); })) return;
    m_uOperations = m_uOperations + 1;
    const qint32 iOperation = m_AppControl.m_eOperation;
    AddLogMsg(StartMessage(iOperation), MSG_INFO);
    m_pStates->Begin(iOperation);
    m_pSpindle->ShowStart(iOperation);
}

void MainWindow::OnOperationFinish()
{
    // Posted by a worker that was refused; by the time it is read here the next operation may have begun.
    const quint32 uOperation = m_uOperations;
    if (PostToInterface([this, uOperation] {
            if (m_uOperations == uOperation) OnOperationFinish();
        }))
        return;
    ShowOperationEnd(m_Supervision.EndOperation());
}

void MainWindow::ShowOperationEnd(const stOperationEnd& end)
{
    m_pMachineButtons->ShowEnd(end.iOperation);
    m_pSpindle->ShowEnd(end);
    if (end.iOperation == OP_MCH_HOME) m_dlgUserSettings.ResetUI();
    if (end.iOperation == OP_Z_PROFILE) m_dlgJobSettings.ResetUI();
    AddLogMsg(end.strMsg, MSG_INFO);
    if (IsJob(end.iOperation)) {
        m_pStates->End(end.iOperation);
        m_dlgImageCarving.ResetUI(true);
        m_dlgShapes.ResetUI(true);
        m_dlgGCode.ResetUI(true);
    }
    m_pStartStop->ShowIdle();
    m_pFeeds->Reapply();
}

// ---- What a screen may ask ------------------------------------------------------------------------------------------

bool MainWindow::IsEmergencyStopOn()
{
    const QString strWhy = CSupervision::WhyNotReleased();
    AddLogMsg(strWhy, MSG_ERROR);
    return !strWhy.isEmpty();
}

void MainWindow::EnlMchHomingOptions(bool bEnable)
{
    m_dlgUserSettings.UpdateAutoHomingOptions(bEnable);
    m_dlgShapes.ResetUI(true);
}

void MainWindow::EnableDisableSpindleSpeedCtrl(bool bEnable)
{
    m_pSpindle->EnableSpeed(bEnable);
}
void MainWindow::GrabKeyboard(bool bGrab)
{
    m_pKeys->Grab(bGrab);
}
void MainWindow::EnableScreenSelectors(bool bEnable)
{
    m_pStates->EnableSelectors(bEnable, m_AppControl.m_eOperation);
}

void MainWindow::OpenKeypad(QPushButton* pQBtn, const QString& strWndTitle)
{
    pQBtn->setText(CKeypadEntry(*this, *this).Enter(strWndTitle, pQBtn->text()));
}

void MainWindow::OpenKeypad(QPushButton* pQBtn, const QString& strWndTitle, const QString& strCtrlTxt,
                            const QString& strValue)
{
    pQBtn->setText(CKeypadEntry(*this, *this).Enter(strWndTitle, strValue) + QLatin1Char('\n') + strCtrlTxt);
}

double MainWindow::OpenKeypad(QPushButton* pQBtn, const QString& strWndTitle, const QString& strCtrlTxt,
                              const QString& strValue, stFloatPoint fRange, bool bShowSignBtn, quint16 iPrecision)
{
    return CKeypadEntry(*this, *this).Enter(pQBtn, strWndTitle, strCtrlTxt, strValue, fRange, bShowSignBtn, iPrecision);
}

void MainWindow::RndBtnRefresh(CMyRndBtn* pButton)
{
    CStartStop::SpringBack(*pButton);
}

void MainWindow::ResetBtnBkGnd(QPushButton* pButton, const QString& strStyle)
{
    QTimer::singleShot(BUTTON_MS, pButton, [pButton, strStyle] { pButton->setStyleSheet(strStyle); });
}

// ---- Keyboard -------------------------------------------------------------------------------------------------------

bool MainWindow::event(QEvent* pEvent)
{
    const QEvent::Type eType = pEvent->type();
    if (eType == QEvent::WindowBlocked || eType == QEvent::WindowDeactivate) m_pKeys->Drop();
    const bool bDone = QMainWindow::event(pEvent);
    if (eType == QEvent::WindowBlocked || eType == QEvent::WindowUnblocked) m_pKeys->UpdateGrab();
    return bDone;
}

bool MainWindow::eventFilter(QObject* pObject, QEvent* pEvent)
{
    if (pObject == qApp && pEvent->type() == QEvent::Quit) m_bQuitting = true;
    CStopOver::Follow(m_BtnStop, pObject, *pEvent);
    return m_pKeys->TakeStopKey(*pEvent) || QMainWindow::eventFilter(pObject, pEvent);
}

void MainWindow::keyPressEvent(QKeyEvent* pEvent)
{
    m_pKeys->Press(*pEvent);
}
void MainWindow::keyReleaseEvent(QKeyEvent* pEvent)
{
    m_pKeys->Release(*pEvent);
}

void MainWindow::LoadGCodeFromUSBOnKeyPress()
{
    const stUsbProgram program = FindUsbProgram(CPaths::MountFolder());
    if (!program.bStickFound) return AddLogMsg(QStringLiteral("No USB drive detected!"), MSG_ERROR);
    if (program.strFile.isEmpty()) return AddLogMsg(QStringLiteral("No G-Code files found"), MSG_ERROR);
    (void)m_dlgGCode.LoadFromStick(program.strFile);
}

// ---- Screens --------------------------------------------------------------------------------------------------------

void MainWindow::on_Btn_JobSettings_clicked()
{
    m_pScreens->Show(m_dlgJobSettings);
}
void MainWindow::on_Btn_GCode_clicked()
{
    m_pScreens->Show(m_dlgGCode);
}
void MainWindow::on_Btn_ShapeCarving_clicked()
{
    m_pScreens->Show(m_dlgShapes);
}
void MainWindow::on_Btn_ImageCarving_clicked()
{
    m_pScreens->Show(m_dlgImageCarving);
}
void MainWindow::on_Btn_UserSettings_clicked()
{
    m_pScreens->Show(m_dlgUserSettings);
}
void MainWindow::on_Btn_MachineSettings_clicked()
{
    if (AppConfig::m_bAppPassword && RefuseMachineInUse(*this)) return;   // over the keypad there is no Stop
    m_pScreens->Show(m_dlgMachineSettings);
}

bool MainWindow::StartShapes()
{
    if (!m_dlgShapes.IsEditing()) return m_dlgShapes.StartShapeCutting();
    AddLogMsg(QStringLiteral("Finish editing shapes and click start"), MSG_ERROR);
    return false;
}

// ---- Start and stop -------------------------------------------------------------------------------------------------

void MainWindow::Btn_Start_pressed()
{
    m_pStartStop->PressStart();
}
void MainWindow::Btn_Start_released()
{
    m_pStartStop->TouchLitStart();
}
void MainWindow::Btn_Pause_pressed()
{
    m_pStartStop->PressPause();
}
void MainWindow::Btn_Reset_pressed()
{
    m_pStartStop->PressReset();
}
void MainWindow::Btn_Stop_pressed()
{
    m_pStartStop->PressStop();
}
void MainWindow::Btn_Stop_released()
{
    m_pStartStop->ReleaseStop();
}
void MainWindow::on_Btn_StartPause_clicked()
{
    m_pStartStop->PressPlainStart();
}
void MainWindow::on_Btn_Reset_clicked()
{
    m_pStartStop->PressPlainReset();
}

// ---- Machine --------------------------------------------------------------------------------------------------------

void MainWindow::on_Btn_SetWorkZero_clicked()
{
    m_pMachineButtons->SetWorkZero();
}
void MainWindow::on_Btn_MoveWorkZero_clicked()
{
    m_pMachineButtons->MoveWorkZero();
}
void MainWindow::on_Btn_MoveZSafePos_clicked()
{
    m_pMachineButtons->MoveZSafePos();
}
void MainWindow::on_Btn_SetZ0WithZProbe_clicked()
{
    m_pMachineButtons->SetZ0WithZProbe();
}
void MainWindow::on_Btn_CurrentWorkZeroReference_clicked()
{
    m_pMachineButtons->ShowWorkZero();
}
void MainWindow::on_Btn_MoveWorkHome_X_clicked()
{
    m_pMachineButtons->MoveHome(X_AXIS);
}
void MainWindow::on_Btn_MoveWorkHome_Y_clicked()
{
    m_pMachineButtons->MoveHome(Y_AXIS);
}
void MainWindow::on_Btn_MoveWorkHome_Z_clicked()
{
    m_pMachineButtons->MoveHome(Z_AXIS);
}
void MainWindow::on_Btn_MoveWorkHome_A_clicked()
{
    m_pMachineButtons->MoveHome(A_AXIS);
}
void MainWindow::on_Btn_MoveWorkHome_B_clicked()
{
    m_pMachineButtons->MoveHome(B_AXIS);
}
void MainWindow::on_Btn_SaveSettings_clicked()
{
    m_pMachineButtons->SaveSettings();
}
void MainWindow::on_Btn_SimulationMode_clicked()
{
    m_pMachineButtons->ToggleSimulation();
}
void MainWindow::on_Btn_SpindleCWOnOff_clicked()
{
    m_pSpindle->ToggleCW();
}
void MainWindow::on_Btn_SpindleCCWOnOff_clicked()
{
    m_pSpindle->ToggleCCW();
}
void MainWindow::OnSpindleSpeedChange(short iValue)
{
    m_pSpindle->SetSpeed(iValue);
}
void MainWindow::OnG01FeedChange(short iPercentage)
{
    m_pFeeds->SetFeed(iPercentage);
}
void MainWindow::OnG00FeedChange(short iPercentage)
{
    m_pFeeds->SetRapid(iPercentage);
}

// ---- Picture --------------------------------------------------------------------------------------------------------

void MainWindow::DrawToolPaths()
{
    m_pPicture->Draw();
}
void MainWindow::SetWorkPieceHeight(double fHeight)
{
    m_pPicture->SetHeight(fHeight);
}
void MainWindow::on_Btn_SetWorkPieceLength_clicked()
{
    m_pPicture->AskLength();
}
void MainWindow::on_Btn_SetWorkPieceWidth_clicked()
{
    m_pPicture->AskWidth();
}
void MainWindow::on_Btn_SetWorkPieceHeight_clicked()
{
    m_pPicture->AskHeight();
}
void MainWindow::on_Btn_SelectToolPaths_clicked()
{
    m_pPicture->SelectToolPaths();
}
void MainWindow::on_Btn_SelectCamera_clicked()
{
    m_pPicture->SelectCamera();
}
void MainWindow::on_Btn_CameraRecStop_clicked()
{
    m_pPicture->ToggleRecording();
}
void MainWindow::OnNewCncCamImage()
{
    m_pPicture->ShowFrame();
}

// ---- Log ------------------------------------------------------------------------------------------------------------

void MainWindow::ClearLog()
{
    m_pLog->Clear();
}
void MainWindow::SaveLog()
{
    m_pLog->Save();
}
void MainWindow::on_Btn_ClearLog_clicked()
{
    const CPressedBtn press(*this, m_pUi->Btn_ClearLog);
    if (!Refused(WhyNotFree())) m_pLog->AskToClear();
}
void MainWindow::on_Btn_SaveLog_clicked()
{
    const CPressedBtn press(*this, m_pUi->Btn_SaveLog);
    if (!Refused(WhyNotFree())) SaveLog();   // a box would take Stop away while axes move
}
