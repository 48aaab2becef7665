#pragma once
#include <cstddef>
#include <cstdint>

// Entries for the fuzzer, plain functions that a normal test runs over the corpus in tests/data/fuzz/<name>.
// Anything but a return is a fault.
int FuzzGCode(const uint8_t* pData, size_t uSize);
int FuzzConfig(const uint8_t* pData, size_t uSize);
int FuzzDxf(const uint8_t* pData, size_t uSize);
