// Instructions without operands. After the frame, only one or two bytes remain to be emitted.

#include "codegen/handlers.h"
#include "driver/assembler.h"

namespace korv {

Status AssembleImplied(CAssembler* assembler, CStatement*, std::uint8_t prefix,
                       std::uint8_t opcode) {
    return assembler->EmitOpcode(prefix, opcode);
}

}  // namespace korv
