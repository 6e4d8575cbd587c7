#include "frontend/logical_line.h"

#include <algorithm>
#include <utility>

#include "frontend/options.h"
#include "source/char_class.h"
#include "source/line_cleaner.h"

namespace korv {
namespace {

// True if offsets in the cleaned line are columns of `line`, its first physical line.
bool IsPlain(const StoredText& text, std::string_view line) {
    while (!line.empty() && HasClass(line.back(), CC_BLANK)) {
        line.remove_suffix(1);
    }
    return !text.HasOddBytes() && !line.ends_with('\\') && !line.empty();
}

}  // namespace

LogicalLine LogicalLineAt(const StoredText& text, std::int32_t number) {
    LogicalLine line;
    line.text.resize(256);
    LineCleaner cleaner{line.text.data()};
    const std::string_view bytes = text.Bytes();
    std::size_t start = text.LineStart(number);
    bool goesOn = true;
    for (std::size_t at = start; goesOn && at != bytes.size() && cleaner.size < longestLine; ++at) {
        if (cleaner.size + 2 > line.text.size()) {
            line.text.resize(2 * line.text.size());
            cleaner.line = line.text.data();
        }
        const std::size_t size = cleaner.size;
        goesOn = cleaner.Take(bytes[at]);
        if (cleaner.size > size) {
            line.positions.resize(std::max(line.positions.size(), cleaner.size));
            line.positions[size] = {number, static_cast<std::uint32_t>(at - start)};
        }
        if (goesOn && bytes[at] == '\n') {
            if (cleaner.isComment) {  // the backslash is still stored after the line
                line.continuedComments.push_back(line.positions[cleaner.size]);
            }
            ++number;
            start = at + 1;
        }
    }
    line.text.resize(cleaner.Length());
    line.positions.resize(cleaner.Length());
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
    if (!IsPlain(text, text.Line(line))) {
        const auto& positions = LineAt(text, line).positions;
        if (offset < positions.size()) {
            start = positions[offset];
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
