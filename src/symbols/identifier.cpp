#include "symbols/identifier.h"

namespace korv {

void FlagString(std::uint32_t flags, char (&out)[7]) {
    const auto has = [flags](std::uint32_t bit) { return (flags & bit) != 0; };
    out[0] = has(IDF_LABEL) ? 'L' : has(IDF_EQU) ? 'E' : has(IDF_RESERVED) ? 'S' : '.';
    out[1] = has(IDF_USED) ? 'U' : '.';
    const char* const width = has(IDF_8BIT)    ? "08"
                              : has(IDF_16BIT) ? "16"
                              : has(IDF_32BIT) ? "32"
                                               : "??";
    out[2] = width[0];
    out[3] = width[1];
    out[4] = has(IDF_RESOLVED) ? 'R' : '.';
    out[5] = has(IDF_INTERNAL) ? 'I' : '.';
    out[6] = '\0';
}

}  // namespace korv
