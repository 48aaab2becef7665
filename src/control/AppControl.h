#pragma once
#include "jobs/Carver.h"
#include "jobs/ProgramRun.h"
#include "jobs/ShapeCutter.h"
#include "jobs/SurfaceProbe.h"
#include "machine/Machine.h"

#include <QString>
#include <QThread>

// The machine with a thread of its own, for one operation at a time. The interface thread calls a Start... operation,
// which records the job and starts the thread; run does it by its table; AfterOperationFinish tidies up and raises
// m_bOperationFinished, which the supervision loop sees. Refusals and failures are texts in m_lstErrMsg. mm and mm/s.
// All other functions and data here are the faces of the machine's parts and of the jobs, which describe them.
class AppControl : public QThread, public CMachine
{
    Q_OBJECT

public:
    explicit AppControl(QObject* pParent = nullptr);
    ~AppControl() override;

    // ---- Operations; interface thread. False: not started, and why is in m_lstErrMsg: behind a stop, while the last
    // worker still leaves, and what each says of its own ----
    // strWhyNotHome: where given, the machine does not home by itself, and says why.
    bool InitMachine(const QString& strWhyNotHome = {});
    bool StartWorkHomingSequence();
    bool StartMchHomingSequence();
    bool StartMchHomingSequence(eAxis axis);   // this one alone: the others keep their place and their home
    bool StartZ0usingZProbeSeq();
    bool RunZProfile();
    bool StartGCode(const GCodeProgram* pProgram);
    bool StartExecGCodeLine(const GCodeProgram* pProgram, int iLine);
    bool StartShapeCutting(stShapeCuttingInfo* pInfo);   // owned by the caller, read until the operation has ended
    bool StartImgCarving();

    // Simulated jobs leave the machine's truth as it was: positions, direction pins, the place of the program.
    void SetSimulation(bool bOn);

    // ---- Faces: axes and places ----
    bool IsMachineIdle() const { return m_AxisCommands.IsMachineIdle(); }
    double GetCurPos(eAxis axis) const { return m_Position.GetCurPos(axis); }
    QString GetAxisErrMsg(eAxis axis) const { return m_AxisCommands.GetAxisErrMsg(axis); }
    void Stop(eAxis axis) { m_AxisCommands.Stop(axis); }
    void DeccelerateAxis(eAxis axis) { m_AxisCommands.DeccelerateAxis(axis); }
    bool MoveAbs(eAxis axis, double fPos) { return m_AxisCommands.MoveAbs(axis, fPos); }
    bool MoveRel(eAxis axis, double fDist) { return m_AxisCommands.MoveRel(axis, fDist); }
    void JogPos(eAxis axis) { m_AxisCommands.JogPos(axis); }
    void JogNeg(eAxis axis) { m_AxisCommands.JogNeg(axis); }
    bool MoveAxisHome(eAxis axis, bool bWait) { return m_AxisCommands.MoveAxisHome(axis, bWait); }
    bool MoveWorkZero(eAxis axis, bool bWait) { return m_AxisCommands.MoveWorkZero(axis, bWait); }
    bool EngMoveAxisAbs(eAxis axis, double fPos, bool bWait)
    {
        return m_AxisCommands.EngMoveAxisAbs(axis, fPos, bWait);
    }
    bool EngMoveAxisRel(eAxis axis, double fDist, bool bWait)
    {
        return m_AxisCommands.EngMoveAxisRel(axis, fDist, bWait);
    }
    void ResetAccVel() { m_AxisCommands.ResetAccVel(); }
    void SetVelocityAcc(eAxis axis, double fVel, double fAcc) { m_AxisCommands.SetVelocityAcc(axis, fVel, fAcc); }
    bool WaitForMotionFinish(const signed char* pSelection) { return m_AxisCommands.WaitForMotionFinish(pSelection); }
    bool GetHomeDone() const { return m_Position.GetHomeDone(); }
    void SetMchHome() { m_Position.SetMchHome(); }
    void ClearHome() { m_Position.ClearHome(); }
    bool SetWorkZero(eAxis axis) { return m_Position.SetWorkZero(axis); }
    void SetWorkZero() { m_Position.SetWorkZero(); }
    static double SafeHeight() { return CPosition::SafeHeight(); }
    void ToMchCoord(stFloatPoint& pos) const { m_Position.ToMchCoord(pos); }
    void GetAllAxisCurPos(stFloatPoint& pos) const { m_Position.GetAllAxisCurPos(pos); }
    void AutoHomingFinished() { m_Homing.AutoHomingFinished(); }
    void MoveZSafePos() { m_Homing.MoveZSafePos(); }
    bool MoveWorkZeroAll() { return m_Homing.MoveWorkZeroAll(); }
    void MoveMchHomeAll() { m_Homing.MoveMchHomeAll(); }
    void SetZ0usingZProbe() { m_Homing.SetZ0usingZProbe(); }

    // ---- Faces: spindle, moves ----
    void TurnOnOffSpindle(bool bOn, eDirection eDir) { m_Spindle.TurnOnOffSpindle(bOn, eDir); }
    void SetSpindleSpeed(int iSpeed) { m_Spindle.SetSpindleSpeed(iSpeed); }
    bool G00_Move(stFloatPoint target, bool bSetAccVel, bool bWait)
    {
        return m_JobMoves.G00_Move(target, bSetAccVel, bWait);
    }
    bool G01_Move(stFloatPoint target, bool bSetAccVel, bool bWait)
    {
        return m_JobMoves.G01_Move(target, bSetAccVel, bWait);
    }
    bool SetAccAndVel(stFloatPoint from, stFloatPoint to, eGMoveCmnd eCmnd)
    {
        m_JobMoves.SetAccAndVel(from, to, eCmnd);
        return true;
    }
    void SetAxisFeed(double fFeed) { m_JobMoves.SetAxisFeed(fFeed); }
    bool ExecuteMovCmnd(stFloatPoint from, stFloatPoint to, bool bSetAccVel, bool bWait, eGMoveCmnd eCmnd)
    {
        return m_JobMoves.ExecuteMovCmnd(from, to, bSetAccVel, bWait, eCmnd);
    }
    static void FindArcCenter(stGCodeEllipseInfo& info) { CArcMoves::FindArcCenter(info); }
    bool G02_G03_Move(stGCodeEllipseInfo* pInfo) { return m_ArcMoves.G02_G03_Move(pInfo); }
    bool ZProfileMove(stFloatPoint start, stFloatPoint& end) { return m_SurfaceMoves.ZProfileMove(start, end); }

    // ---- Faces: jobs ----
    void RunGCode() { m_ProgramRun.RunGCode(); }
    bool ExecGCodeLine(int iLine) { return m_ProgramRun.ExecGCodeLine(iLine); }
    bool GetPosToMov(unsigned int uLine, stFloatPoint& pos) { return m_ProgramRun.GetPosToMov(uLine, pos); }
    bool CutArc(unsigned int uLine, stGCodeEllipseInfo& info) { return m_ProgramRun.CutArc(uLine, info); }
    static GCodeTokens Parse_GCode_Line(const QString& strLine) { return TokenizeToolLine(strLine); }
    static void AutoSaveGCodeExecStatus(QString strFile, int iLine)
    {
        CProgramRun::AutoSaveGCodeExecStatus(strFile, iLine);
    }
    void CutShapes() { m_ShapeCutter.CutShapes(); }
    void CreateGCodeFromShapes(QString fileName) { m_ShapeCutter.CreateGCodeFromShapes(fileName); }
    void RunImgCarving() { m_Carver.RunImgCarving(); }
    bool ImgCarving() { return m_Carver.ImgCarving(); }
    void CreateImgZProfile() { m_Carver.CreateImgZProfile(); }
    void CreateCarvingZProfile(stImgZProfileInfo* pMap) { m_Carver.CreateCarvingZProfile(pMap); }
    bool CreateGCodeFromImage(QString strFile) { return m_Carver.CreateGCodeFromImage(strFile); }
    bool WriteImageToGCodeFile(QString strFile) { return m_Carver.WriteImageToGCodeFile(strFile); }
    static void GetMinMaxValue(QImage& img, unsigned char& iMin, unsigned char& iMax)
    {
        FindGreyLevels(img, iMin, iMax);
    }
    void CreateZProfile() { m_SurfaceProbe.CreateZProfile(); }

signals:
    void AddMsg(QString strMsg, eAppMsgType eType);
    void SelNxtGCodeLine(unsigned int uLine);

protected:
    void run() override;
    // The code as it was when run began: the interface may have taken note of an early end meanwhile.
    void AfterOperationFinish(eOperation eCode);

private:
    void WaitForWorker();

    // Start: interface thread. False, with a message: the last operation has not ended.
    bool ClaimWorker();
    bool LaunchOperation(eOperation eCode);
    bool ClaimForJob();
    bool LaunchJob(eOperation eCode, bool bAutoSpindle);
    bool StartHoming(const signed char* pAxes);
    bool Refuse(const QString& strWhy);
    void TellUnits() const;

    // Worker.
    struct stWork;
    void RunOperation(eOperation eCode);
    void DoOperation(eOperation eCode);
    void GoToWorkZero() { (void)MoveWorkZeroAll(); }
    bool StartJobMotion(bool bWorkZeroFirst);
    void RunProgram();
    void EndMotion(eOperation eCode);
    void EndStoppedOperation();

    stFloatPoint m_GCodePosBeforeSimulation;
    // The last store of run, behind what an observer is told of its end: for a thread sanitizer, as in ReadLeave.
    CShared<bool> m_bOutOfRun = false;
    CProgramRun m_ProgramRun{*this};
    CShapeCutter m_ShapeCutter{*this};
    CCarver m_Carver{*this};
    CSurfaceProbe m_SurfaceProbe{*this};

public:
    const GCodeProgram*& m_pGCodeProgram = m_ProgramRun.m_pGCodeProgram;
    qint32& m_iSingleLineNo = m_ProgramRun.m_iSingleLineNo;
    qint32& m_iCurGCodeLine = m_ProgramRun.m_iCurGCodeLine;
    stFloatPoint& m_CurGCodePos = m_ProgramRun.m_CurGCodePos;
    double& m_fUnitFactor = m_ProgramRun.m_fUnitFactor;
    double& m_fLastPrgmFeed = m_ProgramRun.m_fLastPrgmFeed;
    std::string& m_strSelTool = m_ProgramRun.m_strSelTool;
    std::vector<int>& m_lstSubPrgmRetLine = m_ProgramRun.m_lstSubPrgmRetLine;
    std::vector<int>& m_lstSubPrgmStartLine = m_ProgramRun.m_lstSubPrgmStartLine;
    std::vector<unsigned>& m_lstSubPrgmRepeats = m_ProgramRun.m_lstSubPrgmRepeats;
    static constexpr qint32 m_iMaxSubPrgmNesting = CProgramRun::m_iMaxSubPrgmNesting;
    static inline CShared<bool>& m_bWritingGCodeExecStatusFile = CProgramRun::m_bWritingGCodeExecStatusFile;
    stShapeCuttingInfo*& m_pShapeCuttingInfo = m_ShapeCutter.m_pShapeCuttingInfo;
    stImgCarvingData& m_stImgCarvingData = m_Carver.m_stImgCarvingData;
    CShared<quint16>& m_iCurCarvingRow = m_Carver.m_iCurCarvingRow;
    CShared<quint32>& m_uCurCarvingPass = m_Carver.m_uCurCarvingPass;
    const CShared<double>&m_fXStepInForce = m_Carver.m_fXStepInForce, &m_fYStepInForce = m_Carver.m_fYStepInForce;
};
