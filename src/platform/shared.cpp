#include "platform/shared.h"

#include <algorithm>

#include "platform/fault_point.h"
#include "platform/platform.h"

namespace korv::platform {
namespace {

FaultPoint faults;
RequestFault fault = RequestFault::failsOnce;

}  // namespace

PathParts SplitPath(std::string_view path) {
    const std::size_t separator = path.find_last_of(separators) + 1;  // 0 for none
    const std::size_t name = std::max(separator, DriveLength(path));
    const std::size_t dot = std::min(path.find_last_of('.'), path.size());
    const std::size_t extension = dot < name ? path.size() : dot;
    return {path.substr(0, name), path.substr(name, extension - name), path.substr(extension)};
}

bool IsAbsolutePath(std::string_view name) {
    return DriveLength(name) != 0 || name.starts_with('/') || name.starts_with('\\');
}

bool FaultFileRequest(std::int64_t n, RequestFault newFault) {
    fault = newFault;
    return faults.Set(n, fault == RequestFault::failsForGood);
}

bool FailsOnPurpose() {
    const bool isHit = faults.Hits();
    if (isHit && fault == RequestFault::isBroken) {
        BreakOff();
        return false;
    }
    return isHit;
}

}  // namespace korv::platform
