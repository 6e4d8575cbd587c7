/// The contents of Debug.Out: free text and line records in the order of assembly. The bytes of the
/// target are added when the listing is written, after all patches have been applied.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "platform/platform.h"

namespace korv {

class CAssembler;

/// The records are kept in memory, in a buffer that doubles in size when full. If no memory is
/// left, the failure hook ends the run after the current statement and MSG_ABORTED is reported. The
/// listing then lacks the records for which there was no room.
class DebugStream {
  public:
    /// Appends free text, given in pieces.
    void AddText(std::initializer_list<std::string_view> pieces);
    /// Appends the record of a line. `position` is the size of the image after the line; the bytes
    /// of the line are those added since the previous line. An empty line without bytes gets no
    /// record.
    void AddRecord(std::uint32_t position, std::string_view line);
    /// Called instead of `AddRecord` for a line that gets no record.
    void PassOver(std::uint32_t position) { binarySizeAtLineStart = position; }

    /// Writes all records as lines of the listing, with bytes from the image of `assembler`.
    /// RF_ABORT ends the writing early.
    void WriteListing(const CAssembler* assembler, platform::OutputFile* listing) const;

  private:
    platform::Buffer records;
    std::uint32_t binarySizeAtLineStart = 0;
};

}  // namespace korv
