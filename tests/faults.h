/// Makes allocations and requests to the system fail on purpose.
#pragma once

#include <cstdint>

namespace korv_test {

/// Makes the n-th allocation after this call fail, and every later one too if `andAllAfter`. With 0, none fails.
void FailAllocation(std::int64_t n, bool andAllAfter);

/// What happens at the n-th request to the system.
enum class RequestFault {
    failsOnce,
    failsForGood,  ///< this one and all later ones
    isBroken,      ///< a console event occurs just before it
};

/// Applies `fault` to the n-th request after this call; with 0, to none. Result: true if the request chosen by the
/// previous call has been made.
bool FaultFileRequest(std::int64_t n, RequestFault fault);

}  // namespace korv_test
