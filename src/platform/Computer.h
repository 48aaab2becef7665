#pragma once
#include <QString>

// What the computer offers beside its pins.

// Binds the calling thread to one processor core. Not examined further where the computer has no such core.
void BindThreadToCore(int iCore);

// Starts a program that outlives this one. Tests and the headless runner put a function of their own in its place:
// nothing but the machine's own program may shut a computer down.
using StartDetachedFn = bool (*)(const QString& strProgram);
bool StartDetached(const QString& strProgram);
void SetStartDetached(StartDetachedFn fn);
