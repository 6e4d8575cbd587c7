#include "codegen/implied.h"

#include "codegen/handler.h"
#include "driver/assembler.h"

namespace korv {

std::int32_t AssembleImplied(CAssembler* assembler, CStatement* statement,
                             std::span<const std::uint8_t> bytes) {
    SplitOperands(assembler, statement);
    DefineLineLabel(assembler, statement);
    if (statement->args.Count() > 0) {
        return MSG_TOO_MANY_ARGUMENTS;
    }
    if (bytes.size() == 1) {
        assembler->EmitByte(bytes[0]);
    } else {
        assembler->binary.PutBytes(bytes);
        assembler->location += static_cast<std::uint32_t>(bytes.size());
    }
    return 0;
}

}  // namespace korv
