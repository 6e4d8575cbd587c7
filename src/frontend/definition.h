/// The definitions of the command line, -D.
#pragma once

#include <string>
#include <string_view>

namespace korv {

class CAssembler;

/// Defines NAME or NAME=EXPRESSION before the first line is read. Result: why that cannot be;
/// empty: it has been done, unless the core reports a refusal.
[[nodiscard]] std::string AddDefinition(std::string_view definition, CAssembler* assembler);

}  // namespace korv
