#pragma once
#include "common/OperatorScreen.h"
#include "control/AppControl.h"
#include "motion/AllAxisCtrl.h"
#include "platform/virtual/VirtualMachine.h"
#include "support/CleanMachine.h"
#include "time/Wait.h"

#include <QStringList>

#include <cstdio>
#include <functional>
#include <memory>
#include <ostream>

inline void PrintTo(const QString& str, std::ostream* pOut)
{
    *pOut << '"' << str.toStdString() << '"';
}

// What the worker says to the operator's side, in order.
class CWorkerScreen : public COperatorScreen
{
public:
    CWorkerScreen() { COperatorScreen::Set(this); }
    void EnableDisableWindows() override { m_lstCalls += QStringLiteral("busy"); }
    void ClearToolGraphics() override { m_lstCalls += QStringLiteral("clear"); }
    void OnOperationFinish() override { m_lstCalls += QStringLiteral("finish"); }
    void UpdateWorkArea() override { m_lstCalls += QStringLiteral("area"); }
    void AddLogMsg(const QString& strMsg, eAppMsgType) override { m_lstCalls += strMsg; }
    void ShowCriticalBox(const QString&, const QString& strText) override { m_lstCalls += strText; }
    QStringList m_lstCalls;
};

// The worker with its single-axis commands noted, such as "Z 1.5" and "Z +-3".
class CWorker : public AppControl, public CWorkObserver
{
public:
    using AppControl::AfterOperationFinish;
    using AppControl::run;

    CWorker() { m_pWorkObserver = this; }
    void OnWork(const stWorkCommand& command) override
    {
        if (command.eKind == WORK_AXIS_TO) Note(command.axis, Number("%.10g", command.fValue));
        if (command.eKind == WORK_AXIS_BY) Note(command.axis, Number("+%.10g", command.fValue));
        if (command.eKind != WORK_ZERO) return;
        ++m_iWorkZeroMoves;
        if (m_fnWorkZero) m_fnWorkZero();
    }
    void OnWorkEnd(const stWorkCommand& command, bool) override
    {
        if (command.eKind == WORK_ZERO && m_fnAtWorkZero) m_fnAtWorkZero();
        if (command.eKind == WORK_OPERATION) CWait::SleepUs(m_iLeavingUs);
    }
    void RunAs(eOperation eCode)
    {
        m_eOperation = eCode;
        run();
    }
    QStringList TakeErrors() { return std::exchange(m_lstErrMsg, {}); }

    QStringList m_lstMoves;
    int m_iWorkZeroMoves = 0;
    int m_iLeavingUs = 0;                                 // how long the thread takes behind the operation
    std::function<void()> m_fnWorkZero, m_fnAtWorkZero;   // before the move, behind it

private:
    static QString Number(const char* szFormat, double fValue)   // shows the sign of zero, which Qt's own does not
    {
        char szText[40];
        std::snprintf(szText, sizeof szText, szFormat, fValue);
        return QString::fromLatin1(szText);
    }
    void Note(eAxis axis, const QString& strHow) { m_lstMoves += QStringLiteral("XYZAB").mid(axis, 1) + ' ' + strHow; }
};

// The machine of the default wiring, its carriages at machine zero.
inline stVirtualMachine Wiring()
{
    stVirtualMachine wiring;
    for (int n = 0; n < AppConfig::m_iMchType; ++n) {
        stVirtualAxis& axis = wiring.axes[size_t(n)];
        axis.iPulsePin = AppConfig::m_iAxisPulseOutput[n];
        axis.iDirPin = AppConfig::m_iAxisDirOutput[n];
        axis.iHomePin = AppConfig::m_iAxisMchHomeSensorInput[n];
        axis.fMmPerPulse = AppConfig::m_fAxisMovPerPulse[n];
    }
    wiring.iProbePin = AppConfig::m_iZProbeInput;
    return wiring;
}

// A three-axis machine of the default wiring on virtual time, its settings and its carriages at machine zero.
class CWorkerTest : public CCleanMachine
{
protected:
    CWorkerTest() { AppConfig::ApplyBoardPins(); }
    ~CWorkerTest() override { CVirtualPins::SetObserver(nullptr); }

    void Build(const stVirtualMachine& wiring = Wiring())
    {
        m_pMachine = std::make_unique<CVirtualMachine>(wiring);
        CVirtualPins::SetObserver(m_pMachine.get());
        m_App.InitMachine();
    }
    void At(double fSeconds, std::function<void()> fnAction)
    {
        m_Time.AddEvent({m_Time.Now() + qint64(fSeconds * 1e9), std::move(fnAction), {}});
    }
    // What the window does: the flag, StopAll; the loops that run end at that time.
    void EmergencyStopAt(double fSeconds)
    {
        m_Time.AddEvent({m_Time.Now() + qint64(fSeconds * 1e9),
                         [this] {
                             AppConfig::m_bEmergencyStopON = true;
                             m_App.StopAll();
                         },
                         [](int, CShared<bool>& bRun) { bRun = false; }});
    }
    // mm/s of the table that the axis moves by next.
    double NextFeed(int iAxis) const
    {
        const AxisCtrl& axis = m_App.m_AxisCtrl[iAxis];
        return axis.m_fVel[axis.m_bNewTable ? 1 - axis.m_ucCurTable : int(axis.m_ucCurTable)];
    }
    double Z() const { return m_App.GetCurPos(Z_AXIS); }
    static int StatusLevel() { return CVirtualPins::Level(AppConfig::m_iPgmStatusOutput); }

    CVirtualTime m_Time;
    CWorkerScreen m_Screen;
    std::unique_ptr<CVirtualMachine> m_pMachine;
    CWorker m_App;
};
