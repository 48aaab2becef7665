#include "fuzz/FuzzEntries.h"

// One program for each entry, named by the build.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t uSize)
{
    return FUZZ_ENTRY(pData, uSize);
}
