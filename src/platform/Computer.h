#pragma once
#include <QString>

#include <functional>

// What the computer offers beside its pins.

// The core that a set-up Pi keeps free for the pulses.
inline constexpr int PULSE_CORE = 3;

// Binds the calling thread to one processor core. Not examined further where the computer has no such core.
void BindThreadToCore(int iCore);

// Calls fnTask with 0 to uCount - 1, in any order, on a thread for each core that this program may use but the pulses'
// (where it is the only one, on that); the caller waits meanwhile. What a task throws is thrown here, once all are
// done.
void ForEachOnFreeCores(size_t uCount, const std::function<void(size_t)>& fnTask);

// For memory that will be filled from end to end at once: finding it page by page costs more than filling it. A hint.
void AdviseLargePages(void* pMemory, size_t uBytes);

// Keeps the program's pages in memory: one that has to be fetched in the middle of a move costs milliseconds. Those of
// now in any case; later ones only where the limit on locked memory is none, because beyond a limit every allocation
// would fail.
enum eLockedMemory
{
    LOCKED_NOTHING,
    LOCKED_PRESENT,
    LOCKED_ALL
};
eLockedMemory LockMemory();

// The stack of a thread that makes pulses or has them made, in bytes. Small: locked memory fetches the whole of a new
// one, and what the C library keeps of ended threads for new ones has its bound.
inline constexpr unsigned THREAD_STACK = 1024 * 1024;
// Touches the calling thread's stack, as deep as its work goes.
void TouchStack();
// Makes so many threads at a time, and ends them: their stacks, touched, are those of the threads to come.
void TouchStacks(int iThreads);

// Starts a program that outlives this one. Tests and the headless runner put a function of their own in its place:
// nothing but the machine's own program may shut a computer down.
using StartDetachedFn = bool (*)(const QString& strProgram);
bool StartDetached(const QString& strProgram);
void SetStartDetached(StartDetachedFn fn);
