// Random rounds of what an operator may do, with the real window and real threads on the virtual machine: starts,
// pauses, stops in every moment. Each round must end idle and true. Tells how long a stop takes to the last edge and to
// the status output. Sleeps of the worker are shortened.
// The window is closed now and then, and another opened.
//   cmake --build build --target stop_rounds && build/bin/stop_rounds --rounds 2000 --seed 1
// Exit status 1: a round ended otherwise; 2: usage. The last line is the summary.
#include "common/Paths.h"
#include "config/AppConfig.h"
#include "gcode/GCodeEditor.h"
#include "motion/AllAxisCtrl.h"
#include "run/MachineWiring.h"
#include "time/Wait.h"
#include "widgets/Look.h"
#include "window/MainWindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QListWidget>
#include <QMessageBox>
#include <QMouseEvent>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <memory>
#include <random>

namespace {
constexpr int SHORTEN = 50;              // sleeps of the worker; 2 s of an output pause are 40 ms
constexpr int IDLE_LIMIT_MS = 10'000;    // nothing that is left running takes so long
constexpr qint64 MOST_UNITS_OFF = 200;   // 0.02 mm: the sensor is met within some pulses

// Watches the pins ahead of the virtual machine.
class CWatch : public CPinObserver
{
public:
    explicit CWatch(CVirtualMachine& machine) : m_Machine(machine) { m_Clock.start(); }

    void OnWrite(int iPin, int iLevel) override
    {
        m_Machine.OnWrite(iPin, iLevel);
        for (int axis = 0; axis < AppConfig::m_iMchType; ++axis)
            if (iPin == AppConfig::m_iAxisPulseOutput[axis]) m_lLastEdge = m_Clock.nsecsElapsed();
        if (iPin == AppConfig::m_iPgmStatusOutput && iLevel == 0) m_lStatusLow = m_Clock.nsecsElapsed();
        const quint16 uCW = Relay(3), uCCW = Relay(4);
        if (iLevel != 0 && (iPin == uCW || iPin == uCCW) && CVirtualPins::Level(uCW) && CVirtualPins::Level(uCCW))
            m_bBothRelays = true;
    }
    static quint16 Relay(quint16 uCode) { return Pin(AppConfig::m_lstMCodesPin.value(uCode)); }

    qint64 Now() const { return m_Clock.nsecsElapsed(); }
    std::atomic<qint64> m_lLastEdge = 0, m_lStatusLow = 0;   // ns
    std::atomic<bool> m_bBothRelays = false;

private:
    CVirtualMachine& m_Machine;
    QElapsedTimer m_Clock;
};

void Pump(int iMs)
{
    QEventLoop loop;
    QTimer::singleShot(iMs, &loop, &QEventLoop::quit);
    loop.exec();
}

template <class Fn> bool PumpUntil(Fn&& fnDone, int iLimitMs)
{
    QElapsedTimer timer;
    timer.start();
    while (!fnDone()) {
        if (timer.elapsed() > iLimitMs) return false;
        Pump(2);
    }
    return true;
}

class CStopRounds
{
public:
    CStopRounds(quint32 uSeed, bool bSensors) : m_Random(uSeed), m_bSensors(bSensors)
    {
        AppConfig::ApplyBoardPins();
        AppConfig::m_bHomeSensorsUsed = bSensors;
        AppConfig::m_fZSafePos = bSensors ? -1.0 : 1.0;
        AppConfig::m_fHomeRepeatOffset = 0.5;
        AppConfig::m_bEnlManualToolChange = true;
        for (int axis = 0; axis < MAX_AXES; ++axis) {
            // With sensors nothing lies beyond them, and the work zero lies well inside.
            const bool bAbove = AppConfig::m_eAxisHomeDir[axis] == AppConfig::m_eAxisPosDir[axis];
            AppConfig::m_fAxisPosDirLimit[axis] = bSensors && bAbove ? 0.0 : 20.0;
            AppConfig::m_fAxisNegDirLimit[axis] = bSensors && !bAbove ? 0.0 : -20.0;
            if (bSensors) AppConfig::m_fAxisWorkZero[axis] = bAbove ? -3.0 : 3.0;
            AppConfig::m_fAxisManualToolChngPos[axis] = -1.0;
        }
        AppConfig::SaveConfig(CONFIG_FILE);
        stVirtualMachine wiring = MachineOfSettings(bSensors);
        for (stVirtualAxis& axis : wiring.axes)
            if (bSensors) axis.fStart = axis.bSensorAbove ? axis.fSensorAt - 2.0 : axis.fSensorAt + 2.0;
        m_pMachine = std::make_unique<CVirtualMachine>(wiring);
        m_pMachine->SetFlatSurface(-3.0);
        for (size_t n = 0; n < MAX_AXES; ++n) m_Sensors[n] = wiring.axes[n].fSensorAt;
        m_pWatch = std::make_unique<CWatch>(*m_pMachine);
        CVirtualPins::SetObserver(m_pWatch.get());
        OpenWindow();
    }
    ~CStopRounds()
    {
        m_pWindow.reset();
        CVirtualPins::SetObserver(nullptr);
        CGCodeEditor::Clear().waitForFinished();
    }

    // Empty: it ended as it must.
    QString Round()
    {
        m_pWindow->ClearLog();
        m_strDone.clear();
        m_strFault.clear();
        SetAutomaticSpindle();
        HoldProgram();
        const int iActions = Below(6) + 2;
        for (int n = 0; n < iActions; ++n) {
            Act();
            Pump(Below(4) == 0 ? Below(120) : Below(20));
        }
        if (!m_strFault.isEmpty()) return m_strFault;
        if (!BringToRest()) return QStringLiteral("not idle");
        return Verdict();
    }
    QString Done() const { return m_strDone; }
    QStringList Log() const
    {
        const auto* pList = m_pWindow->findChild<QListWidget*>(QStringLiteral("LV_Log"));
        QStringList lines;
        for (int row = 0; pList && row < std::min(12, pList->count()); ++row) lines += pList->item(row)->text();
        return lines;
    }

    static std::map<QString, int> m_Counts;
    static std::vector<double> m_lstToEdge, m_lstToStatus;   // ms

private:
    AppControl& Machine() { return m_pWindow->m_AppControl; }
    int Below(int iLimit) { return static_cast<int>(m_Random() % static_cast<quint32>(iLimit)); }
    void Count(const QString& strWhat)
    {
        ++m_Counts[strWhat];
        m_strDone += strWhat + QLatin1Char(' ');
    }

    void OpenWindow()
    {
        m_pWindow = std::make_unique<MainWindow>();
        m_pWindow->show();
        Pump(40);
        if (m_bSensors && Machine().StartMchHomingSequence()) PumpUntil([this] { return IsIdle(); }, IDLE_LIMIT_MS);
        NoteOffsets();
    }
    // As the operator does, whatever runs; then a new one, whose program knows nothing of the last.
    void CloseWindow()
    {
        Count(QStringLiteral("close"));
        const bool bRuns = Machine().m_eOperation != OP_NONE;
        if (bRuns) Count(QStringLiteral("close-running"));
        AnswerBoxes();
        if (!m_pWindow->close()) m_strFault = QStringLiteral("the window does not close");
        m_pWindow.reset();
        for (const quint16 uCode : std::initializer_list<quint16>{3, 4, 7, 8})
            if (CVirtualPins::Level(CWatch::Relay(uCode)))
                m_strFault = QStringLiteral("output of M%1 on behind the window").arg(uCode);
        for (int axis = 0; axis < AppConfig::m_iMchType; ++axis)
            if (CVirtualPins::Level(AppConfig::m_iAxisPulseOutput[axis]))
                m_strFault = QStringLiteral("a pulse pin is high behind the window");
        const qint64 lLastEdge = m_pWatch->m_lLastEdge;
        QThread::msleep(5);
        if (m_pWatch->m_lLastEdge != lLastEdge) m_strFault = QStringLiteral("an axis moves behind the window");
        AppConfig::m_bEmergencyStopON = false;
        AppConfig::m_bSimulationMode = false;
        AppConfig::m_bSpindleOn = false;
        AppConfig::m_bSpindleOnOffStatusChangeInGCode = false;
        OpenWindow();
    }
    // In every second round.
    void SetAutomaticSpindle()
    {
        const int iKind = Below(6);
        AppConfig::m_bAutoSpindleOnCW = iKind == 1;
        AppConfig::m_bAutoSpindleOnCCW = iKind == 2;
        AppConfig::m_bAutoSpindleOff = iKind == 2 || iKind == 3 || (iKind == 1 && Below(2));
        if (iKind >= 1 && iKind <= 3) Count(QStringLiteral("auto-spindle"));
    }

    void HoldProgram()
    {
        CGCodeEditor::Clear().waitForFinished();
        const int iLines = Below(25) + 3;
        for (int n = 0; n < iLines; ++n) {
            QString strLine;
            switch (Below(12)) {
            case 0: strLine = QStringLiteral("M3"); break;
            case 1: strLine = QStringLiteral("M4"); break;
            case 2: strLine = QStringLiteral("M5"); break;
            case 3: strLine = QStringLiteral("M6"); break;
            case 4: strLine = QStringLiteral("M7"); break;
            case 5: strLine = QStringLiteral("S1000"); break;
            case 6: strLine = QStringLiteral("G0 X%1 Y%2").arg(Coordinate()).arg(Coordinate()); break;
            case 7: strLine = QStringLiteral("G2 X0.1 Y0.1 I0.2 J0"); break;
            default: strLine = QStringLiteral("G1 X%1 Y%2 Z%3").arg(Coordinate()).arg(Coordinate()).arg(Coordinate());
            }
            CGCodeStore::m_lstOfGCodeLines.push_back(strLine);
            CGCodeStore::m_lstOfGCodeCmds.push_back(CGCodeStore::Parse_GCode_Line(strLine));
        }
        AppConfig::m_GCodeRunSettings.iCurLine = 0;
    }
    double Coordinate() { return (Below(21) - 10) / 20.0; }

    CMyRndBtn& Round(const char* szName) { return *m_pWindow->findChild<CMyRndBtn*>(QLatin1String(szName)); }
    // A finger on a widget; off or behind a box it does nothing.
    bool Touch(QWidget& widget)
    {
        if (!widget.isEnabled() || !widget.isVisible() || QApplication::activeModalWidget()) return false;
        const QPointF at = widget.rect().center(), global = widget.mapToGlobal(at);
        for (const QEvent::Type eType : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
            QMouseEvent event(eType, at, global, Qt::LeftButton,
                              eType == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
            QApplication::sendEvent(&widget, &event);
        }
        return true;
    }
    void Tap(const QString& strName)
    {
        AnswerBoxes();
        Count(strName.mid(4));
        if (QWidget* pButton = m_pWindow->findChild<QWidget*>(strName)) Touch(*pButton);
    }
    // Whatever box comes is confirmed.
    void AnswerBoxes()
    {
        for (const int iMs : {10, 40, 200})
            QTimer::singleShot(iMs, [] {
                auto* pBox = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                if (!pBox) return;
                for (const auto eButton : {QMessageBox::Yes, QMessageBox::Ok})
                    if (QAbstractButton* pButton = pBox->button(eButton)) return pButton->click();
                pBox->reject();
            });
    }

    void Act()
    {
        const int iKind = Below(105);
        if (iKind >= 101) {
            SingleLine();
        } else if (iKind == 100) {
            CloseWindow();
        } else if (iKind < 30) {
            Count(QStringLiteral("start"));
            Touch(Round("m_BtnStart"));
        } else if (iKind < 42) {
            Count(QStringLiteral("pause"));
            Touch(Round("m_BtnPause"));
        } else if (iKind < 52) {
            Count(QStringLiteral("reset"));
            Touch(Round("m_BtnReset"));
        } else if (iKind < 64) {
            Stop();
        } else if (iKind < 72) {
            StopByInput();
        } else if (iKind < 76) {
            Tap(QStringLiteral("Btn_SimulationMode"));
        } else if (iKind < 80) {
            Tap(QStringLiteral("Btn_MoveWorkZero"));
        } else if (iKind < 83) {
            Tap(QStringLiteral("Btn_SetZ0WithZProbe"));
        } else if (iKind < 86) {
            Tap(Below(2) ? QStringLiteral("Btn_SpindleCWOnOff") : QStringLiteral("Btn_SpindleCCWOnOff"));
        } else if (iKind < 89) {
            Tap(QStringLiteral("Btn_MoveZSafePos"));
        } else if (iKind < 92) {
            Tap(QStringLiteral("Btn_SetWorkZero"));
        } else if (iKind < 96) {
            Jog();
        } else {
            Count(QStringLiteral("home"));
            if (Machine().m_eOperation == OP_NONE && !AppConfig::m_bEmergencyStopON && Machine().IsMachineIdle())
                (void)Machine().StartMchHomingSequence();
        }
        if (Machine().m_bToolChangePause) Count(QStringLiteral("tool-change"));
    }

    void SingleLine()
    {
        Count(QStringLiteral("single-line"));
        auto* pButton = m_pWindow->findChild<QWidget*>(QStringLiteral("Btn_ExecOneGCodeLine"));
        if (pButton && Touch(*pButton) && Machine().m_bExecSingleLine) Count(QStringLiteral("single-line-started"));
    }

    void Jog()
    {
        Count(QStringLiteral("jog"));
        auto* pButton =
            m_pWindow->findChild<QPushButton*>(Below(2) ? QStringLiteral("Btn_JogEast") : QStringLiteral("Btn_JogZUp"));
        if (!pButton || !pButton->isEnabled() || !Machine().GetHomeDone()) return;   // or it runs beyond a sensor
        pButton->pressed();
        Pump(Below(15));
        pButton->released();
    }

    void Stop()
    {
        Count(QStringLiteral("stop"));
        const bool bRuns = Machine().m_eOperation != OP_NONE && !AppConfig::m_bEmergencyStopON;
        const qint64 lAt = m_pWatch->Now();
        Touch(Round("m_BtnStop"));
        if (bRuns && AppConfig::m_bEmergencyStopON) Measure(lAt);
    }
    void StopByInput()
    {
        Count(QStringLiteral("stop-input"));
        const bool bRuns = Machine().m_eOperation != OP_NONE && !AppConfig::m_bEmergencyStopON;
        const qint64 lAt = m_pWatch->Now();
        m_pMachine->PressEmergencyStop(true);
        Pump(50);
        m_pMachine->PressEmergencyStop(false);
        if (bRuns && !AppConfig::m_bSimulationMode) Measure(lAt);
        Pump(50);
    }
    void Measure(qint64 lAt)
    {
        if (AppConfig::m_bSimulationMode) return;
        Pump(5);
        m_lstToEdge.push_back(static_cast<double>(std::max<qint64>(0, m_pWatch->m_lLastEdge - lAt)) / 1e6);
        if (m_pWatch->m_lStatusLow > lAt)
            m_lstToStatus.push_back(static_cast<double>(m_pWatch->m_lStatusLow - lAt) / 1e6);
    }

    bool IsIdle()
    {
        return Machine().m_eOperation == OP_NONE && Machine().IsMachineIdle() && !Machine().isRunning() &&
               !CAllAxisCtrl::GetMotionState() && !CAllAxisCtrl::m_bAutoModeRunning;
    }
    bool BringToRest()
    {
        if (Below(3) == 0) {
            Stop();
        } else if (Machine().m_eOperation != OP_NONE) {
            // A tool change takes the pause by itself at any time: resumed until the job is over.
            QElapsedTimer timer;
            timer.start();
            PumpUntil(
                [&] {
                    if (Machine().m_bPause && Round("m_BtnStart").isEnabled()) Touch(Round("m_BtnStart"));
                    return IsIdle();
                },
                1500);
            if (!IsIdle()) Stop();
        }
        AnswerBoxes();
        if (!PumpUntil([this] { return IsIdle() && !QApplication::activeModalWidget(); }, IDLE_LIMIT_MS)) return false;
        if (AppConfig::m_bEmergencyStopON) Touch(Round("m_BtnStop"));
        if (AppConfig::m_bSimulationMode) Tap(QStringLiteral("Btn_SimulationMode"));
        Pump(40);
        return IsIdle() && !AppConfig::m_bSimulationMode && !AppConfig::m_bEmergencyStopON;
    }

    double CarriageOf(int axis) const { return m_pMachine->CarriageMm(axis); }
    double PositionOf(int axis) { return Machine().GetCurPos(static_cast<eAxis>(axis)); }
    void NoteOffsets()
    {
        for (int axis = 0; axis < AppConfig::m_iMchType; ++axis)
            m_Offsets[size_t(axis)] = CarriageOf(axis) - PositionOf(axis);
    }

    QString Verdict()
    {
        if (m_pWatch->m_bBothRelays.exchange(false)) return QStringLiteral("both relays closed");
        for (int axis = 0; axis < AppConfig::m_iMchType; ++axis) {
            const QString& strAxis = AppConfig::m_strAxisNames[axis];
            AxisCtrl& ctrl = Machine().m_AxisCtrl[axis];
            if (CVirtualPins::Level(AppConfig::m_iAxisPulseOutput[axis]))
                return strAxis + QStringLiteral(" pulse pin high");
            if (CVirtualPins::Level(AppConfig::m_iAxisDirOutput[axis]) != static_cast<int>(ctrl.m_eDir))
                return strAxis + QStringLiteral(" direction pin is not m_eDir");
            const double fOff = CarriageOf(axis) - PositionOf(axis) - m_Offsets[size_t(axis)];
            if (std::fabs(fOff) > 1e-6 && !MayHaveMovedZero())
                return QStringLiteral("%1 position off by %2").arg(strAxis).arg(fOff);
            if (m_bSensors && ctrl.IsAxisHomeSet()) {
                const double fMachine = PositionOf(axis) + AppConfig::m_fAxisWorkZero[axis];
                const double fFromSensor = CarriageOf(axis) - m_Sensors[size_t(axis)];
                if (std::fabs(fMachine - fFromSensor) * DECIMAL_MULTIPLYER > static_cast<double>(MOST_UNITS_OFF))
                    return QStringLiteral("%1 counts as homed at %2, the carriage stands at %3")
                        .arg(strAxis)
                        .arg(fMachine)
                        .arg(fFromSensor);
            }
        }
        NoteOffsets();
        return QString();
    }
    // A work zero, a probing or a homing was asked for in this round: the zero may lie elsewhere.
    bool MayHaveMovedZero() const
    {
        return m_strDone.contains(QStringLiteral("SetWorkZero")) || m_strDone.contains(QStringLiteral("Probe")) ||
               m_strDone.contains(QStringLiteral("home"));
    }

    std::mt19937 m_Random;
    const bool m_bSensors;
    std::unique_ptr<CVirtualMachine> m_pMachine;
    std::unique_ptr<CWatch> m_pWatch;
    std::unique_ptr<MainWindow> m_pWindow;
    std::array<double, MAX_AXES> m_Sensors{}, m_Offsets{};   // mm
    QString m_strDone, m_strFault;
};
std::map<QString, int> CStopRounds::m_Counts;
std::vector<double> CStopRounds::m_lstToEdge, CStopRounds::m_lstToStatus;

void PrintShares(const char* szWhat, std::vector<double> lst)
{
    std::sort(lst.begin(), lst.end());
    if (lst.empty()) return;
    const auto At = [&](double fShare) { return lst[size_t(fShare * double(lst.size() - 1))]; };
    std::printf("%s, ms: %zu stops, p50 %.3f, p90 %.3f, p99 %.3f, worst %.3f\n", szWhat, lst.size(), At(0.5), At(0.9),
                At(0.99), lst.back());
}
}   // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    CLook::Apply(app);
    QApplication::setQuitOnLastWindowClosed(false);   // no event loop runs behind a quit
    QCommandLineParser parser;
    parser.addOption(
        {QStringLiteral("rounds"), QStringLiteral("How many."), QStringLiteral("N"), QStringLiteral("200")});
    parser.addOption(
        {QStringLiteral("seed"), QStringLiteral("Of the random actions."), QStringLiteral("N"), QStringLiteral("1")});
    parser.addHelpOption();
    parser.process(app);
    bool bRounds = false, bSeed = false;
    const int iRounds = parser.value(QStringLiteral("rounds")).toInt(&bRounds);
    const quint32 uSeed = parser.value(QStringLiteral("seed")).toUInt(&bSeed);
    if (!bRounds || !bSeed || iRounds < 1) {
        std::fputs("stop_rounds: --rounds and --seed take whole numbers\n", stderr);
        return 2;
    }
    QTemporaryDir folder;
    CPaths::SetHomeFolder(folder.path());
    CPaths::Establish();
    CWait::SetShorten(SHORTEN);
    QElapsedTimer timer;
    timer.start();
    int iFailed = 0, iDone = 0;
    for (const bool bSensors : {false, true}) {
        CStopRounds rounds(uSeed + (bSensors ? 1u : 0u), bSensors);
        for (int n = 0; n < (bSensors ? iRounds - iRounds / 2 : iRounds / 2); ++n, ++iDone) {
            const QString strWhy = rounds.Round();
            if (strWhy.isEmpty()) continue;
            ++iFailed;
            std::printf("round %d (%s): %s\n  did: %s\n", iDone, bSensors ? "sensors" : "no sensors",
                        qPrintable(strWhy), qPrintable(rounds.Done()));
            for (const QString& strLine : rounds.Log()) std::printf("    %s\n", qPrintable(strLine));
            std::fflush(stdout);
        }
    }
    PrintShares("stop to last edge", CStopRounds::m_lstToEdge);
    PrintShares("stop to status output", CStopRounds::m_lstToStatus);
    std::printf("%d rounds, %d failed, %.2f s a round:", iDone, iFailed, double(timer.elapsed()) / 1e3 / iDone);
    for (const auto& [strWhat, iCount] : CStopRounds::m_Counts) std::printf(" %s %d", qPrintable(strWhat), iCount);
    std::printf("\n");
    return iFailed ? 1 : 0;
}
