#include "frontend/nearest.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>

#include "source/char_class.h"

namespace korv {
namespace {

constexpr std::size_t costOfComparison = 64;  // of two words; testing the bits of an entry costs 1

std::uint64_t LettersOf(std::string_view word) {
    std::uint64_t letters = 0;
    for (const char c : word) {
        letters |= std::uint64_t{1} << (static_cast<unsigned char>(c) % 64);
    }
    return letters;
}

// True if the keys of two letters are next to each other.
bool AreNeighbours(char a, char b) {
    constexpr std::string_view keys = "QWERTYUIOPASDFGHJKL.ZXCVBNM...";  // in rows of ten
    const std::size_t one = keys.find(a);
    const std::size_t other = keys.find(b);
    if (one >= keys.size() || other >= keys.size()) {
        return false;
    }
    const auto distance = [](std::size_t x, std::size_t y) { return x > y ? x - y : y - x; };
    return distance(one / 10, other / 10) < 2 && distance(one % 10, other % 10) < 2;
}

// Names such as ROUT1 and ROUT2, PORTA and PORTB, XPOS and YPOS, or MUL and MUL2 are not
// misspellings of each other.
bool AreOfOneFamily(std::string_view a, std::string_view b) {
    const std::string_view longer = a.size() > b.size() ? a : b;
    if (a.size() + b.size() + 1 == 2 * longer.size() && HasClass(longer.back(), CC_DIGIT) &&
        longer.starts_with(a) && longer.starts_with(b)) {
        return true;
    }
    const auto [one, other] = std::ranges::mismatch(a, b);
    if (a.size() != b.size() || one == a.end()) {
        return false;
    }
    const bool isAtEdge = one == a.begin() || one + 1 == a.end();
    return (HasClass(*one, CC_DIGIT) && HasClass(*other, CC_DIGIT)) ||
           (isAtEdge && std::equal(one + 1, a.end(), other + 1) && !AreNeighbours(*one, *other));
}

}  // namespace

std::size_t EditDistance(std::string_view a, std::string_view b) {
    std::array<std::array<std::size_t, longestCompared + 1>, longestCompared + 1> steps;
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t k = 0; k <= b.size(); ++k) {
            std::size_t& best = steps[i][k];
            if (i == 0 || k == 0) {
                best = i + k;
                continue;
            }
            const std::size_t isOther = a[i - 1] == b[k - 1] ? 0 : 1;
            best =
                std::min({steps[i - 1][k] + 1, steps[i][k - 1] + 1, steps[i - 1][k - 1] + isOther});
            if (i > 1 && k > 1 && a[i - 1] == b[k - 2] && a[i - 2] == b[k - 1]) {
                best = std::min(best, steps[i - 2][k - 2] + 1);
            }
        }
    }
    return steps[a.size()][b.size()];
}

NearWords::NearWords(const std::vector<std::string_view>& words) : byLength(longestCompared + 1) {
    for (const std::string_view word : words) {
        if (word.size() <= longestCompared) {
            byLength[word.size()].push_back({LettersOf(word), word});
        }
    }
}

std::string_view NearWords::Find(std::string_view word,
                                 const std::function<bool(std::string_view)>& preferred) {
    constexpr std::size_t furthest = 2;
    const std::size_t limit = std::min(word.size() / 3, furthest);
    const std::uint64_t letters = LettersOf(word);
    std::string_view found;
    std::size_t best = 8 * (limit + 1);  // distance in eighths
    if (word.size() > longestCompared) {
        return found;
    }
    const std::size_t longest = std::min(word.size() + limit, longestCompared);
    for (std::size_t length = word.size() - limit; length <= longest; ++length) {
        const std::vector<Entry>& entries = byLength[length];
        if (budget < entries.size()) {
            return found;
        }
        budget -= entries.size();
        for (const Entry& entry : entries) {
            if (std::popcount(entry.letters ^ letters) > static_cast<int>(2 * limit)) {
                continue;
            }
            if (budget < costOfComparison) {
                return found;
            }
            budget -= costOfComparison;
            const bool isOther = word.front() != entry.word.front();
            const std::size_t steps = EditDistance(word, entry.word);
            const bool isFar =  // two different slips in a short word
                steps == 2 && word.size() < 9 && entry.letters != letters &&
                word.size() + 2 != length && word.size() != length + 2;
            if (steps > limit || isFar || (!preferred && AreOfOneFamily(word, entry.word))) {
                continue;
            }
            const bool isSwap = std::ranges::is_permutation(word, entry.word);
            const bool isDoubled = word.size() != length && entry.letters == letters;
            const std::size_t rank = 8 * steps + (preferred && !preferred(entry.word) ? 4 : 0) +
                                     (isOther ? 2 : 0) + (isSwap || isDoubled ? 0 : 5);
            if (rank < best || (rank == best && entry.word.starts_with(word))) {
                best = rank;
                found = entry.word;
            } else if (rank == best) {  // either may be meant
                found = {};
            }
        }
    }
    return found;
}

}  // namespace korv
