/// Finds the word nearest to a misspelt one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string_view>
#include <vector>

namespace korv {

/// The fewest edits from one word to another. An edit inserts, deletes or changes a character, or
/// swaps two neighbours.
[[nodiscard]] std::size_t EditDistance(std::string_view a, std::string_view b);

/// Words sorted by length, each with a set of bits for its characters: comparing these bits rules
/// out most words. The total cost of all searches is limited, since only the first messages of a
/// run are read. Once it is reached, nothing is found.
class NearWords {
  public:
    /// The words are not copied.
    explicit NearWords(const std::vector<std::string_view>& words);

    /// The word nearest to `word`, at most 2 edits and a third of its length away; empty if there
    /// is none. Another 5/8 of an edit is added unless letters were only swapped or doubled, 4/8 if
    /// the result is not `preferred`, and 2/8 if the first letters differ. In a tie, the result is
    /// empty.
    [[nodiscard]] std::string_view Find(
        std::string_view word, const std::function<bool(std::string_view)>& preferred = {});

  private:
    struct Entry {
        std::uint64_t letters;
        std::string_view word;
    };
    std::map<std::size_t, std::vector<Entry>> byLength;
    // What may still be spent: 1 for testing the bits of an entry, and for a comparison the product
    // of the two lengths. Negative: nothing.
    std::int64_t budget = 8'000'000;
};

}  // namespace korv
