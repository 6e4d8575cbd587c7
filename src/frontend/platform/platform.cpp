#include "frontend/platform/platform.h"

#include <algorithm>
#include <system_error>

#include "platform/shared.h"

namespace korv::platform {

// The C++ library has the same text on all systems for the errors that it defines.
std::string ReasonOf(int error) {
    return std::error_code(error, std::system_category()).default_error_condition().message();
}

std::size_t StandardConnection::Read(char* buffer, std::size_t count) {
    const std::ptrdiff_t got = ReadSome(/*handle=*/0, buffer, std::min(count, mostAtOnce));
    return got < 0 ? 0 : static_cast<std::size_t>(got);
}

bool StandardConnection::Write(std::string_view bytes) {
    return WriteWhole(output, bytes);
}

}  // namespace korv::platform
