// Commands whose names are taken. BINCLUDE works; the others have fixed answers and read no
// operands.

#include "codegen/handlers.h"
#include "driver/assembler.h"
#include "driver/run_observer.h"
#include "source/source_store.h"

namespace korv {
Status AnswerOnly(CAssembler*, CStatement*, Status answer) {
    return answer;
}

// The bytes of a file as they are. The file is looked up like a source, and is none: it has no
// number and no depth, and the progress meter does not count it. It is read whole before anything
// is emitted.
Status AssembleBinclude(CAssembler* assembler, CStatement* statement) {
    const lsArg& arg = statement->args[1];
    std::string_view name = arg.text;
    if (arg.IsQuoted() && name.size() > 1) {
        name = name.substr(1, name.size() - 2);
    }
    FileBytes file;
    if (const Status status = assembler->sources->Read(name, &file); status != 0) {
        assembler->ReportError(statement, status, arg.text);
    } else if (!assembler->flags.Has(RF_ABORT)) {  // which may have left a part of it
        if (assembler->observer != nullptr) {
            assembler->observer->OnFile(file.path, 0, nullptr);
        }
        assembler->EmitBytes(
            {reinterpret_cast<const std::uint8_t*>(file.bytes.data()), file.bytes.size()});
    }
    return 0;
}

}  // namespace korv
