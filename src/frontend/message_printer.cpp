#include "frontend/message_printer.h"

#include <algorithm>
#include <utility>

#include "frontend/terminal_text.h"

namespace korv {
namespace {

constexpr std::string_view program = "korv-as: ";

// ANSI codes for colours and text attributes.
constexpr std::string_view plain = "0", bold = "1", red = "31", green = "32", magenta = "35",
                           cyan = "36";

// Appends pieces to a text, with or without terminal colours.
class Pen {
  public:
    Pen(std::string* text, const TextStyle& style) : text(text), style(style) {}

    Pen& Set(std::string_view rendition) {
        if (style.isColored) {
            text->append("\033[").append(rendition).append("m");
        }
        return *this;
    }
    Pen& Own(std::string_view piece) {
        text->append(piece);
        return *this;
    }
    // Appends text from a source or a file name.
    Pen& Foreign(std::string_view piece) {
        text->append(style.isTerminal ? EscapedText(piece) : piece);
        return *this;
    }

  private:
    std::string* text;
    TextStyle style;
};

// The part of a line that is shown, in three pieces: before the caret, above it, and after it.
struct Excerpt {
    std::string_view before, marked, after;
    bool hasMoreBefore, hasMoreAfter;
};

// The first offset at or after `offset` at which a UTF-8 character begins.
std::size_t CharacterStart(std::string_view line, std::size_t offset) {
    while (offset < line.size() && (static_cast<unsigned char>(line[offset]) & 0xC0) == 0x80) {
        ++offset;
    }
    return offset;
}

Excerpt ExcerptOf(std::string_view line, const Place& place) {
    constexpr std::size_t longestShown = 400;  // bytes; by default, lines that assemble are shorter
    const std::size_t column = std::min<std::size_t>(place.column, line.size());
    std::size_t start = 0, end = line.size();
    if (line.size() > longestShown) {
        start = CharacterStart(line, column - std::min(column, longestShown / 2));
        end = CharacterStart(line, std::min(start + longestShown, line.size()));
    }
    const std::size_t markedEnd = std::min(column + place.length, end);
    return {line.substr(start, column - start), line.substr(column, markedEnd - column),
            line.substr(markedEnd, end - markedEnd), start != 0, end != line.size()};
}

std::string PlaceText(const Analysis& analysis, const Place& place) {
    return place.IsSomewhere()
               ? analysis.LineName(place) + ":" + std::to_string(place.column + 1) + ": "
               : std::string(program);
}

void PrintHeading(const Message& message, std::string_view place, Pen pen) {
    const bool isError = message.severity == Severity::error;
    pen.Set(bold).Foreign(place).Set(isError ? red : magenta);
    pen.Own(isError ? "error: " : "warning: ").Set(plain);
    pen.Foreign(SentenceOf(message));
    pen.Own(message.code.empty() ? "" : " [" + message.code + "]").Own("\n");
}

class MessagePrinter {
  public:
    MessagePrinter(const Analysis& analysis, const TextStyle& style)
        : analysis(analysis), style(style), isIntroduced(analysis.openings.size()) {}

    void Print(const Message& message) {
        if (message.opening != noIndex) {
            PrintIncluded(message.opening);
        }
        const std::string place = PlaceText(analysis, message.place);
        PrintHeading(message, place, NewPen());
        if (message.place.IsSomewhere()) {
            PrintExcerpt(message.place);
        }
        if (!message.note.empty()) {
            PrintNote(place, message.note);
        }
    }

    void PrintCounts() {
        if (analysis.errorCount + analysis.warningCount == 0) {
            return;
        }
        const auto counted = [](std::uint64_t count, std::string_view what) {
            const std::string text = std::to_string(count).append(" ").append(what);
            return count == 0 ? "" : count == 1 ? text : text + "s";
        };
        const std::string errors = counted(analysis.errorCount, "error");
        const std::string warnings = counted(analysis.warningCount, "warning");
        const bool areMore = analysis.errorLimit != 0 && analysis.errorCount > analysis.errorLimit;
        Pen pen = NewPen();
        pen.Own(program).Own(errors).Own(errors.empty() || warnings.empty() ? "" : ", ");
        pen.Own(warnings);
        if (areMore) {
            const std::string limit = std::to_string(analysis.errorLimit);
            pen.Own("; what came after error ").Own(limit).Own(" is not shown");
        }
        pen.Own("\n");
    }

    [[nodiscard]] std::string Finished() { return std::move(text); }

  private:
    Pen NewPen() { return {&text, style}; }

    // Prints the chain of includes, innermost first, but only once for each opening of a file.
    void PrintIncluded(std::int32_t number) {
        const auto index = static_cast<std::size_t>(number);
        if (isIntroduced[index]) {
            return;
        }
        isIntroduced[index] = true;
        std::string_view start = "In file included";
        const Opening* opening = &OpeningAt(number);
        while (opening->includer != noIndex) {
            const Place& at = opening->includedAt;
            opening = &OpeningAt(opening->includer);
            NewPen()
                .Own(start)
                .Own(" from ")
                .Foreign(analysis.LineName(at))
                .Own(opening->includer == noIndex ? ":\n" : ",\n");
            start = "                ";
        }
    }

    void PrintExcerpt(const Place& place) {
        const std::string_view line = analysis.LineOf(place);
        const Excerpt shown = ExcerptOf(line, place);
        const std::string_view more = "...";
        const std::string_view start = shown.hasMoreBefore ? more : "";
        const std::size_t column = EndColumn(shown.before, start.size(), style.isTerminal);
        const std::size_t width = EndColumn(shown.marked, column, style.isTerminal) - column;
        Pen pen = NewPen();
        pen.Own(start).Foreign(shown.before).Foreign(shown.marked).Foreign(shown.after);
        pen.Own(shown.hasMoreAfter ? more : "").Own("\n");
        pen.Own(std::string(start.size(), ' ')).Own(BlankText(shown.before, style.isTerminal));
        pen.Set(green).Own("^" + std::string(std::max<std::size_t>(width, 1) - 1, '~'));
        pen.Set(plain).Own("\n");
    }

    void PrintNote(std::string_view place, std::string_view note) {
        Pen pen = NewPen();
        pen.Set(bold).Foreign(place).Set(cyan).Own("note: ").Set(plain);
        pen.Foreign(note).Own("\n");
    }

    [[nodiscard]] const Opening& OpeningAt(std::int32_t number) const {
        return analysis.openings[static_cast<std::size_t>(number)];
    }

    const Analysis& analysis;
    TextStyle style;
    std::vector<bool> isIntroduced;  // by opening
    std::string text;
};

}  // namespace

std::string SentenceOf(const Message& message) {
    return message.text + (message.detail.empty() ? "" : ": " + message.detail);
}

std::string MessagesText(const Analysis& analysis, const TextStyle& style) {
    MessagePrinter printer(analysis, style);
    for (const Message& message : analysis.messages) {
        printer.Print(message);
    }
    printer.PrintCounts();
    return printer.Finished();
}

std::string MessageLine(const Analysis& analysis, const Message& message) {
    std::string text;
    PrintHeading(message, PlaceText(analysis, message.place), {&text, {}});
    return text;
}

std::string FailureText(std::string_view sentence, const TextStyle& style) {
    std::string text;
    Pen(&text, style).Own(program).Own("error: ").Foreign(sentence).Own("\n");
    return text;
}

}  // namespace korv
