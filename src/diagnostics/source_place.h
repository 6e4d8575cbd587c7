/// A place in the source, for reports, definitions and patches.
#pragma once

#include <cstdint>

namespace korv {

/// A part of a logical line. The default value means no place.
struct SourcePlace {
    std::int32_t file = 0;     ///< file number, 0 for none
    std::int32_t line = 0;     ///< its first physical line, 0 for none
    std::uint32_t offset = 0;  ///< start of the part in the cleaned line, in bytes
    std::uint32_t length = 0;  ///< length of the part in bytes; 0: the whole statement
};

}  // namespace korv
