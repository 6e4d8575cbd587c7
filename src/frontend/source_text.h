/// The files of a run as they are on disk, for those who show them: messages and the listing. The
/// run itself keeps no line that it has read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace korv {

/// A logical line, cleaned as the reader does it, with the way back to the file.
struct LogicalLine {
    struct Place {
        std::int32_t line;
        std::size_t column;  ///< in bytes, from 0
    };
    std::string text;
    std::vector<Place> places;             ///< of each character of `text`
    std::vector<Place> continuedComments;  ///< the backslashes with which its comment goes on
};

class SourceText {
  public:
    explicit SourceText(std::string contents);

    [[nodiscard]] const std::string& Contents() const { return contents; }
    /// Physical line `number`, from 1, without its end; empty after the last one.
    [[nodiscard]] std::string_view Line(std::int32_t number) const;
    /// The logical line that begins at physical line `number`.
    [[nodiscard]] LogicalLine Logical(std::int32_t number) const;

  private:
    std::string contents;
    std::vector<std::size_t> starts;  // of the lines
};

/// The files of a run by their numbers, each read when it is first asked for.
class SourceTexts {
  public:
    /// Says where file `number` is found.
    void SetPath(std::int32_t number, const std::string& path) { paths[number] = path; }
    /// Gives the text of file `number` instead.
    void SetText(std::int32_t number, const std::string& contents);

    /// Whether file `number` holds a byte 0, or a carriage return without a line feed; it may say
    /// so of others too. Reads the file and keeps nothing.
    [[nodiscard]] bool MayHideText(std::int32_t number);
    /// All bytes of file `number`. A file that can no longer be read is empty.
    [[nodiscard]] std::string Contents(std::int32_t number);
    /// The same, divided into lines.
    [[nodiscard]] const SourceText& Of(std::int32_t number);

  private:
    std::map<std::int32_t, std::string> paths;
    std::map<std::int32_t, SourceText> texts;
};

}  // namespace korv
