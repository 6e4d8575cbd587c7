// Only blanks between the parts of a line are replaced, so strings, comments and operands cannot
// change. What could change is where a line ends for the reader, which takes a limited number of
// bytes: hence the limit for lines that grow.

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "frontend/statement_view.h"
#include "server/features/features.h"
#include "server/line_prefix.h"
#include "source/char_class.h"

namespace korv {
namespace {

// Columns, from 0. With tabs, the nearest tab stops.
constexpr std::size_t mnemonicColumn = 10;
constexpr std::size_t operandColumn = 15;
constexpr std::size_t commentColumn = 34;
// In bytes. A line that grows beyond it is left alone.
constexpr std::size_t longestLine = 120;

// The parts of a physical line, as views of it. Only blanks are between them.
struct LineParts {
    std::string_view label;  // with its colon
    std::string_view mnemonic;
    std::string_view operands;
    std::string_view comment;
};

// Takes the characters up to the first one that `ends` takes off the front of `text`.
template <typename Ends>
std::string_view TakeUntil(std::string_view* text, Ends ends) {
    const std::string_view part(text->begin(), std::ranges::find_if(*text, ends));
    text->remove_prefix(part.size());
    return part;
}

bool IsBlank(char c) {
    return HasClass(c, CC_BLANK);
}

std::string_view WithoutBlanksAtEnd(std::string_view text) {
    while (!text.empty() && IsBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// False: the line is to be left alone.
bool Cut(std::string_view line, LineParts* parts) {
    const std::string_view odd("\0\r\x1A", 3);
    if (line.find_first_of(odd) != std::string_view::npos ||
        WithoutBlanksAtEnd(line).ends_with('\\')) {
        return false;
    }
    parts->comment = line.substr(CommentStart(line));
    std::string_view rest = WithoutBlanksAtEnd(line.substr(0, line.size() - parts->comment.size()));
    if (std::ranges::count(rest, '"') % 2 != 0) {  // a string that has no end
        return false;
    }
    const std::string_view name = TakeUntil(&rest, [](char c) { return !HasClass(c, CC_NAME); });
    const bool hasColon = !name.empty() && rest.starts_with(':');
    rest.remove_prefix(hasColon ? 1 : 0);
    parts->label = {name.data(), name.size() + (hasColon ? 1 : 0)};
    // Any character after a label is taken for the colon.
    const bool isClear = hasColon || rest.empty() || IsBlank(rest.front());
    rest = WithoutLeadingBlanks(rest);
    parts->mnemonic = TakeUntil(&rest, IsBlank);
    parts->operands = WithoutLeadingBlanks(rest);
    return isClear &&
           (parts->mnemonic.empty() || FindKeyword(Raised(parts->mnemonic)) != nullptr) &&
           !(parts->label.empty() && parts->mnemonic.empty());
}

class LineFormatter {
  public:
    explicit LineFormatter(const Query& query) : snapshot(query.snapshot), file(query.file) {
        const auto* const size = Find<std::int64_t>(query.parameters, "/options/tabSize");
        const auto* const blanks = Find<bool>(query.parameters, "/options/insertSpaces");
        tabSize =
            size == nullptr ? 8 : static_cast<std::size_t>(std::clamp<std::int64_t>(*size, 1, 16));
        hasTabs = blanks != nullptr && !*blanks;
    }

    // Adds the changes of line `number`.
    void Format(std::int32_t number, const LineParts& parts, Json::array_t* edits) {
        line = number;
        text = snapshot.Line(file, line);
        end = column = size = 0;
        changes.clear();
        Put(parts.label, 0);
        Put(parts.mnemonic, mnemonicColumn);
        Put(parts.operands, operandColumn);
        Put(parts.comment, commentColumn);
        if (parts.comment.empty()) {
            Replace(text.size(), "");
        }
        if (size <= std::max(longestLine, text.size())) {
            edits->insert(edits->end(), changes.begin(), changes.end());
        }
    }

  private:
    // `part`, which is where the last one ends or after it, at `target` or a blank after the last.
    void Put(std::string_view part, std::size_t target) {
        if (part.empty()) {
            return;
        }
        if (column != 0 || target != 0) {
            Replace(StartOf(part), GapTo(target));
        }
        Advance(part);
        end = StartOf(part) + part.size();
    }

    [[nodiscard]] std::size_t StartOf(std::string_view part) const {
        return static_cast<std::size_t>(part.data() - text.data());
    }

    // At least one blank.
    [[nodiscard]] std::string GapTo(std::size_t target) const {
        if (!hasTabs) {
            return std::string(std::max(target, column + 1) - column, ' ');
        }
        const std::size_t stop = (target + tabSize / 2) / tabSize;  // the nearest one
        return std::string(std::max(stop, column / tabSize + 1) - column / tabSize, '\t');
    }

    // Puts `gap` between the end of the last part and `start`.
    void Replace(std::size_t start, const std::string& gap) {
        if (text.substr(end, start - end) != gap) {
            const Place place{file, line, static_cast<std::uint32_t>(end),
                              static_cast<std::uint32_t>(start - end)};
            changes.push_back(TextEdit(snapshot.RangeOf(place), gap));
        }
        Advance(gap);
    }

    void Advance(std::string_view part) {
        size += part.size();
        for (const char c : part) {
            const bool isContinuation = (static_cast<unsigned char>(c) & 0xC0) == 0x80;  // UTF-8
            column = c == '\t' ? column / tabSize * tabSize + tabSize
                               : column + (isContinuation ? 0 : 1);
        }
    }

    const Snapshot& snapshot;
    std::int32_t file;
    std::size_t tabSize;
    bool hasTabs;
    // Of the line in hand.
    std::int32_t line = 0;
    std::string_view text;
    std::size_t end = 0;     // of the last part, in `text`
    std::size_t column = 0;  // in the line as it becomes
    std::size_t size = 0;    // of the line as it becomes
    Json::array_t changes;
};

}  // namespace

Json Formatting(const Query& query) {
    Json::array_t edits;
    Range lines = query.range;
    if (lines.end.character == 0 && lines.end.line > lines.start.line) {
        --lines.end.line;  // a selection of whole lines ends at the start of the next one
    }
    LineFormatter formatter(query);
    for (const Statement* const statement : StatementsIn(query.snapshot, query.file, lines)) {
        LineParts parts;
        if (statement->lineCount == 1 &&
            Cut(query.snapshot.Line(query.file, statement->line), &parts)) {
            formatter.Format(statement->line, parts, &edits);
        }
    }
    return edits;
}

}  // namespace korv
