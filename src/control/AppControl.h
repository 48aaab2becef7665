#pragma once
#include "carving/ImgCarving.h"
#include "common/MachineTypes.h"
#include "common/Operation.h"
#include "common/OperatorScreen.h"
#include "common/Shared.h"
#include "config/AppConfig.h"
#include "gcode/GCodeTokens.h"
#include "motion/MachineAxes.h"
#include "shapes/ShapeModel.h"

#include <QMutex>
#include <QString>
#include <QThread>

#include <string>
#include <vector>

// All of one arc, mm.
struct stGCodeEllipseInfo
{
    stFloatPoint stStart, stEnd, stCenter;
    bool bFullCircle = false;
    double fRadius = 0.0;
    eDirection eDir = DIR_CW;   // G02 clockwise, G03 counter-clockwise
};

// The machine: the five axes, and one operation at a time on a thread of its own. The interface thread calls a
// Start... operation, which records the job and starts the thread; run does it; AfterOperationFinish tidies up and
// raises m_bOperationFinished, which the supervision loop sees. Refusals and failures are texts in m_lstErrMsg.
// mm and mm/s. The virtual operations are what a test or a recording watches.
class AppControl : public QThread, public CMachineAxes
{
    Q_OBJECT

public:
    explicit AppControl(QObject* pParent = nullptr);
    ~AppControl() override;

    // ---- Operations; interface thread ----
    bool InitMachine();
    bool StartWorkHomingSequence();
    bool StartMchHomingSequence();
    bool StartMchHomingSequence(eAxis axis);   // this one alone: the others keep their place and their home
    void StartZ0usingZProbeSeq();
    void RunZProfile();
    void StartGCode(const GCodeProgram* pProgram);
    void StartExecGCodeLine(const GCodeProgram* pProgram, int iLine);
    void StartShapeCutting(stShapeCuttingInfo* pInfo);   // owned by the caller, read until the operation has ended
    void CreateGCodeFromShapes(QString fileName);        // of m_pShapeCuttingInfo; no axis moves
    void StartImgCarving();
    // No axis moves. False: not written; why has been told, unless the file could not even be made.
    bool CreateGCodeFromImage(QString strFile);
    bool WriteImageToGCodeFile(QString strFile);   // adds one pass
    // Everything stands at once, without a ramp; a paused job is abandoned.
    void StopAll();

    // ---- Any thread ----
    bool IsMachineIdle() const;
    double GetCurPos(eAxis axis) const { return m_AxisCtrl[axis].GetCurPos(); }
    QString GetAxisErrMsg(eAxis axis) const { return m_AxisCtrl[axis].GetErrorMsg(); }
    void Stop(eAxis axis) { m_AxisCtrl[axis].Stop(); }
    void DeccelerateAxis(eAxis axis) { m_AxisCtrl[axis].DeccelerateAxis(); }
    QString GetErrMsg();   // takes the newest; empty when there is none
    QString GetInfoMsg();
    void PushErrMsg(const QString& strMsg);
    void PushInfoMsg(const QString& strMsg);
    static void WriteLog(QString strText);

    // ---- Homing, work zero, probe ----
    bool GetHomeDone() const;
    void SetMchHome();
    void ClearHome();
    void AutoHomingFinished();
    bool MoveAxisHome(eAxis axis, bool bWait);
    bool MoveWorkZero(eAxis axis, bool bWait);
    void MoveZSafePos();
    static double SafeHeight();   // of Z, mm in work coordinates
    bool MoveAbs(eAxis axis, double fPos);
    bool MoveRel(eAxis axis, double fDist);
    void JogPos(eAxis axis);
    void JogNeg(eAxis axis);
    bool SetWorkZero(eAxis axis);
    void SetWorkZero();
    virtual bool MoveWorkZeroAll();   // worker
    void MoveMchHomeAll();            // worker
    void SetZ0usingZProbe();          // worker

    // ---- Spindle ----
    void TurnOnOffSpindle(bool bOn, eDirection eDir);
    virtual void SetSpindleSpeed(int iSpeed);   // worker

    // ---- Moves; worker ----
    virtual bool G00_Move(stFloatPoint target, bool bSetAccVel, bool bWait);
    virtual bool G01_Move(stFloatPoint target, bool bSetAccVel, bool bWait);
    virtual bool SetAccAndVel(stFloatPoint from, stFloatPoint to, eGMoveCmnd eCmnd);
    virtual bool EngMoveAxisAbs(eAxis axis, double fPos, bool bWait);
    virtual bool EngMoveAxisRel(eAxis axis, double fDist, bool bWait);
    virtual void SetAxisFeed(double fFeed);
    bool ExecuteMovCmnd(stFloatPoint from, stFloatPoint to, bool bSetAccVel, bool bWait, eGMoveCmnd eCmnd);
    bool GetPosToMov(unsigned int uLine, stFloatPoint& pos);
    void ToMchCoord(stFloatPoint& pos) const;
    void GetAllAxisCurPos(stFloatPoint& pos) const;
    virtual void ResetAccVel();
    virtual void SetVelocityAcc(eAxis axis, double fVel, double fAcc);
    bool WaitForMotionFinish(const signed char* pSelection);

    // ---- Arcs and surface; worker ----
    virtual bool CutArc(unsigned int uLine, stGCodeEllipseInfo& info);
    static void FindArcCenter(stGCodeEllipseInfo& info);
    bool G02_G03_Move(stGCodeEllipseInfo* pInfo);
    bool ZProfileMove(stFloatPoint start, stFloatPoint& end);
    void CreateZProfile();

    // ---- Shapes; worker ----
    void CutShapes();

    // ---- Carving; worker, or the interface where no operation runs ----
    void RunImgCarving();        // all passes; worker
    virtual bool ImgCarving();   // one pass; worker
    void CreateImgZProfile();    // the grid, of the record's depth as it is now
    void CreateCarvingZProfile(stImgZProfileInfo* pMap);
    static void GetMinMaxValue(QImage& img, unsigned char& iMin, unsigned char& iMax);

    // ---- Program; worker ----
    void RunGCode();
    bool ExecGCodeLine(int iLine);
    static GCodeTokens Parse_GCode_Line(const QString& strLine);
    static void AutoSaveGCodeExecStatus(QString strFile, int iLine);

    CShared<bool> m_bExecSingleLine = false;
    qint32 m_iSingleLineNo = 0;
    const GCodeProgram* m_pGCodeProgram = nullptr;       // owned by the caller
    stShapeCuttingInfo* m_pShapeCuttingInfo = nullptr;   // owned by the caller
    stImgCarvingData m_stImgCarvingData;
    CShared<quint16> m_iCurCarvingRow = 0;    // of the picture
    CShared<qint32> m_eOperation = OP_NONE;   // until the interface has taken note of the end
    CShared<bool> m_bPause = false;           // moves wait while it is set
    CShared<bool> m_bOperationFinished = false;
    CShared<bool> m_bStartBtnPressRequest = false;   // M00, M01: draw Start as pressed
    CShared<bool> m_bToolChangePause = false;        // a tool change asks for the pause
    static CShared<bool> m_bWritingGCodeExecStatusFile;

    qint32 m_iCurGCodeLine = 0;
    stFloatPoint m_CurGCodePos;
    double m_fUnitFactor = 1.0;     // 25.4 after G20
    double m_fLastPrgmFeed = 0.0;   // as written
    std::string m_strSelTool;       // the last T word as written
    static constexpr qint32 m_iMaxSubPrgmNesting = 6;
    std::vector<int> m_lstSubPrgmRetLine, m_lstSubPrgmStartLine;
    std::vector<unsigned> m_lstSubPrgmRepeats;

    QList<QString> m_lstErrMsg, m_lstInfoMsg;   // newest last; guarded on both sides
    mutable QMutex m_MsgMutex;

signals:
    void AddMsg(QString strMsg, eAppMsgType eType);
    void SelNxtGCodeLine(unsigned int uLine);

protected:
    void run() override;
    // The code as it was when run began: the interface may have taken note of an early end meanwhile.
    void AfterOperationFinish(eOperation eCode);

private:
    // An emergency stop, or a job that was given up: wherever the worker asks the one it asks the other.
    bool IsStopRequested() const { return AppConfig::m_bEmergencyStopON || m_bAbandoned; }
    CShared<bool> m_bAbandoned = false;    // from StopAll to the next start; never asked by the axes, which still jog
    CShared<bool> m_bWorkerBusy = false;   // from a start to the end of AfterOperationFinish

    static int AxesInUse() { return AppConfig::m_iMchType < MAX_AXES ? AppConfig::m_iMchType : MAX_AXES; }

    void WaitForWorker();

    // Start: interface thread. False, with a message: the last operation has not ended.
    bool ClaimWorker();
    void LaunchOperation(eOperation eCode);
    bool ClaimForJob();
    void LaunchJob(eOperation eCode, bool bAutoSpindle);

    // Worker.
    struct stWork;
    void RunOperation(eOperation eCode);
    bool StartJobMotion(bool bWorkZeroFirst);
    void GoToWorkZero() { (void)MoveWorkZeroAll(); }
    void RunProgram();
    void EndMotion(eOperation eCode);
    void EndStoppedOperation();
    bool IsAnyMoving(const signed char* pSelection) const;

    // Homing, work zero.
    signed char m_lstAxesToHome[MAX_AXES] = {1, 1, 1, 1, 1};   // of the homing that runs
    bool StartHoming(const signed char* pAxes);
    void SetHomeOf(const signed char* pAxes);   // the marked axes are at their home
    void ClearHomeOf(const signed char* pAxes);
    bool PushRefusal(eAxis axis, bool bAccepted);
    bool WaitForAxis(eAxis axis);
    bool FindHomeSensors();
    bool SendHome(eAxis axis);
    bool ApproachSensorsSlowly();
    bool CheckNewWorkZero(eAxis axis, qint64& lMachinePos);

    // Program, worker.
    friend class CGCodeLineExec;
    class CShapeCutter;
    class CCarver;
    // Holds the worker while the pause is set. False: the job was stopped meanwhile.
    bool WaitWhilePaused();
    // The words of a line that a move takes: coordinates, F, S. REFUSED: told, and the run ends before the line moves.
    enum class eWords
    {
        NONE,
        COORDINATES,
        REFUSED
    };
    eWords ReadMoveWords(unsigned int uLine, stFloatPoint& pos);
    bool TakePrgmFeed(double fFeed, unsigned int uLine);
    bool ReadArcWords(unsigned int uLine, stGCodeEllipseInfo& info);
    stFloatPoint HereBut(eAxis axis, double fPos) const;   // where the axes stand, but for one of them
    bool MoveFromHere(const stFloatPoint& target, bool bSetAccVel, bool bWait, eGMoveCmnd eCmnd);
    bool SelectAxes(const stFloatPoint& to, const double* pDelta);
    bool CutOrFollowSurface(stFloatPoint from, stFloatPoint& to);
    bool SurfaceWalk(stFloatPoint start, stFloatPoint& end);
    void RunAtcFile(const GCodeProgram& program);
    bool m_bInAtcFile = false;
};
