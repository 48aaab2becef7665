#include "window/MainWindow.h"

#include "common/Paths.h"
#include "config/AppConfig.h"
#include "hardware/VantorGpio.h"
#include "widgets/ButtonStyle.h"
#include "widgets/Look.h"
#include "window/MainWindowUi.h"

#include <QApplication>
#include <QMessageBox>
#include <QScreen>
#include <QThreadPool>
#include <QTimer>

static constexpr int SUPERVISION_MS = 34;
static constexpr QSize WINDOW_SIZE(1250, 840);
static constexpr QPoint WORK_AREA(10, 45), JOG_PANEL(540, 450);
static constexpr QRect PICTURE(10, 480, 520, 270);
static constexpr QPoint SLIDE_BAR(75, 15), HIDDEN_SLIDE_BAR(75, 40);
static constexpr double SPEED_STEPS = 24.0, SPEED_AT_START = 8.0;

// ---- Start-up -------------------------------------------------------------------------------------------------------

MainWindow::MainWindow(QWidget* pParent)
    : QMainWindow(pParent), m_pUi(new Ui_MainWindow), m_BtnStop(this), m_BtnStart(this), m_BtnPause(this),
      m_BtnReset(this)
{
    m_pUi->setupUi(this);
    SetUpWindow();
    LoadSettings();
    CVANTORGPIO::InitGpio();
    if (AppConfig::m_bPWMCtrlUsed) CVANTORGPIO::PwmStart();
    m_bFiveAxes = AppConfig::m_iMchType == MAX_AXES;
    for (QPushButton* pButton : {m_pUi->Btn_MoveWorkHome_A, m_pUi->Btn_MoveWorkHome_B})
        pButton->setEnabled(m_bFiveAxes);
    SetUpPicture();
    SetUpMachine();
    PlaceScreens();
    SetUpRoundButtons();
    StartSupervision();
    SetUpSlideBars();
    m_CncCamera.setParent(this);
    connect(&m_CncCamera, &CCncCamera::NewImage, this, &MainWindow::OnNewCncCamImage);
    m_pBtnClickTimer = new QTimer(this);
    connect(m_pBtnClickTimer, &QTimer::timeout, this, &MainWindow::OnBtnClickTimerElapsed);
    ClearToolGraphics();
    qApp->installEventFilter(this);
    UpdateKeyboardGrab();
    m_bStarting = false;
}

void MainWindow::SetUpWindow()
{
    setStyleSheet(CLook::WINDOW_STYLE);
    setFixedSize(WINDOW_SIZE);
    for (QPushButton* pButton : m_pUi->centralwidget->findChildren<QPushButton*>())
        pButton->setStyleSheet(BTN_BKGND_GRAY);
    m_pUi->Btn_StartPause->setStyleSheet(BTN_BKGND_START);
    m_pUi->Btn_SelectToolPaths->setStyleSheet(BTN_BKGND_GREEN);
    m_pUi->Btn_CameraRecStop->setIcon(QIcon(QStringLiteral(":/res/StartVideoRec.png")));
    for (QPushButton* pButton : {m_pUi->Btn_JobSettings, m_pUi->Btn_GCode, m_pUi->Btn_ShapeCarving,
                                 m_pUi->Btn_ImageCarving, m_pUi->Btn_UserSettings, m_pUi->Btn_MachineSettings})
        pButton->setStyleSheet(SCREEN_BTN_UNSELECTED);
    for (QLabel* pLetter : m_pUi->frame->findChildren<QLabel*>(QRegularExpression(QStringLiteral("^Lbl_Axis_"))))
        pLetter->setFont(CLook::Font(24, true));

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
    if (AppConfig::LoadConfig(CONFIG_FILE)) return;
    QMessageBox::information(this, QStringLiteral("Error"),
                             QStringLiteral("Old VANTOR.dat file. Please take note of your settings and\n"
                                            "delete VANTOR.dat file in /home/vantor/VANTOR folder."),
                             QMessageBox::Ok);
}

void MainWindow::SetUpPicture()
{
    ShowWorkPieceSize(m_pUi->Btn_SetWorkPieceLength, LENGTH_LABEL, m_Picture.Length());
    ShowWorkPieceSize(m_pUi->Btn_SetWorkPieceWidth, WIDTH_LABEL, m_Picture.Width());
    ShowWorkPieceSize(m_pUi->Btn_SetWorkPieceHeight, HEIGHT_LABEL, m_Picture.Height());
    m_ToolPathView.setParent(this);
    m_ToolPathView.setObjectName(QStringLiteral("m_ToolPathView"));
    m_ToolPathView.m_colBkGnd = QColor(0, 0, 0, 255);
    m_ToolPathView.setGeometry(PICTURE);
    m_ToolPathView.EnableZoom(true);
    m_ToolPathView.show();
}

void MainWindow::SetUpMachine()
{
    m_AppControl.setParent(this);
    connect(&m_AppControl, &AppControl::AddMsg, this, &MainWindow::AddLogMsg);
    (void)m_AppControl.InitMachine();
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
    ShowScreen(&m_dlgGCode, m_pUi->Btn_GCode);
    m_dlgManual.show();
}

void MainWindow::SetUpRoundButtons()
{
    static constexpr QSize SIZE(90, 90);
    const struct
    {
        CMyRndBtn& button;
        QPoint at;
        QColor released, pressed;
        const char* szText;
        qint16 sTextX;
    } lstButtons[] = {
        {m_BtnStart, {920, 580}, {0, 100, 0}, {50, 205, 50}, "Start", 20},
        {m_BtnPause, {1030, 580}, {200, 120, 0}, {255, 191, 0}, "Pause", 15},
        {m_BtnReset, {1140, 580}, {50, 125, 255}, {150, 150, 225}, "Reset", 15},
        {m_BtnStop, {1030, 700}, {128, 10, 10}, {255, 0, 0}, "Stop", 17},
    };
    for (const auto& entry : lstButtons) {
        entry.button.setGeometry(QRect(entry.at, SIZE));
        entry.button.SetBtnColor(entry.released, entry.pressed);
        entry.button.m_sTextX = entry.sTextX;
        entry.button.SetBtnText(QString::fromLatin1(entry.szText));
        entry.button.raise();   // they are older than the form, which would take their touches
    }
    m_BtnStop.m_sFontSize = 30;
    m_BtnStart.setObjectName(QStringLiteral("m_BtnStart"));
    m_BtnPause.setObjectName(QStringLiteral("m_BtnPause"));
    m_BtnReset.setObjectName(QStringLiteral("m_BtnReset"));
    m_BtnStop.setObjectName(QStringLiteral("m_BtnStop"));

    connect(&m_BtnStart, &CMyRndBtn::pressed, this, &MainWindow::Btn_Start_pressed);
    connect(&m_BtnStart, &CMyRndBtn::released, this, &MainWindow::Btn_Start_released);
    connect(&m_BtnPause, &CMyRndBtn::pressed, this, &MainWindow::Btn_Pause_pressed);
    connect(&m_BtnReset, &CMyRndBtn::pressed, this, &MainWindow::Btn_Reset_pressed);
    connect(&m_BtnStop, &CMyRndBtn::pressed, this, &MainWindow::Btn_Stop_pressed);
    connect(&m_BtnStop, &CMyRndBtn::released, this, &MainWindow::Btn_Stop_released);
}

void MainWindow::StartSupervision()
{
    m_pSupervisionTimer = new QTimer(this);
    connect(m_pSupervisionTimer, &QTimer::timeout, this, &MainWindow::OnTimer);
    m_pSupervisionTimer->start(SUPERVISION_MS);
}

void MainWindow::SetUpSlideBars()
{
    const struct
    {
        CdlgMyHorizSlideBar& bar;
        QWidget* pFrame;
        QPoint at;
        const char* szName;
    } lstBars[] = {{m_G01FeedBar, m_pUi->Frame_FeedSettings, SLIDE_BAR, "m_G01FeedBar"},
                   {m_G00FeedBar, m_pUi->Frame_FeedSettings, HIDDEN_SLIDE_BAR, "m_G00FeedBar"},
                   {m_SpindleSpeedBar, m_pUi->Frame_SpindleSpeedSetting, SLIDE_BAR, "m_SpindleSpeedBar"}};
    for (const auto& entry : lstBars) {
        entry.bar.setParent(entry.pFrame);
        entry.bar.setObjectName(QString::fromLatin1(entry.szName));
        entry.bar.move(entry.at);
        entry.bar.setVisible(&entry.bar != &m_G00FeedBar);
    }
    m_G01FeedBar.setValue(qRound(AppConfig::m_fAxisFeedPercent[X_AXIS] * 100.0));
    m_G00FeedBar.setValue(qRound(AppConfig::m_fAxisFeedPercent[Z_AXIS] * 100.0));
    stFloatPoint range;
    range.x = 1.0;
    range.y = SPEED_STEPS;
    m_SpindleSpeedBar.SetSliderRange(range);
    m_SpindleSpeedBar.setValue(SPEED_AT_START);
    m_SpindleSpeedBar.setEnabled(AppConfig::m_bPWMCtrlUsed);
    connect(&m_G01FeedBar, &CdlgMyHorizSlideBar::ValueChanged, this, &MainWindow::OnG01FeedChange);
    connect(&m_G00FeedBar, &CdlgMyHorizSlideBar::ValueChanged, this, &MainWindow::OnG00FeedChange);
    connect(&m_SpindleSpeedBar, &CdlgMyHorizSlideBar::ValueChanged, this, &MainWindow::OnSpindleSpeedChange);
}

// ---- Shut-down ------------------------------------------------------------------------------------------------------

MainWindow::~MainWindow()
{
    if (m_CncCamera.IsCamOpen()) m_CncCamera.StopVideoCapture();
    CVANTORGPIO::PwmStop();
    m_pSupervisionTimer->stop();
    m_AppControl.StopAll();
    m_AppControl.wait();
    QThreadPool::globalInstance()->waitForDone();   // a load or a compilation reports to a screen
    COperatorScreen::Set(nullptr);
    delete m_pSupervisionTimer;
    delete m_pBtnClickTimer;
    // Only the record: the frames are children of the window and go behind the bars, which are members.
    delete m_pUi;
}

// ---- What the worker may call ---------------------------------------------------------------------------------------

// The box is not opened from within the call: in a tick of the supervision loop it would keep the inputs from being
// read. At start-up there is no tick yet.
void MainWindow::ShowCriticalBox(const QString& strTitle, const QString& strText)
{
    const auto fnShow = [this, strTitle, strText] { QMessageBox::critical(this, strTitle, strText, QMessageBox::Ok); };
    if (m_bStarting)
        fnShow();
    else
        QMetaObject::invokeMethod(this, fnShow, Qt::QueuedConnection);
}

bool MainWindow::IsEmergencyStopOn()
{
    return Refused(CSupervision::WhyNotReleased());
}

void MainWindow::EnlMchHomingOptions(bool bEnable)
{
    m_dlgUserSettings.UpdateAutoHomingOptions(bEnable);
    m_dlgShapes.ResetUI(true);
}

// Wanted: no code starts the timer, it stays idle.
void MainWindow::OnBtnClickTimerElapsed() {}
