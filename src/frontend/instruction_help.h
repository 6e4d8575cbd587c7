/// One sentence about each instruction and directive, which an editor shows on hover.
#pragma once

#include <string_view>

namespace korv {

struct Keyword;

/// What an instruction or directive does: a capitalized sentence with a full stop.
[[nodiscard]] std::string_view HelpFor(const Keyword& keyword);

}  // namespace korv
