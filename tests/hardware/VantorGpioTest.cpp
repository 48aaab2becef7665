#include "hardware/VantorGpio.h"

#include "config/AppConfig.h"
#include "config/SettingsTable.h"
#include "hardware/RpiGpio.h"
#include "hardware/VantorCtrl.h"
#include "platform/virtual/VirtualPins.h"
#include "support/CleanMachine.h"
#include "support/LoggedScreen.h"

namespace {
// All calls in their order, pin writes included.
class CCallLog : public CPinObserver
{
public:
    CCallLog()
    {
        CVirtualPins::TakeCalls();
        CVirtualPins::SetObserver(this);
    }
    ~CCallLog() override { CVirtualPins::SetObserver(nullptr); }
    void OnWrite(int iPin, int iLevel) override
    {
        Take();
        m_strLog += QStringLiteral("write %1 %2;").arg(iPin).arg(iLevel);
    }
    QString Text()
    {
        Take();
        return std::exchange(m_strLog, QString());
    }

private:
    void Take()
    {
        for (const auto& call : CVirtualPins::TakeCalls())
            m_strLog +=
                QStringLiteral("%1 %2 %3 %4;").arg(call.szName).arg(call.iFirst).arg(call.iSecond).arg(call.iThird);
    }
    QString m_strLog;
};

// "o2 i23": pins as outputs and low, and as inputs, in this order.
QString PinSetUp(const QString& strPins)
{
    QString strCalls;
    for (const QString& strPin : strPins.split(' ')) {
        const QString strNumber = strPin.mid(1);
        strCalls += strPin.startsWith('o') ? QStringLiteral("pinMode %1 1 0;write %1 0;").arg(strNumber)
                                           : QStringLiteral("pinMode %1 0 0;pullUpDnControl %1 1 0;").arg(strNumber);
    }
    return strCalls;
}

class VantorGpio : public CCleanMachine
{
};
}   // namespace

TEST_F(VantorGpio, InitSetsUpThePinsOfTheBoardInOrder)
{
    const QString strHead = "wiringPiSetupPinType 1 0 0;pwmSetMode 1 0 0;pwmSetRange 1024 0 0;" +
                            PinSetUp("o2 o3 i23 o4 o17 i24 o27 o22 i25 o7 o12");
    const QString strTail = PinSetUp("o8 o9 o10 o11 i16 i21 i20 i19 i0");
    const QString strExpected[] = {strHead + PinSetUp("o5 o6 o13 o14 o15 o18") + strTail,
                                   strHead + PinSetUp("o5 o6 i13 o14 o15 i18") + strTail, strHead, strHead};
    for (const int iBoard : {0, 1, 2, 3}) {
        ResetStatics();
        AppConfig::m_eVantorCtrl = iBoard;
        CSettingsTable::ApplySettings();
        CCallLog log;
        CVANTORGPIO::InitGpio();
        EXPECT_EQ(log.Text(), strExpected[iBoard]) << iBoard;
        EXPECT_EQ(AppConfig::m_lstIPs.contains(2), iBoard < 2);
        EXPECT_EQ(AppConfig::m_lstIPs.value(2), 0);
    }
}

TEST_F(VantorGpio, PinsGoToThePiOrToTheExpansionBoard)
{
    CCallLog log;
    for (const int iBoard : {0, 1}) {
        AppConfig::m_eVantorCtrl = iBoard;
        CVANTORGPIO::SetPinModeOutput(6);
        CVANTORGPIO::SetPinModeInput(9);
        CVANTORGPIO::WriteOutput(6, 0x1ff);
        EXPECT_EQ(log.Text(), "pinMode 6 1 0;pinMode 9 0 0;pullUpDnControl 9 1 0;write 6 255;");
        CVirtualPins::SetInput(9, iBoard);
        EXPECT_EQ(CVANTORGPIO::ReadInput(9), iBoard);
    }
    for (const eVantorController eBoard : {SPI_CTRL_16, SPI_CTRL_24}) {
        AppConfig::m_eVantorCtrl = eBoard;
        EXPECT_TRUE(cvantorctrl::InitVantorCtrl(eBoard));
        CVANTORGPIO::SetPinModeOutput(6);
        CVANTORGPIO::SetPinModeInput(9);
        EXPECT_EQ(log.Text(), "spiOpen 0 2000000 192;spiOpen 2 2000000 256;");
        CVANTORGPIO::WriteOutput(0x102, 0x101);
        EXPECT_EQ(log.Text(), eBoard == SPI_CTRL_16 ? "spiWrite 2 138 1;" : "spiWrite 2 168 1;");
        CVirtualPins::SetSpiInput({0, 2, 0});
        EXPECT_EQ(CVANTORGPIO::ReadInput(9), 1);
        EXPECT_EQ(log.Text(), "spiXfer 0 0 1;spiXfer 0 0 1;spiXfer 0 0 1;");
    }
    EXPECT_TRUE(cvantorctrl::InitVantorCtrl(VTR5_CTRL));
    EXPECT_EQ(log.Text(), "");
}

struct stFrame
{
    eVantorController eCtrl;
    int iPin, iLevel, iByte;
};
class OutputFrame : public CCleanMachine, public testing::WithParamInterface<stFrame>
{
};
TEST_P(OutputFrame, HoldsLevelIndexAndGroup)
{
    const auto [eCtrl, iPin, iLevel, iByte] = GetParam();
    cvantorctrl::InitVantorCtrl(eCtrl);
    EXPECT_EQ(cvantorctrl::CreateOutputData(static_cast<unsigned char>(iPin), static_cast<unsigned char>(iLevel)),
              iByte);
}
INSTANTIATE_TEST_SUITE_P(Boards, OutputFrame,
                         testing::Values(stFrame{SPI_CTRL_16, 1, 1, 0x99}, stFrame{SPI_CTRL_16, 2, 0, 0x0A},
                                         stFrame{SPI_CTRL_16, 7, 1, 0xDA}, stFrame{SPI_CTRL_16, 8, 0, 0x0B},
                                         stFrame{SPI_CTRL_16, 16, 0, 0x8B},   // overflows into the level
                                         stFrame{SPI_CTRL_24, 7, 1, 0xF8}, stFrame{SPI_CTRL_24, 8, 0, 0x09},
                                         stFrame{SPI_CTRL_24, 19, 1, 0xFA}, stFrame{SPI_CTRL_24, 20, 0, 0x0B},
                                         stFrame{VTR3_CTRL, 9, 0, 0x08}));

TEST_F(VantorGpio, InputsAreTheBitsOfThreeBytesFirstReceivedFirst)
{
    const std::vector<quint8> bytes = {0x01, 0x82, 0x80};
    for (int iPin = 0; iPin < 40; ++iPin) {
        CVirtualPins::SetSpiInput(bytes);
        const bool bHigh = iPin == 0 || iPin == 9 || iPin == 15 || iPin == 23;   // beyond 23 there is none
        EXPECT_EQ(cvantorctrl::ReadInput(static_cast<unsigned short>(iPin)), bHigh ? 1 : 0) << iPin;
    }
}

TEST_F(VantorGpio, PwmRunsAtTheCurrentFrequencyWithADutyOfOneHalf)
{
    CLoggedScreen screen;
    CCallLog log;
    for (const auto& [iFreq, iDivisor] : {std::pair{5, 3750}, {100, 187}, {3000, 6}, {18750, 1}}) {
        AppConfig::m_stPwmSpndlSettings.iCurFreq = static_cast<quint16>(iFreq);
        CVANTORGPIO::PwmStart();
        EXPECT_EQ(log.Text(), QStringLiteral("pwmSetClock %1 0 0;pwmWrite 12 512 0;pinMode 12 8 0;").arg(iDivisor));
    }
    CVANTORGPIO::PwmStop();
    EXPECT_EQ(log.Text(), "pinMode 12 7 0;");
    EXPECT_EQ(screen.m_lstLog, QStringList());

    for (const int iFreq : {0, 4, 18751, 65535}) {   // a cut file, or a speed far off the line
        AppConfig::m_stPwmSpndlSettings.iCurFreq = static_cast<quint16>(iFreq);
        CVANTORGPIO::PwmStart();
    }
    EXPECT_EQ(log.Text(), "");
    EXPECT_EQ(screen.m_lstLog.size(), 4);
}
