#include "frontend/source_text.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/platform.h"
#include "source/line_cleaner.h"

namespace korv {
namespace {

// The place of the character at `offset` of a line that begins at physical line `first`.
LogicalLine::Place PlaceOf(std::size_t offset, std::int32_t first,
                           const std::vector<LineBreak>& breaks) {
    const auto next = std::ranges::upper_bound(breaks, offset, {}, &LineBreak::offset);
    if (next == breaks.begin()) {
        return {first, offset};
    }
    const LineBreak& from = next[-1];
    return {first + static_cast<std::int32_t>(from.line), from.column + offset - from.offset};
}

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
    LogicalLine line;
    std::vector<LineBreak> breaks;
    line.text.resize(256);
    LineCleaner cleaner(line.text.data(), &breaks);
    const auto index = static_cast<std::size_t>(number) - 1;
    std::size_t at = number < 1 || index >= starts.size() ? contents.size() : starts[index];
    for (bool goesOn = true; goesOn && at != contents.size(); ++at) {
        if (cleaner.Size() + 1 == line.text.size()) {
            line.text.resize(2 * line.text.size());
            cleaner.MoveTo(line.text.data());
        }
        const std::size_t last = contents[at] == '\n' ? cleaner.LastSignificant() : 0;
        goesOn = cleaner.Take(contents[at]);
        if (goesOn && contents[at] == '\n' && cleaner.IsInComment()) {
            line.continuedComments.push_back(PlaceOf(last, number, breaks));
        }
    }
    line.text.resize(cleaner.Length());
    for (std::size_t offset = 0; offset != line.text.size(); ++offset) {
        line.places.push_back(PlaceOf(offset, number, breaks));
    }
    return line;
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
