// Columns: address, offset in the image, bytes, T-states, file and line, source. In every line, the
// source begins at the same multiple of 8 columns, so that its tabs fall where they do in an
// editor.

#include "frontend/listing.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <tuple>
#include <utility>

#include "diagnostics/report_writer.h"
#include "frontend/cycles.h"
#include "frontend/message_printer.h"
#include "frontend/summary.h"
#include "frontend/terminal_text.h"
#include "frontend/text_buffer.h"

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
        case NameKind::internal:  // not listed
        case NameKind::undefined:
            return "undefined";
    }
    return {};
}

// Writes the value of `name`, in at most `longestNumber` characters.
char* PutValue(char* to, const Name& name) {
    if (!name.hasValue) {
        return PutText(to, "-");
    }
    const bool isWord = name.value >= 0 && name.value <= 0xFFFF;
    return isWord ? PutHex(to, static_cast<std::uint32_t>(name.value), 4)
                  : PutNumber(to, name.value);
}

// The estimated size in bytes, enough for a typical program of one file.
std::size_t UsualSize(const Analysis& analysis) {
    constexpr std::size_t usualColumns = 64, usualName = 80;
    return analysis.statements.size() * usualColumns + analysis.names.size() * usualName +
           analysis.files.front().text->Bytes().size();
}

class Listing {
  public:
    explicit Listing(const Analysis& analysis) : analysis(analysis), text(UsualSize(analysis)) {
        std::size_t widest = 0;
        for (const SourceFile& file : analysis.files) {
            const std::size_t digits = std::to_string(file.text->LineCount()).size();
            const std::size_t width = EndColumn(file.name, 0, false);
            widest = std::max(widest, width + 1 + digits);
            hiddenBytes.push_back(file.name.size() - width);
        }
        constexpr std::size_t widestPlace = 64;  // a longer one shifts only its own line
        sourceColumn = (placeColumn + std::min(widest, widestPlace) + 2 + 7) / 8 * 8;
        SortMessages();
    }

    std::string Text() {
        PutSummary(analysis, &text);
        text.Put("\n");
        PutHeading();
        for (const Statement& statement : analysis.statements) {
            PutStatement(statement);
            PutMessages(statement);
        }
        PutMessagesLeft();
        PutNames();
        PutUnusedNames();
        return text.Take();
    }

  private:
    using MessageKey = std::pair<std::int32_t, std::int32_t>;  // opening and line

    MessageKey KeyOf(std::size_t number) const {
        const Message& message = analysis.messages[number];
        return {message.opening, message.place.line};
    }

    void SortMessages() {
        for (std::size_t i = 0; i < analysis.messages.size(); ++i) {
            messages.push_back(i);
        }
        std::ranges::stable_sort(messages, {}, [this](std::size_t i) { return KeyOf(i); });
        isListed.resize(messages.size());
    }

    void PutHeading() {
        char* const start = text.Room(sourceColumn + 32);
        char* to = PutBlanks(PutText(start, "Addr Offset  Bytes"), start + cyclesColumn);
        to = PutBlanks(PutText(to, "T"), start + placeColumn);
        to = PutBlanks(PutText(to, "File:Line"), start + sourceColumn);
        text.Advance(PutText(to, "Source\n"));
    }

    void PutStatement(const Statement& statement) {
        const std::uint32_t rows = (statement.count + bytesPerRow - 1) / bytesPerRow;
        for (std::uint32_t i = 0; i < std::max(rows, statement.lineCount); ++i) {
            PutRow(statement, i, i == 0 || i < rows, i < statement.lineCount);
        }
    }

    void PutRow(const Statement& statement, std::uint32_t row, bool hasBytes, bool hasSource) {
        const Opening& opening = analysis.openings[static_cast<std::size_t>(statement.opening)];
        const auto number = static_cast<std::size_t>(opening.file);
        const SourceFile& file = analysis.files[number];
        const std::int32_t line = statement.line + static_cast<std::int32_t>(row);
        const std::string_view source = hasSource ? file.text->Line(line) : std::string_view();
        char* const start = text.Room(2 * placeColumn + file.name.size() + longestNumber +
                                      sourceColumn + source.size() + 4);
        char* to = PutColumns(start, statement, row, hasBytes);
        if (hasSource) {
            to = PutText(std::max(to, start + placeColumn), file.name);
            *to++ = ':';
            to = PutNumber(to, line);
        }
        if (!source.empty()) {
            to = PutBlanks(to, std::max(start + sourceColumn + hiddenBytes[number], to + 2));
            to = PutText(to, source);
        }
        *to++ = '\n';
        text.Advance(to);
    }

    // Up to `count` bytes of `statement` from its byte `done` on.
    std::span<const std::uint8_t> BytesOf(const Statement& statement, std::uint32_t done,
                                          std::uint32_t count) const {
        return std::span(analysis.image)
            .subspan(statement.offset + done, std::min(count, statement.count - done));
    }

    // Writes the columns before `placeColumn`, padded with blanks. Result: the end of the text
    // before the blanks.
    char* PutColumns(char* start, const Statement& statement, std::uint32_t row,
                     bool hasBytes) const {
        const std::uint32_t done = row * bytesPerRow;
        char* to = start;
        if (hasBytes) {
            to = PutHex(to, (statement.address + done) & 0xFFFF, 4);
            *to++ = ' ';
            to = PutHex(to, statement.offset + done, 6);
        }
        std::fill_n(to, placeColumn, ' ');  // a constant count is faster than the exact one
        if (hasBytes) {
            const auto bytes = BytesOf(statement, done, bytesPerRow);
            to += bytes.empty() ? 0 : 2;
            for (const std::uint8_t byte : bytes) {
                to = PutHexByte(to, byte);
            }
        }
        if (row == 0) {
            to = PutCycles(std::max(to, start + cyclesColumn), CyclesOf(analysis, statement));
        }
        return to;
    }

    // Writes the messages about the lines of `statement`.
    void PutMessages(const Statement& statement) {
        if (messages.empty()) {
            return;
        }
        const MessageKey first{statement.opening, statement.line};
        const MessageKey last{statement.opening,
                              statement.line + static_cast<std::int32_t>(statement.lineCount) - 1};
        const auto key = [this](std::size_t i) { return KeyOf(i); };
        auto next = std::ranges::lower_bound(messages, first, {}, key);
        for (; next != messages.end() && KeyOf(*next) <= last; ++next) {
            PutMessage(*next);
        }
    }

    void PutMessagesLeft() {
        for (std::size_t i = 0; i < isListed.size(); ++i) {
            PutMessage(i);
        }
    }

    void PutMessage(std::size_t number) {
        if (!isListed[number]) {
            isListed[number] = true;
            const Message& message = analysis.messages[number];
            text.Put("*** " + MessageLine(analysis, message));
            text.Put(message.note.empty() ? "" : "*** note: " + message.note + "\n");
        }
    }

    static bool IsListed(const Name& name) { return name.kind != NameKind::internal; }

    void PutNames() {
        std::size_t longest = 4;
        for (const Name& name : analysis.names) {
            longest = std::max(longest, IsListed(name) ? name.text.size() : 0);
        }
        constexpr std::size_t longestColumn = 40;
        valueColumn = std::min(longest, longestColumn) + 2;
        text.Put("\n");
        const std::string_view heading = "Name";
        char* const start = text.Room(heading.size() + widestNameColumns + 16);
        text.Advance(
            PutText(PutNameColumns(start, heading, "Value", "Kind", "Uses"), "File:Line\n"));
        for (const Name& name : analysis.names) {
            if (IsListed(name)) {
                PutName(name);
            }
        }
    }

    void PutName(const Name& name) {
        const Place& place = name.definition;
        std::string_view file = "-";
        if (place.IsSomewhere()) {
            file = analysis.files[static_cast<std::size_t>(place.file)].name;
        }
        char value[longestNumber], uses[longestNumber];
        char* const start =
            text.Room(name.text.size() + widestNameColumns + file.size() + longestNumber + 2);
        char* to = PutNameColumns(start, name.text, {value, PutValue(value, name)},
                                  KindText(name.kind), {uses, PutNumber(uses, name.useCount)});
        to = PutText(to, file);
        if (place.IsSomewhere()) {
            *to++ = ':';
            to = PutNumber(to, place.line);
        }
        *to++ = '\n';
        text.Advance(to);
    }

    // Writes the columns before the place of a name. Result: where to write the place.
    char* PutNameColumns(char* start, std::string_view name, std::string_view value,
                         std::string_view kind, std::string_view uses) const {
        char* to = PutText(start, name);
        std::fill_n(to, widestNameColumns, ' ');
        to = PutText(std::max(start + valueColumn, to + 2), value);
        to = PutText(std::max(start + valueColumn + 8, to) + 1, kind);
        to = PutText(std::max(start + valueColumn + 19, to) + 1, uses);
        return std::max(start + valueColumn + 26, to) + 1;
    }

    void PutUnusedNames() {
        std::string_view heading = "\nNever used\n";
        for (const Name& name : analysis.names) {
            const bool isUsed = name.isUsed || name.useCount != 0 || !name.hasValue;
            if (IsListed(name) && !isUsed) {
                text.Put(std::exchange(heading, ""));
                text.Put("  " + name.text + "\n");
            }
        }
    }

    static constexpr std::size_t widestNameColumns = 80;  // from the end of the name to the place

    const Analysis& analysis;
    std::size_t sourceColumn = 0;  // from 0
    // For each file, the size of its name in bytes minus its width in columns. They differ if a
    // character has several bytes.
    std::vector<std::size_t> hiddenBytes;
    std::vector<std::size_t> messages;  // their indices, sorted by opening and line
    std::vector<bool> isListed;         // for each message, by index
    std::size_t valueColumn = 0;        // of the values of names
    TextBuffer text;
};

}  // namespace

std::string ListingText(const Analysis& analysis) {
    return Listing(analysis).Text();
}

}  // namespace korv
