/// What becomes Debug.Out: free text and line records in the order of the assembly. It holds no
/// bytes of the target; they are fetched when the listing is written, with the patches applied.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "platform/platform.h"

namespace korv {

class CAssembler;

/// Kept in memory, which doubles as it fills. Where there is none left, the failure hook ends the
/// run with the current statement, and MSG_ABORTED says that it has been broken off: what finds no
/// room is left out, and the listing shows what was there before.
class DebugStream {
  public:
    /// Appends free text, given in pieces.
    void AddText(std::initializer_list<std::string_view> pieces);
    /// Appends the record of a line after which the image has `position` bytes: its own are those
    /// since the line before. An empty line without bytes has no record.
    void AddRecord(std::uint32_t position, std::string_view line);
    /// The same for a line that is to have no record.
    void PassOver(std::uint32_t position) { binarySizeAtLineStart = position; }

    /// Turns all that there is into the lines of the listing, with the bytes of the image of
    /// `assembler`; RF_ABORT ends it early.
    void WriteListing(const CAssembler* assembler, platform::OutputFile* listing) const;

  private:
    platform::Buffer records;
    std::uint32_t binarySizeAtLineStart = 0;
};

}  // namespace korv
