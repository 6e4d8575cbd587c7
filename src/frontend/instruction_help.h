/// One sentence about each instruction and directive, which an editor shows on hover.
#pragma once

#include <string_view>

namespace korv {

struct Keyword;

/// What an instruction or directive does: a sentence with a capital letter and a full stop.
[[nodiscard]] std::string_view HelpFor(const Keyword& keyword);

}  // namespace korv
