// The instructions without operands, which consist of their frame and one or two bytes.

#include <array>

#include "codegen/handlers.h"
#include "codegen/operand_forms.h"
#include "driver/assembler.h"

namespace korv {

Status AssembleImplied(CAssembler* assembler, CStatement*, std::uint8_t opcode) {
    assembler->EmitByte(opcode);
    return 0;
}

Status AssembleImpliedEd(CAssembler* assembler, CStatement*, std::uint8_t opcode) {
    assembler->EmitBytes(std::array{PREFIX_ED, opcode});
    return 0;
}

}  // namespace korv
