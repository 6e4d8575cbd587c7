#include "frontend/logical_line.h"

#include <algorithm>
#include <utility>

#include "source/char_class.h"

namespace korv {
namespace {

// Cleans one logical line byte by byte, by the rules of the reader, and keeps where each character
// has come from. What has been stored after `size` stays until it is overwritten: a line that only
// continues another ends in the backslash of that.
class LineCleaner {
  public:
    // Takes a byte. False: it ends the line.
    bool Take(char c, LogicalLine::Position position) {
        constexpr char endOfText = 0x1A;
        if (c == '\n') {
            return Continues();
        }
        if (c == '\r' || c == endOfText) {
            return true;
        }
        if (!isComment && c == '"') {
            isString = !isString;
        } else if (!isComment && c == ';' && !isString) {
            isComment = true;
            commentStart = LastSignificant() + 1;
        }
        Store(isString || isComment ? c : Raised(c), position);
        return true;
    }

    LogicalLine Finished() {
        const std::ptrdiff_t last = LastSignificant();
        std::size_t end = last < 0 ? size : static_cast<std::size_t>(last) + 1;
        if (isComment) {
            end = static_cast<std::size_t>(commentStart);
        }
        line.text.resize(end);
        line.positions.resize(end);
        return std::move(line);
    }

  private:
    void Store(char c, LogicalLine::Position position) {
        if (size == line.text.size()) {
            line.text += c;
            line.positions.push_back(position);
        } else {
            line.text[size] = c;
            line.positions[size] = position;
        }
        ++size;
    }

    // Index of the last character that is no blank; -1 for none.
    [[nodiscard]] std::ptrdiff_t LastSignificant() const {
        std::size_t end = size;
        while (end != segment && HasClass(line.text[end - 1], CC_BLANK)) {
            --end;
        }
        return end == segment ? lastBefore : static_cast<std::ptrdiff_t>(end) - 1;
    }

    bool Continues() {
        const std::ptrdiff_t last = LastSignificant();
        if (last < 0 || line.text[static_cast<std::size_t>(last)] != '\\') {
            return false;
        }
        if (isComment) {
            line.continuedComments.push_back(line.positions[static_cast<std::size_t>(last)]);
        }
        lastBefore = last;
        segment = size = static_cast<std::size_t>(last);
        return true;
    }

    LogicalLine line;
    std::size_t size = 0;            // of what has been stored
    std::size_t segment = 0;         // where what follows the last continuation begins
    std::ptrdiff_t lastBefore = -1;  // last significant character before `segment`
    std::ptrdiff_t commentStart = 0;
    bool isString = false;
    bool isComment = false;
};

// Whether offsets in the cleaned line that begins with `line` are its columns.
bool IsPlain(const StoredText& text, std::string_view line) {
    while (!line.empty() && HasClass(line.back(), CC_BLANK)) {
        line.remove_suffix(1);
    }
    return !text.HasOddBytes() && !line.ends_with('\\') && !line.empty();
}

}  // namespace

LogicalLine LogicalLineAt(const StoredText& text, std::int32_t number) {
    LineCleaner cleaner;
    const std::string& bytes = text.Bytes();
    std::size_t start = text.LineStart(number);
    for (std::size_t at = start; at != bytes.size(); ++at) {
        if (!cleaner.Take(bytes[at], {number, static_cast<std::uint32_t>(at - start)})) {
            break;
        }
        if (bytes[at] == '\n') {
            ++number;
            start = at + 1;
        }
    }
    LogicalLine line = cleaner.Finished();
    line.lastLine = number;
    return line;
}

const LogicalLine& PlaceMap::LineAt(const StoredText& text, std::int32_t number) {
    if (lastText != &text || lastNumber != number) {
        last = LogicalLineAt(text, number);
        lastText = &text;
        lastNumber = number;
    }
    return last;
}

Place PlaceMap::PlaceOf(std::int32_t file, const StoredText& text, std::int32_t line,
                        std::size_t offset, std::size_t length) {
    LogicalLine::Position start{line, static_cast<std::uint32_t>(offset)};
    std::size_t end = offset + length;
    const std::string_view physical = text.Line(line);
    if (offset + length != 0 && !IsPlain(text, physical)) {
        const auto& positions = LineAt(text, line).positions;
        if (offset < positions.size()) {
            start = positions[offset];
        } else if (!positions.empty()) {
            start = positions.back();
            ++start.column;
        }
        end = start.column + length;
        if (length > 0 && offset + length <= positions.size()) {
            const LogicalLine::Position& last = positions[offset + length - 1];
            end = last.line == start.line ? last.column + 1 : std::string_view::npos;
        }
    }
    const std::size_t size = text.Line(start.line).size();
    const std::size_t column = std::min<std::size_t>(start.column, size);
    return {file, start.line, static_cast<std::uint32_t>(column),
            static_cast<std::uint32_t>(std::clamp(end, column, size) - column)};
}

}  // namespace korv
