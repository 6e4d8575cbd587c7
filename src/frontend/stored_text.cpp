#include "frontend/stored_text.h"

#include <algorithm>
#include <utility>

namespace korv {
namespace {

StoredText::Block CopyOf(std::string_view bytes) {
    StoredText::Block copy{std::make_unique_for_overwrite<char[]>(bytes.size()), bytes.size()};
    std::ranges::copy(bytes, copy.data.get());
    return copy;
}

}  // namespace

StoredText::StoredText(std::string newPath, Block newBytes,
                       const platform::FileIdentity& newIdentity)
    : path(std::move(newPath)), bytes(std::move(newBytes)), identity(newIdentity) {
    const std::string_view text = Bytes();
    std::size_t at = 0;
    while ((at = text.find('\r', at)) != std::string_view::npos &&
           text.substr(++at).starts_with('\n')) {
    }
    hasOddBytes = at != std::string_view::npos || text.find('\0') != std::string_view::npos ||
                  text.find('\x1A') != std::string_view::npos;
}

StoredText::StoredText(std::string newPath, std::string_view newBytes,
                       const platform::FileIdentity& newIdentity)
    : StoredText(std::move(newPath), CopyOf(newBytes), newIdentity) {}

void StoredText::FindStarts() const {
    const std::string_view text = Bytes();
    constexpr std::size_t usualLine = 24;
    starts.reserve(text.size() / usualLine + 1);
    starts.push_back(0);
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string_view::npos;) {
        starts.push_back(++at);
    }
}

std::size_t StoredText::LineStart(std::int32_t number) const {
    return number < 1 || number > LineCount() ? bytes.size
                                              : Starts()[static_cast<std::size_t>(number) - 1];
}

}  // namespace korv
