#include "hardware/VantorCtrl.h"

#include "common/OperatorScreen.h"
#include "platform/PinRights.h"
#include "platform/Spi.h"

#include <algorithm>

eVantorController cvantorctrl::m_eCtrlVersion = VTR3_CTRL;
qint32 cvantorctrl::h_SpiInputCtrl = 0;
qint32 cvantorctrl::h_SpiOutputCtrl = 0;

static constexpr unsigned SPI_BAUD = 2000000;
static constexpr unsigned INPUT_FLAGS = 192;    // mode 0 of the main SPI, CE1 and CE2 free for other use
static constexpr unsigned OUTPUT_FLAGS = 256;   // the auxiliary SPI
static constexpr int INPUT_BYTES = 3;
static constexpr int NO_LINK = -1;

bool cvantorctrl::InitVantorCtrl(eVantorController eCtrl)
{
    m_eCtrlVersion = eCtrl;
    if (eCtrl != SPI_CTRL_16 && eCtrl != SPI_CTRL_24) return true;
    if (!MayUsePwmAndSpi()) {
        h_SpiInputCtrl = h_SpiOutputCtrl = NO_LINK;
        COperatorScreen::Get().AddLogMsg(QStringLiteral("SPI board not opened: ") + QLatin1String(WHY_NO_PWM_AND_SPI),
                                         MSG_ERROR);
    } else {
        h_SpiInputCtrl = spiOpen(0, SPI_BAUD, INPUT_FLAGS);
        h_SpiOutputCtrl = spiOpen(2, SPI_BAUD, OUTPUT_FLAGS);
    }
    return true;
}

int cvantorctrl::ReadAllInputs(char* buffer)
{
    if (h_SpiInputCtrl < 0) std::fill_n(buffer, INPUT_BYTES, '\0');
    for (int n = 0; n < INPUT_BYTES && h_SpiInputCtrl >= 0; ++n) {
        char cSend = 0;
        (void)spiXfer(static_cast<unsigned>(h_SpiInputCtrl), &cSend, buffer + n, 1);
    }
    return INPUT_BYTES;
}

quint8 cvantorctrl::ReadInput(unsigned short pin)
{
    char buffer[INPUT_BYTES] = {};
    const int iBytes = ReadAllInputs(buffer);
    const int iByte = pin / 8;
    if (iByte >= iBytes) return 0;
    const unsigned uBits = static_cast<unsigned char>(buffer[iByte]);
    return static_cast<quint8>(uBits >> (pin % 8) & 1u);
}

void cvantorctrl::WriteOutput(unsigned char pin, unsigned char value)
{
    if (h_SpiOutputCtrl < 0) return;
    char cFrame = static_cast<char>(CreateOutputData(pin, value));
    (void)spiWrite(static_cast<unsigned>(h_SpiOutputCtrl), &cFrame, 1);
}

namespace {
struct stGroup
{
    int iFirst;   // the group's first output
    int iGroup;
};
// The groups are unequal because the output chips of the boards are.
constexpr stGroup GROUPS_16[] = {{8, 3}, {2, 2}, {0, 1}};
constexpr stGroup GROUPS_24[] = {{20, 3}, {12, 2}, {8, 1}, {0, 0}};

template <size_t N> int Address(const stGroup (&groups)[N], int iPin)
{
    for (const auto& [iFirst, iGroup] : groups)
        if (iPin >= iFirst) return (iPin - iFirst) * 16 | iGroup;
    return 0;
}
}   // namespace

unsigned char cvantorctrl::CreateOutputData(unsigned char pin, unsigned char value)
{
    int iAddress = 0;
    if (m_eCtrlVersion == SPI_CTRL_16) iAddress = Address(GROUPS_16, pin);
    if (m_eCtrlVersion == SPI_CTRL_24) iAddress = Address(GROUPS_24, pin);
    return static_cast<unsigned char>(iAddress | value << 7 | 8);
}
