/// The words that no source line may define.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "symbols/name_index.h"

namespace korv {

/// A set of words, built at compile time: every run reserves the same words, and most runs are
/// short.
class WordSet {
  public:
    /// Adds `word`, which must live as long as the set and must not be in it yet.
    constexpr void Add(std::string_view word) {
        words[PlaceOf(word)] = word;
        ++count;
    }
    [[nodiscard]] bool Has(const HashedName& name) const {
        return words[PlaceOf(name)].text == name.text;
    }
    [[nodiscard]] std::int32_t Count() const { return count; }

  private:
    // The index of `name`, or of the free place where it would be entered.
    [[nodiscard]] constexpr std::size_t PlaceOf(const HashedName& name) const {
        auto place = static_cast<std::size_t>(name.hash % words.size());
        while (words[place].hash != 0 && words[place].hash != name.hash) {
            place = (place + 1) % words.size();
        }
        return place;
    }

    std::array<HashedName, 512> words{};  // a place is free if its hash is 0
    std::int32_t count = 0;
};

extern const WordSet reservedWords;

}  // namespace korv
