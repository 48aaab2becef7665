#include "platform/virtual/VirtualPins.h"

#include "platform/PinKind.h"
#include "platform/PinRights.h"
#include "platform/Spi.h"
#include "platform/WiringPi.h"

#include <cstring>
#include <mutex>

std::atomic<CPinObserver*> CVirtualPins::m_pObserver = nullptr;
std::atomic<quint8> CVirtualPins::m_Levels[PINS];
std::atomic<int> CVirtualPins::m_Modes[PINS], CVirtualPins::m_Pulls[PINS];

static std::mutex g_CallMutex;
static std::vector<CVirtualPins::stCall> g_lstCalls;
static std::vector<quint8> g_lstSpiInput;

static void Note(const char* szName, int iFirst = 0, int iSecond = 0, int iThird = 0)
{
    const std::lock_guard lock(g_CallMutex);
    g_lstCalls.push_back({szName, iFirst, iSecond, iThird});
}

struct stPinAccess
{
    static void Write(int iPin, int iLevel)
    {
        CVirtualPins::m_Levels[CVirtualPins::Index(iPin)].store(static_cast<quint8>(iLevel), std::memory_order_relaxed);
        if (CPinObserver* pObserver = CVirtualPins::m_pObserver.load(std::memory_order_acquire))
            pObserver->OnWrite(iPin, iLevel);
    }
    static void SetMode(int iPin, int iMode) { CVirtualPins::m_Modes[CVirtualPins::Index(iPin)] = iMode; }
    static void SetPull(int iPin, int iPull) { CVirtualPins::m_Pulls[CVirtualPins::Index(iPin)] = iPull; }
};

bool CVirtualPins::stCall::operator==(const stCall& other) const
{
    return std::strcmp(szName, other.szName) == 0 && iFirst == other.iFirst && iSecond == other.iSecond &&
           iThird == other.iThird;
}

void CVirtualPins::Reset()
{
    m_pObserver = nullptr;
    for (auto& level : m_Levels) level = 0;
    for (auto& mode : m_Modes) mode = -1;
    for (auto& pull : m_Pulls) pull = -1;
    const std::lock_guard lock(g_CallMutex);
    g_lstCalls.clear();
    g_lstSpiInput.clear();
}

std::vector<CVirtualPins::stCall> CVirtualPins::TakeCalls()
{
    const std::lock_guard lock(g_CallMutex);
    return std::exchange(g_lstCalls, {});
}

void CVirtualPins::SetSpiInput(std::vector<quint8> bytes)
{
    const std::lock_guard lock(g_CallMutex);
    g_lstSpiInput = std::move(bytes);
}

bool PinsAreReal()
{
    return false;
}
bool MayUsePwmAndSpi()
{
    return true;
}

extern "C" {
int wiringPiSetupPinType(int pinType)
{
    Note("wiringPiSetupPinType", pinType);
    return 0;
}
void pinMode(int pin, int mode)
{
    Note("pinMode", pin, mode);
    stPinAccess::SetMode(pin, mode);
}
void pullUpDnControl(int pin, int pud)
{
    Note("pullUpDnControl", pin, pud);
    stPinAccess::SetPull(pin, pud);
}
void digitalWrite(int pin, int value)
{
    stPinAccess::Write(pin, value);
}
int digitalRead(int pin)
{
    return CVirtualPins::Level(pin);
}
void pwmSetMode(int mode)
{
    Note("pwmSetMode", mode);
}
void pwmSetRange(unsigned int range)
{
    Note("pwmSetRange", static_cast<int>(range));
}
void pwmSetClock(int divisor)
{
    Note("pwmSetClock", divisor);
}
void pwmWrite(int pin, int value)
{
    Note("pwmWrite", pin, value);
}

int spiOpen(unsigned channel, unsigned baud, unsigned flags)
{
    Note("spiOpen", static_cast<int>(channel), static_cast<int>(baud), static_cast<int>(flags));
    return static_cast<int>(channel);
}
int spiXfer(unsigned handle, char* txBuf, char* rxBuf, unsigned count)
{
    Note("spiXfer", static_cast<int>(handle), static_cast<unsigned char>(*txBuf), static_cast<int>(count));
    const std::lock_guard lock(g_CallMutex);
    for (unsigned n = 0; n < count; ++n) {
        rxBuf[n] = g_lstSpiInput.empty() ? char(0) : static_cast<char>(g_lstSpiInput.front());
        if (!g_lstSpiInput.empty()) g_lstSpiInput.erase(g_lstSpiInput.begin());
    }
    return static_cast<int>(count);
}
int spiWrite(unsigned handle, char* txBuf, unsigned count)
{
    Note("spiWrite", static_cast<int>(handle), static_cast<unsigned char>(*txBuf), static_cast<int>(count));
    return static_cast<int>(count);
}
}
