// The instructions without operands, which consist of their frame and one or two bytes.

#include "codegen/handlers.h"
#include "driver/assembler.h"

namespace korv {

Status AssembleImplied(CAssembler* assembler, CStatement*, std::uint8_t prefix,
                       std::uint8_t opcode) {
    return assembler->EmitOpcode(prefix, opcode);
}

}  // namespace korv
