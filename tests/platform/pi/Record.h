#pragma once
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

// What the stand-ins of the pin libraries note: a line for each call, in the order of the calls, appended to the file
// that PIN_RECORD names; nothing where it names none.
template <class... Values> void NoteCall(const char* szFormat, Values... values)
{
    static const char* const szFile = std::getenv("PIN_RECORD");
    if (!szFile) return;
    std::FILE* pFile = std::fopen(szFile, "a");
    if (!pFile) std::abort();
    std::fprintf(pFile, szFormat, values...);
    std::fputc('\n', pFile);
    std::fclose(pFile);
}

// As the real ones find out what they may do.
inline bool HasRights()
{
    const int iFile = open("memory", O_RDWR | O_CLOEXEC);
    if (iFile >= 0) close(iFile);
    return iFile >= 0;
}
// What the pin library does in a call that it has no right to.
inline void EndUnlessRights(const char* szCall)
{
    if (HasRights()) return;
    std::fprintf(stderr, "%s: needs root\n", szCall);
    std::exit(EXIT_FAILURE);
}
