#include "frontend/nearest.h"

#include <algorithm>
#include <bit>

#include "source/char_class.h"

namespace korv {
namespace {

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
    const auto distance = [](std::size_t x, std::size_t y) { return x > y ? x - y : y - x; };
    return distance(one / 10, other / 10) < 2 && distance(one % 10, other % 10) < 2;
}

// Names such as ROUT1 and ROUT2, PORTA and PORTB, XPOS and YPOS, or MUL and MUL2 are not
// misspellings of each other.
bool AreOfOneFamily(std::string_view a, std::string_view b) {
    const auto [one, other] = std::ranges::mismatch(a, b);
    const std::string_view restA(one, a.end());
    const std::string_view restB(other, b.end());
    if (restA.empty() || restB.empty()) {
        const std::string_view number = restA.empty() ? restB : restA;
        return number.size() == 1 && HasClass(number[0], CC_DIGIT);
    }
    const bool isAtEdge = restA.size() == a.size() || restA.size() == 1;
    return (HasClass(*one, CC_DIGIT) && HasClass(*other, CC_DIGIT)) ||
           (isAtEdge && restA.substr(1) == restB.substr(1) && !AreNeighbours(*one, *other));
}

}  // namespace

std::size_t EditDistance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> all((a.size() + 1) * (b.size() + 1));
    const auto steps = [&all, &b](std::size_t i, std::size_t k) -> std::size_t& {
        return all[i * (b.size() + 1) + k];
    };
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t k = 0; k <= b.size(); ++k) {
            std::size_t& best = steps(i, k);
            if (std::min(i, k) == 0) {
                best = i + k;
                continue;
            }
            const std::size_t isOther = a[i - 1] == b[k - 1] ? 0 : 1;
            best =
                std::min({steps(i - 1, k) + 1, steps(i, k - 1) + 1, steps(i - 1, k - 1) + isOther});
            if (i > 1 && k > 1 && a[i - 1] == b[k - 2] && a[i - 2] == b[k - 1]) {
                best = std::min(best, steps(i - 2, k - 2) + 1);
            }
        }
    }
    return all.back();
}

NearWords::NearWords(const std::vector<std::string_view>& words) {
    for (const std::string_view word : words) {
        byLength[word.size()].push_back({LettersOf(word), word});
    }
}

std::string_view NearWords::Find(std::string_view word,
                                 const std::function<bool(std::string_view)>& preferred) {
    constexpr std::size_t furthest = 2;
    const std::size_t limit = std::min(word.size() / 3, furthest);
    const std::uint64_t letters = LettersOf(word);
    std::string_view found;
    std::size_t best = 8 * (limit + 1);  // distance in eighths
    for (std::size_t length = word.size() - limit; length <= word.size() + limit; ++length) {
        for (const Entry& entry : byLength[length]) {
            const bool isNear =
                std::popcount(entry.letters ^ letters) <= static_cast<int>(2 * limit);
            budget -= static_cast<std::int64_t>(isNear ? word.size() * length : 1);
            if (budget < 0) {
                return {};
            }
            if (!isNear) {
                continue;
            }
            const bool isOther = word.substr(0, 1) != entry.word.substr(0, 1);
            const std::size_t steps = EditDistance(word, entry.word);
            const bool isFar =  // two different slips in a short word
                steps == 2 && word.size() < 9 && entry.letters != letters &&
                word.size() + 2 != length && word.size() != length + 2;
            if (isFar || (!preferred && AreOfOneFamily(word, entry.word))) {
                continue;
            }
            const bool isSwap = std::ranges::is_permutation(word, entry.word);
            const bool isDoubled = word.size() != length && entry.letters == letters;
            const std::size_t rank = 8 * steps + (preferred && !preferred(entry.word) ? 4 : 0) +
                                     (isOther ? 2 : 0) + (isSwap || isDoubled ? 0 : 5);
            if (rank < best) {
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
