/// The word of a set that is nearest to a misspelt one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace korv {

/// Steps from one word to another: characters put in, left out or changed, or two neighbours
/// swapped. The words may have at most `longestCompared` characters.
inline constexpr std::size_t longestCompared = 32;
[[nodiscard]] std::size_t EditDistance(std::string_view a, std::string_view b);

/// Words by their length, each with a bit for every letter and digit in it: a look at the bits
/// rules most words out. What all questions together may cost is bounded, since only the first
/// messages of a run are read: beyond that there is no answer.
class NearWords {
  public:
    /// The words are not copied.
    explicit NearWords(const std::vector<std::string_view>& words);

    /// The word nearest to `word`, and never further from it than a third of its length; empty for
    /// none. Of words at the same distance, one that is `preferred` wins, then one with the same
    /// first letter, then one of the same letters, then one that `word` begins, then the first in
    /// the order of the set.
    [[nodiscard]] std::string_view Find(
        std::string_view word, const std::function<bool(std::string_view)>& preferred = {});

  private:
    struct Entry {
        std::uint64_t letters;
        std::string_view word;
    };
    std::vector<std::vector<Entry>> byLength;
    std::size_t budget = 4'000'000;  // looks at an entry
};

}  // namespace korv
