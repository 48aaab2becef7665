#include "dxf/DxfToGCode.h"
#include "fuzz/FuzzEntries.h"

#include <sstream>
#include <stdexcept>
#include <string>

// A drawing. A number that is none may raise what the standard library raises for it, and nothing else.
int FuzzDxf(const uint8_t* pData, size_t uSize)
{
    std::istringstream stream(std::string(reinterpret_cast<const char*>(pData), uSize));
    DXFReader reader(stream);
    try {
        std::ostringstream program;
        emit_paths(program, group_paths(parse_entities(reader), 1e-05), 1.0, 2.0, 600.0, 5.0, 0.0, 0.0);
    } catch (const std::logic_error&) {
    }
    return 0;
}
