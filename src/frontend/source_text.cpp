#include "frontend/source_text.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/platform.h"
#include "source/char_class.h"

namespace korv {
namespace {

// Cleans one logical line byte by byte, by the rules of the reader, and keeps where each character
// has come from. What has been stored after `size` stays until it is overwritten: a line that only
// continues another ends in the backslash of that.
class LineCleaner {
  public:
    // Takes a byte. False: it ends the line.
    bool Take(char c, LogicalLine::Place place) {
        constexpr char endOfText = 0x1A;
        if (c == '\n') {
            return Continues();
        }
        if (c == '\r' || c == endOfText) {
            return true;
        }
        if (isComment) {
            Store(c, place);
            return true;
        }
        if (c == '"') {
            isString = !isString;
        } else if (c == ';' && !isString) {
            isComment = true;
            commentStart = LastSignificant() + 1;
        }
        Store(isString ? c : Raised(c), place);
        return true;
    }

    LogicalLine Finished() {
        const std::ptrdiff_t last = LastSignificant();
        std::size_t end = last < 0 ? size : static_cast<std::size_t>(last) + 1;
        if (isComment) {
            end = static_cast<std::size_t>(commentStart);
        }
        line.text.resize(end);
        line.places.resize(end);
        return std::move(line);
    }

  private:
    void Store(char c, LogicalLine::Place place) {
        line.text.resize(std::max(line.text.size(), size + 1));
        line.places.resize(line.text.size());
        line.text[size] = c;
        line.places[size++] = place;
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
            line.continuedComments.push_back(line.places[static_cast<std::size_t>(last)]);
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

// Another kind of file was read once, and has no end or nothing more to give.
bool OpenAgain(const std::string& path, platform::InputFile* file) {
    return platform::KindOf(path) == platform::FileKind::regular && file->Open(path);
}

}  // namespace

SourceText::SourceText(std::string newContents) : contents(std::move(newContents)), starts{0} {
    for (std::size_t at = 0; (at = contents.find('\n', at)) != std::string::npos;) {
        starts.push_back(++at);
    }
}

std::string_view SourceText::Line(std::int32_t number) const {
    const auto index = static_cast<std::size_t>(number) - 1;
    if (number < 1 || index >= starts.size()) {
        return {};
    }
    std::string_view line = std::string_view(contents).substr(starts[index]);
    line = line.substr(0, line.find('\n'));
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    return line;
}

LogicalLine SourceText::Logical(std::int32_t number) const {
    LineCleaner cleaner;
    const auto index = static_cast<std::size_t>(number) - 1;
    std::size_t start = number < 1 || index >= starts.size() ? contents.size() : starts[index];
    for (std::size_t at = start; at != contents.size(); ++at) {
        if (!cleaner.Take(contents[at], {number, at - start})) {
            break;
        }
        if (contents[at] == '\n') {
            ++number;
            start = at + 1;
        }
    }
    return cleaner.Finished();
}

void SourceTexts::SetText(std::int32_t number, const std::string& contents) {
    texts.insert_or_assign(number, SourceText(contents));
}

const SourceText& SourceTexts::Of(std::int32_t number) {
    const auto found = texts.find(number);
    return found != texts.end() ? found->second
                                : texts.emplace(number, SourceText(Contents(number))).first->second;
}

bool SourceTexts::MayHideText(std::int32_t number) {
    const auto mayHide = [](std::string_view block) {
        std::size_t at = 0;
        while ((at = block.find('\r', at)) != std::string_view::npos &&
               block.substr(++at).starts_with('\n')) {
        }
        return at != std::string_view::npos || block.find('\0') != std::string_view::npos ||
               block.find('\x1A') != std::string_view::npos;
    };
    if (const auto found = texts.find(number); found != texts.end()) {
        return mayHide(found->second.Contents());
    }
    platform::InputFile file;
    if (OpenAgain(paths[number], &file)) {
        std::array<char, 65536> block;
        while (const std::size_t count = file.Read(block.data(), block.size())) {
            if (mayHide({block.data(), count})) {
                return true;
            }
        }
    }
    return false;
}

std::string SourceTexts::Contents(std::int32_t number) {
    if (const auto found = texts.find(number); found != texts.end()) {
        return found->second.Contents();
    }
    std::string contents;
    platform::InputFile file;
    if (OpenAgain(paths[number], &file)) {
        std::size_t count = 0, got = 0;
        contents.resize(static_cast<std::size_t>(file.Size()));
        while ((got = file.Read(contents.data() + count, contents.size() - count)) != 0) {
            count += got;
        }
        contents.resize(count);
    }
    return contents;
}

}  // namespace korv
