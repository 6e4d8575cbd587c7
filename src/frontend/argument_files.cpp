#include "frontend/argument_files.h"

#include <algorithm>
#include <utility>

#include "frontend/platform/platform.h"

namespace korv {
namespace {

constexpr int deepest = 10;
// The limit for the total size of all files, in bytes. A file counts each time it is read, so
// neither an endless file nor repeated references to a file can exhaust memory.
constexpr std::size_t mostBytes = 0x100000;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string AtLine(std::string_view text, std::size_t offset, std::string_view what) {
    const auto line = std::ranges::count(text.substr(0, offset), '\n') + 1;
    return "line " + std::to_string(line) + ": " + std::string(what);
}

class WordReader {
  public:
    explicit WordReader(std::string_view text)
        : text(text), at(text.starts_with(byteOrderMark) ? byteOrderMark.size() : 0) {}

    // Skips blanks and comments. Returns whether another word follows.
    bool Skip() {
        for (bool isLineStart = std::exchange(isAtStart, false); at < text.size(); ++at) {
            isLineStart = isLineStart || text[at] == '\n';
            if (text[at] == '#' && isLineStart) {
                at = std::min(text.find('\n', at), text.size());
            } else if (!IsBlank()) {
                return true;
            }
        }
        return false;
    }

    // Returns the next word. Sets `openQuote` if a quote in it is not closed.
    std::string Read() {
        std::string word;
        char quote = '\0';
        for (; at < text.size() && (quote != '\0' || !IsBlank()); ++at) {
            const char c = text[at];
            if (c == '\\') {
                word += text.substr(++at, 1);
            } else if (c == quote) {
                quote = '\0';
            } else if (quote == '\0' && (c == '"' || c == '\'')) {
                quote = c;
                openQuote = at;
            } else {
                word += c;
            }
        }
        openQuote = quote == '\0' ? std::string_view::npos : openQuote;
        return word;
    }

    std::size_t openQuote = std::string_view::npos;  // offset of the unclosed quote

  private:
    // A backslash at the end of a line separates words, like the line end itself.
    [[nodiscard]] bool IsBlank() const {
        const char c = text[at];
        const std::string_view next = text.substr(at + 1, 1);
        return c == ' ' || (c >= '\t' && c <= '\r') ||
               (c == '\\' && (next.empty() || next == "\n" || next == "\r"));
    }

    std::string_view text;
    std::size_t at;
    bool isAtStart = true;  // nothing has been read yet
};

class Expander {
  public:
    explicit Expander(std::string_view directory) : directory(directory) {}

    std::vector<std::string> result;

    // `depth` is the nesting level of the file that contains `words`; 0: the command line.
    std::string Take(const std::vector<std::string>& words, int depth) {
        for (const std::string& word : words) {
            if (!word.starts_with('@')) {
                result.push_back(word);
            } else if (std::string failure = TakeFile(word.substr(1), depth + 1);
                       !failure.empty()) {
                return failure;
            }
        }
        return "";
    }

  private:
    std::string TakeFile(const std::string& name, int depth) {
        if (name.empty()) {
            return "missing FILE after '@'";
        }
        if (depth > deepest) {
            return name + ": argument files are nested more than " + std::to_string(deepest) +
                   " deep";
        }
        std::string text;
        if (std::string failure = Read(name, &text); !failure.empty()) {
            return failure;
        }
        std::vector<std::string> words;
        if (const std::string failure = SplitWords(text, &words); !failure.empty()) {
            return name + ", " + failure;
        }
        return Take(words, depth);
    }

    std::string Read(const std::string& name, std::string* text) {
        const bool isThere = directory.empty() || platform::IsAbsolutePath(name);
        platform::InputFile file;
        if (file.Open(isThere ? name : std::string(directory) + "/" + name)) {
            char block[4096];
            while (const std::size_t count = file.Read(block, sizeof block)) {
                if (count > bytesLeft) {
                    return name + ": the argument files have more than " +
                           std::to_string(mostBytes) + " bytes";
                }
                bytesLeft -= count;
                text->append(block, count);
            }
        }
        return file.Failed() ? "cannot read " + name + ": " + platform::ReasonOf(file.Error()) : "";
    }

    std::string_view directory;
    std::size_t bytesLeft = mostBytes;
};

}  // namespace

std::string SplitWords(std::string_view text, std::vector<std::string>* words) {
    if (const std::size_t zero = text.find('\0'); zero != std::string_view::npos) {
        return AtLine(text, zero, "byte 0 in a text");
    }
    WordReader reader(text);
    while (reader.Skip()) {
        words->push_back(reader.Read());
        if (reader.openQuote != std::string_view::npos) {
            return AtLine(text, reader.openQuote, "missing closing quote");
        }
    }
    return "";
}

std::string ExpandArgumentFiles(std::vector<std::string>* words, std::string_view directory) {
    Expander expander(directory);
    std::string failure = expander.Take(*words, 0);
    *words = std::move(expander.result);
    return failure;
}

}  // namespace korv
