// The instructions without operands, which consist of their frame and one or two bytes.

#include <array>

#include "codegen/handlers.h"
#include "driver/assembler.h"

namespace korv {

Status AssembleImplied(CAssembler* assembler, CStatement*, std::uint8_t opcode) {
    assembler->EmitByte(opcode);
    return 0;
}

Status AssemblePrefixed(CAssembler* assembler, CStatement*, std::uint8_t prefix,
                        std::uint8_t opcode) {
    assembler->EmitBytes(std::array{prefix, opcode});
    return 0;
}

}  // namespace korv
