#include "frontend/definition.h"

#include <algorithm>

#include "driver/assembler.h"
#include "expr/number.h"
#include "frontend/message_maker.h"
#include "frontend/statement_view.h"
#include "frontend/terminal_text.h"
#include "source/char_class.h"

namespace korv {

std::string AddDefinition(std::string_view definition, CAssembler* assembler) {
    const std::size_t sign = definition.find('=');
    const std::string name = Raised(definition.substr(0, sign));
    const auto isNamePart = [](char c) { return HasClass(c, CC_NAME); };
    std::int32_t value = 1;
    if (name.empty() || !std::ranges::all_of(name, isNamePart) || name.size() > maxWord ||
        ReadNumber(name, &value) != notANumber) {
        return Quoted(name) + " is not a name";
    }
    if (sign != std::string_view::npos) {
        const std::string expression = Raised(definition.substr(sign + 1));
        std::string_view fault;
        const Status status = assembler->ScanExpression(expression, &value, &fault);
        if (status != 0) {
            return MessageText(status) + ": " + Quoted(fault.empty() ? expression : fault);
        }
    }
    assembler->identifiers.AddID({.name = name, .place = {}, .value = value, .flags = IDS_EQU});
    return "";
}

}  // namespace korv
