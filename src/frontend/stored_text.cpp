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
    hasOddBytes = at != std::string_view::npos ||
                  text.find_first_of(std::string_view("\0\x1A", 2)) != std::string_view::npos;
}

std::size_t StoredText::LineStart(std::int32_t number) const {
    return number < 1 || number > LineCount() ? bytes.size()
                                              : starts[static_cast<std::size_t>(number) - 1];
}

std::string_view StoredText::Line(std::int32_t number) const {
    const std::string_view rest = std::string_view(bytes).substr(LineStart(number));
    std::string_view line = rest.substr(0, rest.find('\n'));
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    return line;
}

}  // namespace korv
