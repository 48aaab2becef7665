#pragma once
#include <cstdio>
#include <cstdlib>

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
