/// What every word of the vocabulary does, in a sentence: for the hover of an editor.
#pragma once

#include <string_view>

namespace korv {

struct Keyword;

/// What the word of a row of `keywords` does; begins with a capital and ends with a full stop.
[[nodiscard]] std::string_view HelpFor(const Keyword& keyword);

}  // namespace korv
