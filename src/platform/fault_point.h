/// Failures on purpose, for tests.
#pragma once

#include <cstdint>
#include <utility>

namespace korv::platform {

class FaultPoint {
  public:
    /// From here on the n-th call of `Hits` is true, and every later one too if `andAllAfter`. 0
    /// ends it. Result: whether one has been true since the last `Set`.
    bool Set(std::int64_t n, bool andAllAfter) {
        countdown = n;
        hitsAllAfter = andAllAfter;
        return std::exchange(hasHit, false);
    }
    bool Hits() {
        if (countdown == 0 || --countdown != 0) {
            return false;
        }
        countdown = hitsAllAfter ? 1 : 0;
        hasHit = true;
        return true;
    }
    /// Whether the next call of `Hits` is true; where it is not, this one stands for it.
    bool IsNext() {
        if (countdown == 1) {
            return true;
        }
        countdown -= countdown > 1 ? 1 : 0;
        return false;
    }

  private:
    std::int64_t countdown = 0;  // 1 means the next call
    bool hitsAllAfter = false;
    bool hasHit = false;
};

}  // namespace korv::platform
