/// Finds the word that a misspelled one was meant to be.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "frontend/line_parts.h"

namespace korv {

/// Keeps the nearest of the words that are tried. Both texts belong to the caller.
class Nearest {
  public:
    explicit Nearest(std::string_view wanted)
        : wanted(wanted), best(wanted.size() < 6 ? 2 : 3) {}  // one step less is near enough

    void Try(std::string_view word) {
        if (word.size() + best > wanted.size() && wanted.size() + best > word.size() &&
            word.size() <= longestCompared && wanted.size() <= longestCompared) {
            if (const std::size_t steps = EditDistance(wanted, word); steps < best) {
                best = steps;
                found = word;
            }
        }
    }
    /// Empty: none is near enough.
    [[nodiscard]] std::string_view Found() const {
        return wanted.size() < 2 ? std::string_view() : found;
    }
    [[nodiscard]] std::string Question() const {
        return Found().empty() ? "" : "did you mean " + std::string(found) + "?";
    }

  private:
    std::string_view wanted;
    std::size_t best;
    std::string_view found;
};

}  // namespace korv
