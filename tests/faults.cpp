#include "faults.h"

#include <csignal>
#include <limits>
#include <utility>

#include "driver/process.h"
#include "platform/platform.h"
#include "run.h"

namespace korv_test {
namespace {

// Counts calls. The calls from `first` to `last` fail.
struct Calls {
    std::int64_t first = 0, last = 0, count = 0;  // counted from 1; if 0, none fails

    bool Fails() {
        ++count;
        return first <= count && count <= last;
    }
};
Calls CallsFrom(std::int64_t n, bool andAllAfter) {
    return {n, andAllAfter && n != 0 ? std::numeric_limits<std::int64_t>::max() : n};
}

Calls allocations;
Calls requests;
RequestFault requestFault;

// On Windows, an event is not a signal but a call on another thread.
void BreakOff() {
    isWindows ? korv::OnConsoleEvent(korv::platform::EVENT_CTRL_C) : std::raise(SIGINT);
}

bool RequestFails() {
    const bool isHit = requests.Fails();
    if (isHit && requestFault == RequestFault::isBroken) {
        BreakOff();
        return false;
    }
    return isHit;
}

}  // namespace

void FailAllocation(std::int64_t n, bool andAllAfter) {
    allocations = CallsFrom(n, andAllAfter);
    korv::platform::allocationFault = [] { return allocations.Fails(); };
}

bool FaultFileRequest(std::int64_t n, RequestFault fault) {
    const Calls before = std::exchange(requests, CallsFrom(n, fault == RequestFault::failsForGood));
    requestFault = fault;
    korv::platform::requestFault = RequestFails;
    return before.first != 0 && before.count >= before.first;
}

}  // namespace korv_test
