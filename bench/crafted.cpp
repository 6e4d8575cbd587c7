// Writes labels whose hashes have the same low bits, so that all share one place in the index.
// Uses korv's own hash function, so the labels still collide if that function changes.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "symbols/name_index.h"

int main(int argc, char** argv) {
    constexpr std::uint64_t lowBits = 0xFFFF;  // covers an index of 16,384 names
    constexpr std::uint64_t place = 0x1234;
    const int names = argc > 1 ? std::atoi(argv[1]) : 0;
    char name[] = "AAAAAAAA";
    const std::string_view text(name, 8);
    for (int found = 0; found < names;) {
        for (char* letter = name + 7; ++*letter > 'Z';) {
            *letter-- = 'A';
        }
        if ((korv::HashOf(text) & lowBits) == place) {
            std::printf("%s:\n", name);
            ++found;
        }
    }
}
