#pragma once
#include "camera/CncCamera.h"
#include "common/MachineTypes.h"
#include "common/OperatorScreen.h"
#include "common/Shared.h"
#include "control/AppControl.h"
#include "control/Supervision.h"
#include "screens/carving/DlgImageCarving.h"
#include "screens/gcode/DlgGCode.h"
#include "screens/host/ScreenHost.h"
#include "screens/jog/DlgManual.h"
#include "screens/settings/DlgMachineSettings.h"
#include "screens/settings/DlgUserSettings.h"
#include "screens/shapes/DlgShapes.h"
#include "screens/zprofile/DlgJobSettings.h"
#include "widgets/DlgMyHorizSlideBar.h"
#include "widgets/MyRndBtn.h"
#include "widgets/MyView.h"

#include <QMainWindow>

#include <memory>

class CFeedPanel;
class CKeyPilot;
class CLogList;
class CMachineButtons;
class COperationStates;
class CPicturePanel;
class CPositionPanel;
class CScreenStack;
class CSpindlePanel;
class CStartStop;
class QMessageBox;
class QTimer;
class Ui_MainWindow;

// The one window of the system. It owns everything: the screens, which it swaps in the work area, the jog panel, the
// worker and its axes, and the parts that do the work of its slots. A timer of 34 ms runs the supervision loop, which
// shows what the worker has to say and watches the inputs. Nothing here waits for the machine.
// Interface thread; what it offers as COperatorScreen may be called from any thread and is then done on this one.
class MainWindow : public QMainWindow, public CScreenHost, public COperatorScreen
{
    Q_OBJECT

public:
    // Loads the configuration, sets up pins and axes; the machine may begin to home here.
    explicit MainWindow(QWidget* pParent = nullptr);
    ~MainWindow() override;

    AppControl& Machine() override { return m_AppControl; }
    bool IsEmergencyStopOn() override;

    void EnableDisableWindows() override;
    void OnOperationFinish() override;
    void ShowCriticalBox(const QString& strTitle, const QString& strText) override;
    void UpdateWorkArea() override;

    void EnlMchHomingOptions(bool bEnable) override;
    void EnableDisableSpindleSpeedCtrl(bool bEnable) override;
    void UpdateUserSettings() override { m_dlgUserSettings.ConfigSettings(); }
    void EnableJogPanel(bool bEnable) override { m_dlgManual.setEnabled(bEnable); }
    void GrabKeyboard(bool bGrab) override;
    void EnableScreenSelectors(bool bEnable) override;

    // From the button's text, back to it with four decimals.
    void OpenKeypad(QPushButton* pQBtn, const QString& strWndTitle);
    // From strValue; the button shows the result with four decimals above strCtrlTxt.
    void OpenKeypad(QPushButton* pQBtn, const QString& strWndTitle, const QString& strCtrlTxt, const QString& strValue);
    double OpenKeypad(QPushButton* pQBtn, const QString& strWndTitle, const QString& strCtrlTxt,
                      const QString& strValue, stFloatPoint fRange, bool bShowSignBtn, quint16 iPrecision) override;

    // A round button springs back 100 ms from now, unless its press has succeeded meanwhile.
    void RndBtnRefresh(CMyRndBtn* pButton);
    void ResetBtnBkGnd(QPushButton* pButton, const QString& strStyle) override;

    // Behind an error of which nothing is known: the machine stands, and stays so until the program is started anew.
    void StopForGood();

    void ClearLog();
    void SaveLog();

    void ClearToolGraphics() override;
    void DrawToolPaths();
    // A job fixes the height of the work piece, mm.
    void SetWorkPieceHeight(double fHeight);

    // Loads the first program of a USB stick in the place of the one that is held, and checks it.
    void LoadGCodeFromUSBOnKeyPress();

public slots:
    void AddLogMsg(const QString& strMsg, eAppMsgType eMsgType) override;

    void on_Btn_GCode_clicked();
    void on_Btn_ShapeCarving_clicked();
    void on_Btn_ImageCarving_clicked();
    void on_Btn_UserSettings_clicked();
    void on_Btn_MachineSettings_clicked();
    void on_Btn_JobSettings_clicked();

    void OnTimer();
    void OnBtnClickTimerElapsed() {}   // wanted: no code starts its timer

    void Btn_Stop_pressed();
    void Btn_Stop_released();
    void Btn_Start_pressed();
    void Btn_Start_released();
    void Btn_Pause_pressed();
    void Btn_Reset_pressed();
    void on_Btn_StartPause_clicked();
    void on_Btn_Reset_clicked();

    void on_Btn_SetWorkZero_clicked();
    void on_Btn_MoveWorkZero_clicked();
    void on_Btn_MoveZSafePos_clicked();
    void on_Btn_SetZ0WithZProbe_clicked();
    void on_Btn_CurrentWorkZeroReference_clicked();
    void on_Btn_MoveWorkHome_X_clicked();
    void on_Btn_MoveWorkHome_Y_clicked();
    void on_Btn_MoveWorkHome_Z_clicked();
    void on_Btn_MoveWorkHome_A_clicked();
    void on_Btn_MoveWorkHome_B_clicked();
    void on_Btn_SaveSettings_clicked();
    void on_Btn_SimulationMode_clicked();
    void on_Btn_SpindleCWOnOff_clicked();
    void on_Btn_SpindleCCWOnOff_clicked();

    void OnG01FeedChange(short iPercentage);
    void OnG00FeedChange(short iPercentage);
    void OnSpindleSpeedChange(short iValue);

    void on_Btn_SetWorkPieceLength_clicked();
    void on_Btn_SetWorkPieceWidth_clicked();
    void on_Btn_SetWorkPieceHeight_clicked();
    void on_Btn_SelectToolPaths_clicked();
    void on_Btn_SelectCamera_clicked();
    void on_Btn_CameraRecStop_clicked();
    void OnNewCncCamImage();

    void on_Btn_ClearLog_clicked();
    void on_Btn_SaveLog_clicked();

protected:
    void keyPressEvent(QKeyEvent* pEvent) override;
    void keyReleaseEvent(QKeyEvent* pEvent) override;
    // A user's close asks while an operation runs; the end of the program, as by a signal, does not.
    void closeEvent(QCloseEvent* pEvent) override;
    bool event(QEvent* pEvent) override;
    bool eventFilter(QObject* pObject, QEvent* pEvent) override;

private:
    // On the interface thread: at once there, from another thread as a posted call.
    template <class Fn> bool PostToInterface(Fn&& fnCall);

    // Steps of the start-up.
    void MakeParts();
    void SetUpWindow();
    void LoadSettings();
    void PlaceScreens();
    void SetUpRoundButtons();
    void SetUpSlideBars();

    // Steps of a tick.
    void ShowMessages(const stMessages& messages);
    void ShowToolChangePause();
    void WatchStartInput();

    void ShowOperationEnd(const stOperationEnd& end);
    void AddStop(QMessageBox& box);
    bool StartShapes();

    Ui_MainWindow* m_pUi;
    // Made when the form is there, and gone behind everything that may still call the window.
    std::unique_ptr<CLogList> m_pLog;
    std::unique_ptr<COperationStates> m_pStates;
    std::unique_ptr<CScreenStack> m_pScreens;
    std::unique_ptr<CPositionPanel> m_pPositions;
    std::unique_ptr<CFeedPanel> m_pFeeds;
    std::unique_ptr<CSpindlePanel> m_pSpindle;
    std::unique_ptr<CPicturePanel> m_pPicture;
    std::unique_ptr<CMachineButtons> m_pMachineButtons;
    std::unique_ptr<CStartStop> m_pStartStop;
    std::unique_ptr<CKeyPilot> m_pKeys;

    CdlgMyHorizSlideBar m_G01FeedBar, m_G00FeedBar, m_SpindleSpeedBar;
    bool m_bInOnTimer = false, m_bQuitting = false;
    CdlgJobSettings m_dlgJobSettings;
    CDlgImageCarving m_dlgImageCarving;
    CDlgManual m_dlgManual;
    CDlgShapes m_dlgShapes;
    CdlgGCode m_dlgGCode;
    CDlgUserSettings m_dlgUserSettings;
    CDlgMachineSettings m_dlgMachineSettings;
    CMyRndBtn m_BtnStop, m_BtnStart, m_BtnPause, m_BtnReset;
    QTimer* m_pSupervisionTimer = nullptr;
    QTimer* m_pBtnClickTimer = nullptr;

public:
    AppControl m_AppControl;

private:
    CSupervision m_Supervision{m_AppControl};
    CMyView m_ToolPathView;
    CCncCamera m_CncCamera;
    bool m_bStarting = true;
    bool m_bSettingsDoubtful = false;     // the configuration was not read whole
    CShared<quint32> m_uOperations = 0;   // counts starts: a posted end belongs to the operation that it was posted in
};
