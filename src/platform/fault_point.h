/// Failures on purpose, for tests.
#pragma once

#include <cstdint>
#include <limits>

namespace korv::platform {

class FaultPoint {
  public:
    /// From here on the n-th call of `Hits` is true, and every later one too if `andAllAfter`. 0
    /// ends it. Result: whether one has been true since the last `Set`.
    bool Set(std::int64_t n, bool andAllAfter) {
        const bool hasHit = first != 0 && calls >= first;
        first = n;
        last = andAllAfter && n != 0 ? std::numeric_limits<std::int64_t>::max() : n;
        calls = 0;
        return hasHit;
    }
    bool Hits() {
        ++calls;
        return first <= calls && calls <= last;
    }

  private:
    std::int64_t first = 0;  // call that is true, and the last one; 0 for none
    std::int64_t last = 0;
    std::int64_t calls = 0;
};

}  // namespace korv::platform
