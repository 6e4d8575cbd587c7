/// The bytes of a file as they were read, with access to its lines.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"

namespace korv {

class StoredText {
  public:
    /// `path` is the full path of the file, or any name for another text.
    StoredText(std::string path, std::string bytes, const platform::FileIdentity& identity = {});

    [[nodiscard]] const std::string& Path() const { return path; }
    [[nodiscard]] const std::string& Bytes() const { return bytes; }
    /// The identity of the file; a default value if the text is not from a file.
    [[nodiscard]] const platform::FileIdentity& Identity() const { return identity; }

    [[nodiscard]] std::int32_t LineCount() const {
        return static_cast<std::int32_t>(starts.size());
    }
    /// The offset of physical line `number`, from 1; the size of the text if there is no such line.
    [[nodiscard]] std::size_t LineStart(std::int32_t number) const;
    /// Physical line `number`, from 1, without its line end; empty if there is no such line.
    [[nodiscard]] std::string_view Line(std::int32_t number) const;

    /// Whether the text contains a byte 0 or 1AH, or a carriage return without a line feed. Then an
    /// offset in a cleaned line may differ from the column.
    [[nodiscard]] bool HasOddBytes() const { return hasOddBytes; }

  private:
    std::string path;
    std::string bytes;
    platform::FileIdentity identity;
    std::vector<std::size_t> starts;  // offsets of the lines
    bool hasOddBytes = false;
};

}  // namespace korv
