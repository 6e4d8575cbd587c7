/// The words that no source line may define.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string_view>

#include "symbols/name_index.h"

namespace korv {

/// The words of a constant text, in which one tab stands between two. The compiler cuts and hashes
/// them: every run enters the reserved words, and most runs are short.
class WordList {
  public:
    consteval WordList(const char* text) {
        for (std::string_view rest = text; !rest.empty(); ++count) {
            words[count] = rest.substr(0, rest.find('\t'));
            rest.remove_prefix(std::min(words[count].text.size() + 1, rest.size()));
        }
    }
    [[nodiscard]] std::span<const HashedName> Words() const { return {words.data(), count}; }

  private:
    std::array<HashedName, 128> words;
    std::size_t count = 0;
};

extern const WordList reservedWords;

}  // namespace korv
