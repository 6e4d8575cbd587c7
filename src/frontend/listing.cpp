// Columns: address, offset in the image, bytes, T-states, file and line, source. The source begins
// at a multiple of 8 columns, the same one in every line, so that its tabs fall where they do in
// an editor.

#include "frontend/listing.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <tuple>
#include <utility>

#include "diagnostics/report_writer.h"
#include "frontend/cycles.h"
#include "frontend/message_printer.h"
#include "frontend/summary.h"
#include "frontend/terminal_text.h"

namespace korv {
namespace {

constexpr std::uint32_t bytesPerRow = 8;
constexpr std::size_t bytesColumn = 13;
constexpr std::size_t cyclesColumn = bytesColumn + 2 * bytesPerRow + 2;
constexpr std::size_t placeColumn = cyclesColumn + 7;

std::string_view KindText(NameKind kind) {
    switch (kind) {
        case NameKind::label:
            return "label";
        case NameKind::constant:
            return "EQU";
        case NameKind::commandLine:
            return "-D";
        case NameKind::internal:
            return "internal";
        case NameKind::undefined:
            return "undefined";
    }
    return {};
}

std::string Hex(std::uint32_t value, std::size_t minDigits) {
    char digits[16];
    return {digits, PutHex(digits, value, minDigits)};
}

std::string ValueText(const Name& name) {
    if (!name.hasValue) {
        return "-";
    }
    const bool isWord = name.value >= 0 && name.value <= 0xFFFF;
    return isWord ? Hex(static_cast<std::uint32_t>(name.value), 4) : std::to_string(name.value);
}

class Listing {
  public:
    explicit Listing(const Analysis& analysis) : analysis(analysis) {
        std::size_t widest = 0;
        for (const SourceFile& file : analysis.files) {
            const std::size_t digits = std::to_string(file.text->LineCount()).size();
            const std::size_t width = EndColumn(file.name, 0, false);
            widest = std::max(widest, width + 1 + digits);
            hiddenBytes.push_back(file.name.size() - width);
        }
        constexpr std::size_t widestPlace = 64;  // a longer one moves its own line only
        sourceColumn = (placeColumn + std::min(widest, widestPlace) + 2 + 7) / 8 * 8;
        SortMessages();
    }

    std::string Text() {
        text = SummaryText(analysis) + "\n";
        text.reserve(text.size() + UsualSize());
        Begin("Addr Offset  Bytes");
        PadTo(cyclesColumn).append("T");
        PadTo(placeColumn).append("File:Line");
        PadTo(sourceColumn).append("Source\n");
        for (const Statement& statement : analysis.statements) {
            AddStatement(statement);
            AddMessages(statement);
        }
        AddMessagesLeft();
        AddNames();
        AddUnusedNames();
        return std::move(text);
    }

  private:
    using MessageKey = std::pair<std::int32_t, std::int32_t>;  // opening and line

    MessageKey KeyOf(std::size_t number) const {
        const Message& message = analysis.messages[number];
        return {message.opening, message.place.line};
    }

    // What statements and names need if all of them have source: growing by doubling would copy it
    // all.
    std::size_t UsualSize() const {
        constexpr std::size_t usualName = 80;  // its row among the names
        std::size_t size =
            analysis.statements.size() * (sourceColumn + 1) + analysis.names.size() * usualName;
        for (const Opening& opening : analysis.openings) {
            size += analysis.files[static_cast<std::size_t>(opening.file)].text->Bytes().size();
        }
        return size;
    }

    void SortMessages() {
        for (std::size_t i = 0; i < analysis.messages.size(); ++i) {
            messages.push_back(i);
        }
        std::ranges::stable_sort(messages, {}, [this](std::size_t i) { return KeyOf(i); });
        isListed.resize(messages.size());
    }

    void Begin(std::string_view start) {
        lineStart = text.size();
        text += start;
    }
    // Appends blanks up to `column` of the line that was begun.
    std::string& PadTo(std::size_t column) {
        const std::size_t size = text.size() - lineStart;
        return text.append(std::max(column, size) - size, ' ');
    }

    void AddStatement(const Statement& statement) {
        const std::uint32_t rows = (statement.count + bytesPerRow - 1) / bytesPerRow;
        const std::uint32_t lines = std::max(statement.lineCount, 1U);
        for (std::uint32_t i = 0; i < std::max(rows, lines); ++i) {
            // A row is made in one piece and appended once: a listing has one for every line.
            char columns[placeColumn + 16];  // an address and an offset may be wider than usual
            const std::string_view start(
                columns, PutColumns(columns, statement, i, i == 0 || i < rows, i < lines));
            if (i < lines) {
                AddRow(start, statement, statement.line + static_cast<std::int32_t>(i));
            } else {
                text.append(start) += '\n';
            }
        }
    }

    // Up to `count` bytes from `done` on; fewer if the image ends before, as after an error.
    std::span<const std::uint8_t> BytesOf(const Statement& statement, std::uint32_t done,
                                          std::uint32_t count) const {
        const std::size_t start =
            std::min<std::size_t>(statement.offset + done, analysis.image.size());
        const std::size_t size = std::min(count, statement.count - done);
        return std::span(analysis.image)
            .subspan(start)
            .first(std::min(size, analysis.image.size() - start));
    }

    // Writes what comes before the place, up to its column if that follows. Result: its end.
    char* PutColumns(char* columns, const Statement& statement, std::uint32_t row, bool hasBytes,
                     bool hasSource) const {
        char* to = columns;
        const auto padTo = [&](std::size_t column) {
            to = PutPadding(to, static_cast<std::size_t>(to - columns), column);
        };
        if (hasBytes) {
            const std::uint32_t done = row * bytesPerRow;
            to = PutHex(to, (statement.address + done) & 0xFFFF, 4);
            *to++ = ' ';
            to = PutHex(to, statement.offset + done, 6);
            const auto bytes = BytesOf(statement, done, bytesPerRow);
            to = PutText(to, bytes.empty() ? "" : "  ");
            for (const std::uint8_t byte : bytes) {
                to = PutHexByte(to, byte);
            }
        }
        if (row == 0 && statement.kind == StatementKind::instruction) {
            padTo(cyclesColumn);
            to = PutCycles(to, CyclesOf(analysis, statement));
        }
        if (hasSource) {
            padTo(placeColumn);
        }
        return to;
    }

    // Appends a row that begins with `columns` and shows `line`.
    void AddRow(std::string_view columns, const Statement& statement, std::int32_t line) {
        const Opening& opening = analysis.openings[static_cast<std::size_t>(statement.opening)];
        const auto number = static_cast<std::size_t>(opening.file);
        const SourceFile& file = analysis.files[number];
        const std::string_view source = file.text->Line(line);
        constexpr std::size_t mostDigits = 16;
        row.resize(std::max(row.size(), columns.size() + file.name.size() + mostDigits +
                                            sourceColumn + source.size() + 2));
        char* to = PutText(PutText(row.data(), columns), file.name);
        *to++ = ':';
        to = std::to_chars(to, to + mostDigits, line).ptr;
        if (!source.empty()) {
            const std::size_t width =
                static_cast<std::size_t>(to - row.data()) - hiddenBytes[number];
            to = PutPadding(to, width, std::max(sourceColumn, width + 2));
            to = PutText(to, source);
        }
        *to++ = '\n';
        text.append(row.data(), to);
    }

    // The messages for the lines of `statement`.
    void AddMessages(const Statement& statement) {
        const MessageKey first{statement.opening, statement.line};
        const MessageKey last{
            statement.opening,
            statement.line + static_cast<std::int32_t>(std::max(statement.lineCount, 1U)) - 1};
        const auto key = [this](std::size_t i) { return KeyOf(i); };
        auto next = std::ranges::lower_bound(messages, first, {}, key);
        for (; next != messages.end() && KeyOf(*next) <= last; ++next) {
            AddMessage(*next);
        }
    }

    void AddMessagesLeft() {
        for (std::size_t i = 0; i < isListed.size(); ++i) {
            AddMessage(i);
        }
    }

    void AddMessage(std::size_t number) {
        if (!isListed[number]) {
            isListed[number] = true;
            const Message& message = analysis.messages[number];
            text += "*** " + MessageLine(analysis, message);
            text += message.note.empty() ? "" : "*** note: " + message.note + "\n";
        }
    }

    static bool IsListed(const Name& name) { return name.kind != NameKind::internal; }

    void AddNames() {
        std::size_t longest = 4;
        for (const Name& name : analysis.names) {
            longest = std::max(longest, IsListed(name) ? name.text.size() : 0);
        }
        constexpr std::size_t longestColumn = 40;
        const std::size_t valueColumn = std::min(longest, longestColumn) + 2;
        const auto add = [&](std::string_view name, std::string_view value, std::string_view kind,
                             std::string_view uses, std::string_view place) {
            Begin(name);
            PadTo(std::max(valueColumn, name.size() + 2)).append(value);
            PadTo(valueColumn + 8).append(" ").append(kind);
            PadTo(valueColumn + 19).append(" ").append(uses);
            PadTo(valueColumn + 26).append(" ").append(place).append("\n");
        };
        text += "\n";
        add("Name", "Value", "Kind", "Uses", "File:Line");
        for (const Name& name : analysis.names) {
            if (IsListed(name)) {
                const bool hasPlace = name.definition.IsSomewhere();
                add(name.text, ValueText(name), KindText(name.kind),
                    std::to_string(name.useCount),
                    hasPlace ? analysis.LineName(name.definition) : "-");
            }
        }
    }

    void AddUnusedNames() {
        std::string unused;
        for (const Name& name : analysis.names) {
            const bool isUsed = name.isUsed || name.useCount != 0 || !name.hasValue;
            unused += IsListed(name) && !isUsed ? "  " + name.text + "\n" : "";
        }
        text += unused.empty() ? "" : "\nNever used\n" + unused;
    }

    const Analysis& analysis;
    std::size_t sourceColumn = 0;  // from 0
    // By file: bytes of its name less columns, since characters may have more than one byte.
    std::vector<std::size_t> hiddenBytes;
    std::vector<std::size_t> messages;  // their numbers, by opening and line
    std::vector<bool> isListed;         // by the numbers of the messages
    std::string text;
    std::vector<char> row;      // room for the one that is being made
    std::size_t lineStart = 0;  // offset of the line that was begun
};

}  // namespace

std::string ListingText(const Analysis& analysis) {
    return Listing(analysis).Text();
}

}  // namespace korv
