/// Copying and comparing texts that are a few characters long, as nearly all names and operands
/// are: by loads that may overlap, where a call of the general routine would cost more than the
/// work.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace korv {

template <typename Word>
[[nodiscard]] constexpr Word LoadWord(const char* from) {
    std::array<char, sizeof(Word)> bytes{};
    std::copy_n(from, sizeof(Word), bytes.begin());
    return std::bit_cast<Word>(bytes);
}

template <typename Word>
inline void StoreWord(char* to, Word word) {
    std::memcpy(to, &word, sizeof word);
}

/// Copies `text` to `to`; the two do not overlap.
inline void CopyText(char* to, std::string_view text) {
    const char* const from = text.data();
    const std::size_t count = text.size();
    const auto copyEnds = [&]<typename Word>(Word first) {
        const auto last = LoadWord<Word>(from + count - sizeof(Word));
        StoreWord(to, first);
        StoreWord(to + count - sizeof(Word), last);
    };
    if (count > 16) {
        std::memcpy(to, from, count);
    } else if (count >= 8) {
        copyEnds(LoadWord<std::uint64_t>(from));
    } else if (count >= 4) {
        copyEnds(LoadWord<std::uint32_t>(from));
    } else if (count > 0) {
        to[0] = from[0];
        to[count / 2] = from[count / 2];
        to[count - 1] = from[count - 1];
    }
}

/// Whether `text`, of more than 8 characters, stands at `other`.
[[nodiscard]] inline bool EqualTexts(const char* other, std::string_view text) {
    const auto differAt = [&](std::size_t i) {
        return LoadWord<std::uint64_t>(other + i) != LoadWord<std::uint64_t>(text.data() + i);
    };
    for (std::size_t i = 0; i + 8 < text.size(); i += 8) {
        if (differAt(i)) {
            return false;
        }
    }
    return !differAt(text.size() - 8);
}

}  // namespace korv
