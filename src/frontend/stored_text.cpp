#include "frontend/stored_text.h"

#include <utility>

namespace korv {

StoredText::StoredText(std::string newPath, std::string newBytes,
                       const platform::FileIdentity& newIdentity)
    : path(std::move(newPath)), bytes(std::move(newBytes)), identity(newIdentity), starts{0} {
    const std::string_view text = bytes;
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string_view::npos;) {
        starts.push_back(++at);
    }
    std::size_t at = 0;
    while ((at = text.find('\r', at)) != std::string_view::npos &&
           text.substr(++at).starts_with('\n')) {
    }
    hasOddBytes = at != std::string_view::npos || text.find('\0') != std::string_view::npos ||
                  text.find('\x1A') != std::string_view::npos;
}

std::size_t StoredText::LineStart(std::int32_t number) const {
    return number < 1 || number > LineCount() ? bytes.size()
                                              : starts[static_cast<std::size_t>(number) - 1];
}

std::string_view StoredText::Line(std::int32_t number) const {
    const std::size_t start = LineStart(number);
    std::string_view line(bytes.data() + start, LineStart(number + 1) - start);
    line.remove_suffix(line.ends_with('\n') ? 1 : 0);
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    return line;
}

}  // namespace korv
