#pragma once
#include <QtGlobal>

#include <atomic>
#include <vector>

// The pins of a computer that has none: an array of levels behind the entry points of WiringPi.h and Spi.h.
// Any thread; a pin has one writer at a time, as on the machine.

// Told of every write, on the thread that writes: it is called from several threads and must be written for that.
class CPinObserver
{
public:
    virtual ~CPinObserver() = default;
    virtual void OnWrite(int iPin, int iLevel) = 0;
};

class CVirtualPins
{
public:
    static constexpr int PINS = 256;

    static void SetObserver(CPinObserver* pObserver) { m_pObserver.store(pObserver, std::memory_order_release); }

    // Levels low, modes forgotten, no observer, no calls.
    static void Reset();

    static int Level(int iPin) { return m_Levels[Index(iPin)].load(std::memory_order_relaxed); }
    // What an input reads from now on.
    static void SetInput(int iPin, int iLevel)
    {
        m_Levels[Index(iPin)].store(static_cast<quint8>(iLevel), std::memory_order_relaxed);
    }
    static int Mode(int iPin) { return m_Modes[Index(iPin)]; }   // as given to pinMode; -1 before
    static int Pull(int iPin) { return m_Pulls[Index(iPin)]; }   // as given to pullUpDnControl; -1 before

    // Calls of the rarely used entry points, in order: set-up, modes, PWM, SPI.
    struct stCall
    {
        const char* szName;
        int iFirst, iSecond, iThird;
        bool operator==(const stCall& other) const;
    };
    static std::vector<stCall> TakeCalls();
    // The bytes that the next one-byte transfers receive, first one first; zero behind them.
    static void SetSpiInput(std::vector<quint8> bytes);

private:
    friend struct stPinAccess;
    static size_t Index(int iPin) { return static_cast<size_t>(iPin) & (PINS - 1); }
    static std::atomic<CPinObserver*> m_pObserver;
    static std::atomic<quint8> m_Levels[PINS];
    static std::atomic<int> m_Modes[PINS], m_Pulls[PINS];
};
