/// The words that no source line may define.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "symbols/name_index.h"

namespace korv {

/// The words of a constant text, in which one tab stands between two. The compiler cuts, hashes and
/// places them: every run reserves the same words, and most runs are short.
class WordSet {
  public:
    consteval WordSet(const char* text) {
        for (std::string_view rest = text; !rest.empty(); ++count) {
            const HashedName word = rest.substr(0, rest.find('\t'));
            rest.remove_prefix(std::min(word.text.size() + 1, rest.size()));
            words[PlaceOf(word)] = word;
        }
    }
    [[nodiscard]] bool Has(const HashedName& name) const {
        return words[PlaceOf(name)].text == name.text;
    }
    [[nodiscard]] std::int32_t Count() const { return count; }

  private:
    // Where `name` stands or would stand: at the first free place from its own.
    [[nodiscard]] constexpr std::size_t PlaceOf(const HashedName& name) const {
        std::size_t place = name.hash % words.size();
        while (words[place].hash != 0 && words[place].hash != name.hash) {
            place = (place + 1) % words.size();
        }
        return place;
    }

    std::array<HashedName, 512> words;  // free where the hash is 0
    std::int32_t count = 0;
};

extern const WordSet reservedWords;

}  // namespace korv
