#pragma once
#include "camera/CncCamera.h"
#include "common/MachineTypes.h"
#include "common/OperatorScreen.h"
#include "common/Shared.h"
#include "control/AppControl.h"
#include "control/Supervision.h"
#include "preview/ToolPathPicture.h"
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
#include "window/KeyControl.h"

#include <QElapsedTimer>
#include <QMainWindow>
#include <QMutex>

class QTimer;
class Ui_MainWindow;

// The one window of the system. It owns everything: the screens, which it swaps in the work area, the jog panel, the
// worker and its axes. A timer of 34 ms runs the supervision loop, which shows what the worker has to say and watches
// the inputs. Nothing here waits for the machine.
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
    void OnBtnClickTimerElapsed();

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
    bool event(QEvent* pEvent) override;
    bool eventFilter(QObject* pObject, QEvent* pEvent) override;

private:
    // On the interface thread: at once there, from another thread as a posted call.
    template <class Fn> bool PostToInterface(Fn&& fnCall);

    // Start-up, in the order of the steps.
    void SetUpWindow();
    void LoadSettings();
    void SetUpPicture();
    void SetUpMachine();
    void PlaceScreens();
    void SetUpRoundButtons();
    void StartSupervision();
    void SetUpSlideBars();

    // The steps of a tick.
    void ShowNextMessages();
    void ShowPositions();
    void ShowStartRequest();
    void ShowToolChangePause();
    void NoteOperationEnd();
    void ShowCarvingRow();
    void ShowToolPathsOfJob();
    void WatchEmergencyStopInput();
    void WatchStartInput();
    void ActOnHeldKey();
    void ShowSpindleOfProgram();

    // Operation states.
    struct stStateRow;
    static const stStateRow m_lstStateTable[];
    bool MayBeEnabled(const QWidget* pWidget) const;
    bool IsScreenSelector(const QWidget* pWidget) const;
    void ShowOperationEnd(const stOperationEnd& end);
    void ShowScreenOfEnd(qint32 iOperation);
    void ShowJobEnd(const stOperationEnd& end);
    void ShowSpindle(QPushButton* pButton, bool bEnabled, const QString& strStyle, const QString& strText);
    void ShowAutoSpindle();
    void ShowSpindleOff();

    // Screens and round buttons.
    void ShowScreen(QWidget* pScreen, QPushButton* pButton);
    bool PassSettingsLock();
    bool IsSettingsScreenShown() const;
    QString WhyNotStart();
    bool StartShownScreen();
    void RefuseStart(const QString& strMsg);
    void ToggleEmergencyStop();

    // Machine buttons.
    bool Refused(const QString& strWhy);
    bool RefuseUnhomed();
    bool RefuseBusy();
    bool MayMoveMachine();
    void MoveAxisWorkHome(eAxis axis, QPushButton* pButton);
    void ToggleSpindle(quint16 uMCode, QPushButton* pButton, QPushButton* pOther, const QString& strName);

    // Work piece.
    double AskWorkPieceSize(QPushButton* pButton, const QString& strTitle, const QString& strLabel, double fSize);
    void ShowWorkPieceSize(QPushButton* pButton, const QString& strLabel, double fSize);
    void UpdateToolPathView();
    bool StartRecording();

    // Keyboard.
    void DoKey(const stKeyDecision& decision, int iKey);
    void ChangeFeedByKey(int iStep);
    void ChangeSpeedByKey(int iStep);
    void JogByKey(eAxis axis, int iSign);
    void SwitchSpindleByKey();
    void MoveZeroByKey(eKeyAction eAction);
    void SetZeroByKey(eKeyAction eAction);
    void EndKeyJog();
    void DropKeys();
    void UpdateKeyboardGrab();

    Ui_MainWindow* m_pUi;
    CdlgMyHorizSlideBar m_G01FeedBar, m_G00FeedBar, m_SpindleSpeedBar;
    stFloatPoint m_PosBeforeSimulation;
    CToolPathPicture m_Picture;
    bool m_bInOnTimer = false;
    CdlgJobSettings m_dlgJobSettings;
    CDlgImageCarving m_dlgImageCarving;
    CDlgManual m_dlgManual;
    CDlgShapes m_dlgShapes;
    CdlgGCode m_dlgGCode;
    CDlgUserSettings m_dlgUserSettings;
    CDlgMachineSettings m_dlgMachineSettings;
    QWidget* m_pCurDlg = nullptr;
    QPushButton* m_pCurDlgBtn = nullptr;
    CMyRndBtn m_BtnStop, m_BtnStart, m_BtnPause, m_BtnReset;
    QMutex m_mtxFeed;
    QTimer* m_pSupervisionTimer = nullptr;
    QTimer* m_pBtnClickTimer = nullptr;

public:
    AppControl m_AppControl;

private:
    CSupervision m_Supervision{m_AppControl};
    QImage m_CameraImage;   // what is shown of the camera
    CMyView m_ToolPathView;
    CCncCamera m_CncCamera;
    qint32 m_iKeyHoldCode = 0;   // -1: used
    QElapsedTimer m_KeyHoldTimer;

    bool m_bKeyModeContinuous = true;
    double m_fKeyJogStep = 0.05;   // mm
    bool m_bKeyJogging = false;
    bool m_bGrabWanted = true;      // false while text is typed on a screen
    bool m_bSelectorsOff = false;   // shapes are edited
    bool m_bStarting = true;
    bool m_bFiveAxes = false;             // as the machine was started: a change needs a restart
    bool m_bJogPanelTaken = false;        // by a start or a resume; given back at the end of the operation
    CShared<quint32> m_uOperations = 0;   // counts starts: a posted end belongs to the operation that it was posted in
};
