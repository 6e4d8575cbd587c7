/// What to do about an error, as far as its line shows: for what those meet first who come from
/// another assembler or are new to this one.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "diagnostics/message_numbers.h"
#include "frontend/line_parts.h"

namespace korv {

class CAssembler;
class Messages;

/// What an error is about.
struct Fault {
    Status number;
    const LineParts& parts;      ///< of its line
    std::string_view concerned;  ///< what of the line it points to
    bool isLate;                 ///< the line is not the one being assembled
};

/// A sentence, or nothing.
[[nodiscard]] std::string HintFor(CAssembler* assembler, const Messages& messages,
                                  const Fault& fault);

}  // namespace korv
