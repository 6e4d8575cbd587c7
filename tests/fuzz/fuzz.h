// What the fuzzers share.

#pragma once

#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

inline void Require(bool isTrue, std::string_view otherwise) {
    if (!isTrue) {
        std::fprintf(stderr, "korv fuzzer: %.*s\n", static_cast<int>(otherwise.size()), otherwise.data());
        std::abort();
    }
}

// `words`, followed by the words of `line`; at most `count` in all.
inline std::vector<std::string> WordsIn(const std::string& line, std::size_t count, std::vector<std::string> words) {
    std::istringstream stream(line);
    for (std::string word; words.size() < count && stream >> word;) {
        words.push_back(word);
    }
    return words;
}
