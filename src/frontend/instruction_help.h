/// A sentence about every instruction and directive, for the hover of an editor.
#pragma once

#include <string_view>

namespace korv {

struct Keyword;

/// What the word in a row of `keywords` does: a sentence with a capital letter and a full stop.
[[nodiscard]] std::string_view HelpFor(const Keyword& keyword);

}  // namespace korv
