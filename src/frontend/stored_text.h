/// The bytes of a file as they were read, with access to its lines.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/platform.h"

namespace korv {

class StoredText {
  public:
    /// The bytes of a file, owned by the block.
    struct Block {
        std::unique_ptr<char[]> data;
        std::size_t size = 0;
    };
    /// `path` is the full path of the file, or any name for a text that is not a file.
    StoredText(std::string path, Block bytes, const platform::FileIdentity& identity = {});
    /// The same with a copy of `bytes`.
    StoredText(std::string path, std::string_view bytes,
               const platform::FileIdentity& identity = {});

    [[nodiscard]] const std::string& Path() const { return path; }
    [[nodiscard]] std::string_view Bytes() const { return {bytes.data.get(), bytes.size}; }
    /// The identity of the file; the default for a text that is not a file.
    [[nodiscard]] const platform::FileIdentity& Identity() const { return identity; }

    [[nodiscard]] std::int32_t LineCount() const {
        return static_cast<std::int32_t>(Starts().size());
    }
    /// The offset of physical line `number`, from 1; the size of the text if there is no such line.
    [[nodiscard]] std::size_t LineStart(std::int32_t number) const;
    /// Physical line `number`, from 1, without its line end; empty if there is no such line.
    [[nodiscard]] std::string_view Line(std::int32_t number) const {
        const std::vector<std::size_t>& all = Starts();
        const std::size_t next = static_cast<std::uint32_t>(number);
        if (next - 1 >= all.size()) {
            return {};
        }
        const std::size_t start = all[next - 1];
        std::size_t end = next < all.size() ? all[next] - 1 : bytes.size;
        if (end > start && bytes.data[end - 1] == '\r') {
            --end;
        }
        return {bytes.data.get() + start, end - start};
    }

    /// True if the text contains a byte 0 or 1AH, or a carriage return without a line feed. Then an
    /// offset in a cleaned line may differ from the column.
    [[nodiscard]] bool HasOddBytes() const { return hasOddBytes; }

  private:
    [[nodiscard]] const std::vector<std::size_t>& Starts() const {
        if (starts.empty()) {
            FindStarts();
        }
        return starts;
    }
    void FindStarts() const;

    std::string path;
    Block bytes;
    platform::FileIdentity identity;
    // Offsets of the lines, computed when a line is first requested, since most runs need none.
    mutable std::vector<std::size_t> starts;
    bool hasOddBytes = false;
};

}  // namespace korv
