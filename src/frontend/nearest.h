/// The word of a set that is nearest to a misspelt one.
#pragma once

#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "frontend/line_parts.h"

namespace korv {

class NearWords {
  public:
    /// The texts are not copied.
    explicit NearWords(std::vector<std::string_view> words) : words(std::move(words)) {}

    /// The word nearest to `word`; empty: none is near enough.
    [[nodiscard]] std::string_view Find(std::string_view word) const {
        std::string_view found;
        std::size_t best = word.size() < 6 ? 2 : 3;  // one step less is near enough
        for (const std::string_view each : words) {
            const bool isComparable = word.size() > 1 && word.size() <= longestCompared &&
                                      each.size() <= longestCompared &&
                                      each.size() + best > word.size() &&
                                      word.size() + best > each.size();
            if (const std::size_t steps = isComparable ? EditDistance(word, each) : best;
                steps < best) {
                best = steps;
                found = each;
            }
        }
        return found;
    }

  private:
    std::vector<std::string_view> words;
};

}  // namespace korv
