#include "window/WindowSupport.h"

#include "motion/AllAxisCtrl.h"

CWindowTest::CWindowTest()
{
    AppConfig::m_fZSafePos = 0.5;   // the way up and down at both ends of a job
}

CWindowTest::~CWindowTest()
{
    Close();
    ClearProgram();
    CGCodeStore::m_bGCodeLoading = CGCodeStore::m_bGCodeCompiling = false;
    CVirtualPins::SetObserver(nullptr);
}

void CWindowTest::Close()
{
    m_pWindow.reset();
}

MainWindow& CWindowTest::Open()
{
    AppConfig::ApplyBoardPins();
    stVirtualMachine machine;
    for (int axis = 0; axis < AppConfig::m_iMchType; ++axis) {
        stVirtualAxis& wiring = machine.axes[size_t(axis)];
        wiring.iPulsePin = AppConfig::m_iAxisPulseOutput[axis];
        wiring.iDirPin = AppConfig::m_iAxisDirOutput[axis];
        wiring.iHomePin = AppConfig::m_iAxisMchHomeSensorInput[axis];
        wiring.iUpLevel = AppConfig::m_eAxisPosDir[axis];
        wiring.fMmPerPulse = AppConfig::m_fAxisMovPerPulse[axis];
        wiring.bSensorAbove = AppConfig::m_eAxisHomeDir[axis] == AppConfig::m_eAxisPosDir[axis];
        if (AppConfig::m_bHomeSensorsUsed) wiring.fSensorAt = wiring.bSensorAbove ? 0.5 : -0.5;
    }
    machine.iProbePin = AppConfig::m_iZProbeInput;
    machine.iEStopPin = AppConfig::m_iEStopInput;
    machine.iStartPin = AppConfig::m_iPgmStartInput;
    m_pMachine = std::make_unique<CVirtualMachine>(machine);
    CVirtualPins::SetObserver(m_pMachine.get());
    if (m_bStopHighAtStart) m_pMachine->PressEmergencyStop(true);

    m_pWindow = std::make_unique<MainWindow>();
    ShowWindow(*m_pWindow);
    m_pWindow->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(m_pWindow.get()));
    return *m_pWindow;
}

void CWindowTest::Key(int iKey, bool bDown)
{
    // The display in memory gives the focus back to no window when a box closes.
    QWindow* pFocus = QGuiApplication::focusWindow();
    QWindow* pWindow = pFocus ? pFocus : m_pWindow->windowHandle();
    const auto eKey = static_cast<Qt::Key>(iKey);
    if (bDown)
        QTest::keyPress(pWindow, eKey, Qt::KeypadModifier);
    else
        QTest::keyRelease(pWindow, eKey, Qt::KeypadModifier);
}

QStringList CWindowTest::Log() const
{
    const auto& list = Child<QListWidget>(*m_pWindow, "LV_Log");
    QStringList texts;
    for (int row = 0; row < list.count(); ++row) texts += list.item(row)->text().section(']', 1);
    return texts.filter(QRegularExpression(QStringLiteral("^(?!Supervision was late)")));
}

void CWindowTest::ExpectLogged(const QString& strText)
{
    EXPECT_TRUE(WaitFor([&] { return Logged(strText); })) << strText.toStdString() << " is not in:\n"
                                                          << Log().join('\n').toStdString();
}

void CWindowTest::Hold(const QStringList& lstLines)
{
    ClearProgram();
    for (const QString& strLine : lstLines) {
        CGCodeStore::m_lstOfGCodeLines.push_back(strLine);
        CGCodeStore::m_lstOfGCodeCmds.push_back(CGCodeStore::Parse_GCode_Line(strLine));
    }
    CGCodeStore::CompileGCode(nullptr);
    ASSERT_TRUE(CGCodeStore::m_CompilationErrors.empty());
}

void CWindowTest::StartByTouch()
{
    Touch(Round("m_BtnStart"));
    ASSERT_EQ(Machine().m_eOperation, OP_GCODE) << Log().join('\n').toStdString();
}

bool CWindowTest::WaitIdle(int iLimitMs)
{
    return WaitFor([this] { return Window().IsMachineFree() && !Machine().isRunning(); }, iLimitMs);
}

int CWindowTest::StatusOutput()
{
    return CVirtualPins::Level(AppConfig::m_iPgmStatusOutput);
}
