/// Definitions on the command line (-D).
#pragma once

#include <string>
#include <string_view>

namespace korv {

class CAssembler;

/// Defines NAME or NAME=EXPRESSION before the first line is read. Result: empty, or an error
/// message. The core may also report an error itself.
[[nodiscard]] std::string AddDefinition(std::string_view definition, CAssembler* assembler);

}  // namespace korv
