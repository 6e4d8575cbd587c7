/// Failures on purpose.
#pragma once

#include <cstdint>

namespace korv_test {

/// Lets the n-th allocation from here on fail, and every later one too if `andAllAfter`. 0 ends it.
void FailAllocation(std::int64_t n, bool andAllAfter);

/// What happens at the n-th request to the system from here on.
enum class RequestFault {
    failsOnce,
    failsForGood,  ///< this one and all later ones
    isBroken,      ///< a console event comes just before it
};

/// 0 ends it. Result: whether the request asked for last has come.
bool FaultFileRequest(std::int64_t n, RequestFault fault);

}  // namespace korv_test
