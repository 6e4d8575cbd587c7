#include "frontend/messages.h"

#include <algorithm>
#include <filesystem>

#include "diagnostics/report_writer.h"
#include "platform/platform.h"

namespace korv {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view program = "korv-as: ";
constexpr std::size_t longestShown = 400;  // bytes of a line; lines that assemble are shorter

// Writes a message piece by piece, with the colours of a terminal or without.
class Pen {
  public:
    Pen(std::FILE* stream, bool isColored) : out(stream), isColored(isColored) {}

    // `style` is the number of a rendition; see the terminal's manual.
    Pen& Style(std::string_view style) {
        if (isColored) {
            out.Put("\033[");
            out.Put(style);
            out.Put("m");
        }
        return *this;
    }
    Pen& Own(std::string_view text) {
        out.Put(text);
        return *this;
    }
    // From a source or a file name.
    Pen& Foreign(std::string_view text) {
        out.PutForeign(text);
        return *this;
    }
    // A line as it is, with its tabs.
    Pen& Line(std::string_view line) {
        for (std::size_t tab = 0; (tab = line.find('\t')) != std::string_view::npos;) {
            Foreign(line.substr(0, tab)).Own("\t");
            line.remove_prefix(tab + 1);
        }
        return Foreign(line).Own("\n");
    }

  private:
    ReportWriter out;
    bool isColored;
};

// What brings a caret below the end of `line`.
std::string Indent(std::string_view line) {
    std::string blanks;
    for (const char c : line) {
        const bool isContinued = (static_cast<unsigned char>(c) & 0xC0) == 0x80;  // of UTF-8
        blanks.append(isContinued ? 0 : 1, c == '\t' ? '\t' : ' ');
    }
    return blanks;
}

// Its narrow characters would be those of some other code where names are wide.
fs::path PathOf(const std::string& name) {
    return std::u8string(name.begin(), name.end());
}

std::string Counted(std::uint64_t count, std::string_view what) {
    return std::to_string(count) + " " + std::string(what) + (count == 1 ? "" : "s");
}

}  // namespace

Messages::Messages(std::FILE* stream, bool isColored, std::uint64_t maxErrors)
    : stream(stream),
      isColored(isColored),
      maxErrors(maxErrors),
      startDirectory(platform::CurrentDirectory().FullPath(".").path) {}

void Messages::AddFile(std::int32_t number, const std::string& path, const MessagePlace& place) {
    const auto index = static_cast<std::size_t>(number);
    files.resize(std::max(files.size(), index + 1));
    const bool isInput = number == 1 && isStandardInput;
    files[index] = {isInput ? "<stdin>" : TypedName(path), place};
    texts.SetPath(number, path);
}

std::string Messages::TypedName(const std::string& path) const {
    const std::u8string shown = PathOf(path).lexically_relative(PathOf(startDirectory)).u8string();
    const std::string relative(shown.begin(), shown.end());
    return relative.empty() || relative.size() > path.size() ? path : relative;
}

const std::string& Messages::NameOf(std::int32_t number) const {
    const auto index = static_cast<std::size_t>(number);
    return files[index < files.size() ? index : 0].name;
}

// Says once how the run came to the file, from the inside out.
void Messages::PrintIncluded(std::int32_t number) {
    File& file = files[static_cast<std::size_t>(number)];
    if (file.isIntroduced) {
        return;
    }
    file.isIntroduced = true;
    std::string_view start = "In file included";
    for (MessagePlace at = file.includedAt; at.file != 0;) {
        const File& includer = files[static_cast<std::size_t>(at.file)];
        const bool isLast = includer.includedAt.file == 0;
        Pen(stream, isColored)
            .Own(start)
            .Own(" from ")
            .Foreign(includer.name)
            .Own(":" + std::to_string(at.line) + (isLast ? ":\n" : ",\n"));
        start = "                ";
        at = includer.includedAt;
    }
}

void Messages::Print(const Message& message) {
    const bool isError = message.severity == Severity::error;
    const bool isShown = IsOpen();
    ++(isError ? errors : warnings);
    if (!isShown) {
        return;
    }
    const MessagePlace& at = message.place;
    const bool hasPlace = at.file != 0 && static_cast<std::size_t>(at.file) < files.size();
    std::string place(program);
    std::string_view line;
    LogicalLine::Place start{at.line, 0};
    if (hasPlace) {
        PrintIncluded(at.file);
        const SourceText& text = texts.Of(at.file);
        const LogicalLine logical = text.Logical(at.line);
        if (at.offset < logical.places.size()) {
            start = logical.places[at.offset];
        }
        start = at.exact.value_or(start);
        line = text.Line(start.line).substr(0, longestShown);
        place = NameOf(at.file) + ":" + std::to_string(start.line) + ":" +
                std::to_string(start.column + 1) + ": ";
    }
    Pen pen(stream, isColored);
    pen.Style("1").Foreign(place).Style(isError ? "31" : "35");
    pen.Own(isError ? "error: " : "warning: ").Style("0");
    std::string_view text = message.text;
    if (!message.detail.empty()) {
        text.remove_suffix(text.ends_with('.') ? 1 : 0);
        pen.Own(text).Own(": ").Foreign(message.detail);
    } else {
        pen.Own(text);
    }
    pen.Own(message.code.empty() ? "" : " [" + message.code + "]").Own("\n");
    if (!line.empty()) {
        const std::size_t column = std::min(start.column, line.size());
        const std::size_t width = Indent(line.substr(column, at.length)).size();
        pen.Line(line).Own(Indent(line.substr(0, column)));
        pen.Style("32").Own("^" + std::string(std::max<std::size_t>(width, 1) - 1, '~'));
        pen.Style("0").Own("\n");
    }
    if (!message.note.empty()) {
        pen.Style("1").Foreign(place).Style("36").Own("note: ").Style("0").Foreign(message.note);
        pen.Own("\n");
    }
}

void Messages::PrintCounts() const {
    if (errors + warnings == 0) {
        return;
    }
    std::string text(program);
    text += errors == 0 ? "" : Counted(errors, "error");
    text += errors != 0 && warnings != 0 ? ", " : "";
    text += warnings == 0 ? "" : Counted(warnings, "warning");
    if (maxErrors != 0 && errors > maxErrors) {
        text += "; what came after error " + std::to_string(maxErrors) + " is not shown";
    }
    std::fprintf(stream, "%s\n", text.c_str());
}

void PrintFailure(std::string_view text) {
    PrintTexts(stderr, "korv-as: error: %\n", {text});
}

}  // namespace korv
