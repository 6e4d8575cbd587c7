/// The temporary stream behind Debug.Out: free text and line records in the order of the assembly.
/// It holds no bytes of the target; they are fetched when the listing is written, with the patches
/// applied.
#pragma once

#include <cstdint>
#include <cstdio>

namespace korv {

class BinBlock;

/// Appends the record of a line that produced `byteCount` bytes; none for an empty line without
/// bytes.
void WriteDebugRecord(std::FILE* stream, std::uint32_t byteCount, const char* text);

/// Turns all of `stream` into the lines of the listing.
void ConvertDebugStream(std::FILE* stream, const BinBlock& binary, std::FILE* listing);

}  // namespace korv
