// Only blanks between the parts of a line are replaced, so strings, comments and operands cannot
// change. The reader limits the length of a line, so no line grows beyond `longestLine`.

#include <algorithm>
#include <array>
#include <iterator>

#include "frontend/statement_view.h"
#include "server/features/features.h"
#include "source/char_class.h"

namespace korv {
namespace {

// The columns, from 0, of the parts of a physical line: label with its colon, mnemonic, operands,
// comment. With tabs, the nearest tab stops are used instead.
constexpr std::size_t columns[] = {0, 10, 15, 34};
// The parts, with only blanks between them.
using LineParts = std::array<std::string_view, std::size(columns)>;
// In bytes. No line grows beyond this length.
constexpr std::size_t longestLine = 120;

// Splits a line into its parts. Result: none if the line must not be changed.
std::optional<LineParts> Cut(std::string_view line) {
    constexpr std::string_view odd("\0\r\x1A", 3);
    const std::size_t comment = CommentStart(line);
    const std::string statement = Raised(line.substr(0, comment));
    const bool isStringOpen = std::ranges::count(statement, '"') % 2 != 0;
    if (isStringOpen || line.find_first_of(odd) != std::string_view::npos) {
        return std::nullopt;
    }
    const StatementView view = CutStatement(statement, line);
    const std::size_t labelSize = view.label.size() + (view.hasColon ? 1 : 0);
    const std::string_view next = std::string_view(statement).substr(labelSize, 1);
    // The assembler treats any character after a label as the colon.
    const bool isClear = view.hasColon || next.empty() || HasClass(next.front(), CC_BLANK);
    const bool isKnown = view.keyword != nullptr || view.mnemonic.empty();
    const bool isComment = view.label.empty() && view.mnemonic.empty();
    if (!isClear || !isKnown || isComment) {
        return std::nullopt;
    }
    return LineParts{line.substr(0, labelSize), view.Typed(view.mnemonic), view.Typed(view.rest),
                     line.substr(comment)};
}

class LineFormatter {
  public:
    explicit LineFormatter(const Query& query) : snapshot(query.snapshot), file(query.file) {
        const auto size = Get<std::int64_t>(query.parameters, "/options/tabSize", 8);
        tabSize = static_cast<std::size_t>(std::max<std::int64_t>(size, 1));
        hasTabs = !Get(query.parameters, "/options/insertSpaces", true);
    }

    // Adds the edits for line `number`.
    void Format(std::int32_t number, const LineParts& parts, Json::array_t* edits) {
        line = number;
        text = snapshot.Text(file).Line(line);
        end = 0;
        formatted.clear();
        changes.clear();
        for (std::size_t i = 0; i < parts.size(); ++i) {
            Put(parts[i], columns[i]);
        }
        if (parts.back().empty()) {  // no comment
            Replace(text.size(), "");
        }
        if (formatted.size() <= std::max(longestLine, text.size())) {
            edits->insert(edits->end(), changes.begin(), changes.end());
        }
    }

  private:
    // Moves `part`, the next part of the line, to column `target`. If the previous part reaches
    // that column, one blank separates them.
    void Put(std::string_view part, std::size_t target) {
        if (part.empty()) {
            return;
        }
        const auto start = static_cast<std::size_t>(part.data() - text.data());
        if (target != 0 || !formatted.empty()) {
            Replace(start, GapTo(target));
        }
        formatted += part;
        end = start + part.size();
    }

    // The gap before column `target`: at least one blank or tab.
    [[nodiscard]] std::string GapTo(std::size_t target) const {
        const std::size_t column = Column();
        if (!hasTabs) {
            return std::string(std::max(target, column + 1) - column, ' ');
        }
        const std::size_t stop = (target + tabSize / 2) / tabSize;  // the nearest one
        return std::string(std::max(stop, column / tabSize + 1) - column / tabSize, '\t');
    }

    // Replaces the text between the end of the last part and `start` with `gap`.
    void Replace(std::size_t start, const std::string& gap) {
        if (text.substr(end, start - end) != gap) {
            const Place place{file, line, static_cast<std::uint32_t>(end),
                              static_cast<std::uint32_t>(start - end)};
            changes.push_back(TextEdit(snapshot.RangeOf(place), gap));
        }
        formatted += gap;
    }

    // The column at the end of the new line.
    [[nodiscard]] std::size_t Column() const {
        std::size_t column = 0;
        for (const char c : formatted) {
            const bool isContinuation = (static_cast<unsigned char>(c) & 0xC0) == 0x80;  // UTF-8
            column += c == '\t' ? tabSize - column % tabSize : isContinuation ? 0 : 1;
        }
        return column;
    }

    const Snapshot& snapshot;
    std::int32_t file;
    std::size_t tabSize;
    bool hasTabs;
    // Of the current line.
    std::int32_t line = 0;
    std::string_view text;
    std::size_t end = 0;    // of the last part, in `text`
    std::string formatted;  // the new line so far
    Json::array_t changes;
};

}  // namespace

Json Formatting(const Query& query) {
    Json::array_t edits;
    Range lines = query.range;
    if (lines.end.character == 0 && lines.end.line > lines.start.line) {
        --lines.end.line;  // a selection of whole lines ends at the start of the next line
    }
    LineFormatter formatter(query);
    for (const Statement* const statement : StatementsIn(query.snapshot, query.file, lines)) {
        const auto parts = Cut(query.snapshot.Text(query.file).Line(statement->line));
        if (parts && statement->lineCount == 1) {
            formatter.Format(statement->line, *parts, &edits);
        }
    }
    return edits;
}

}  // namespace korv
