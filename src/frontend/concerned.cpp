#include "frontend/concerned.h"

#include <algorithm>

#include "codegen/keywords.h"
#include "driver/assembler.h"
#include "frontend/line_parts.h"

namespace korv {
namespace {

std::string_view WordOrLabel(const LineParts& parts) {
    return parts.word.empty() ? parts.label : parts.word;
}

std::string_view AllOperands(const LineParts& parts) {
    return parts.rest.empty() ? parts.word : parts.rest;
}

// The first operand for which `isMeant` holds; all of them if there is none.
template <typename IsMeant>
std::string_view OperandThat(CStatement* statement, const LineParts& parts, IsMeant isMeant) {
    for (const lsArg& arg : statement->args) {
        if (isMeant(arg)) {
            return arg.text;
        }
    }
    return AllOperands(parts);
}

// The first operand that is one too many.
std::string_view Surplus(CStatement* statement, const LineParts& parts) {
    const Keyword* const keyword = FindKeyword(parts.word);
    const bool isThere = keyword != nullptr && keyword->operands.most < statement->args.Count();
    return isThere ? statement->args.Text(keyword->operands.most + 1) : WordOrLabel(parts);
}

// The comma at which an operand is missing.
std::string_view CommaOfNothing(const LineParts& parts) {
    const auto empty = std::ranges::find(parts.operands, std::string_view());
    const std::size_t end = empty == parts.operands.end()
                                ? 0
                                : static_cast<std::size_t>(empty->data() - parts.rest.data());
    const std::size_t before = parts.rest.substr(0, end).rfind(',');
    return parts.rest.substr(before == std::string_view::npos ? 0 : before, 1);
}

}  // namespace

std::string_view Concerned(CStatement* statement, const LineParts& parts, std::int32_t number) {
    switch (number) {
        case MSG_LABEL_WITHOUT_COLON:
        case MSG_LABEL_NOT_ALLOWED:
            return parts.label;
        case MSG_TOO_MANY_ARGUMENTS:
        case MSG_ARGUMENT_EXPECTED:  // which ADD says to too many as well
            return Surplus(statement, parts);
        case MSG_EXPECTED_ARGUMENT:
            return CommaOfNothing(parts);
        case MSG_NOT_IMMEDIATE:
            return OperandThat(statement, parts, [](const lsArg& arg) { return arg.status != 0; });
        case MSG_BAD_EXPRESSION:
        case MSG_GENERAL_FAILURE:
        case MSG_TOO_COMPLEX:
        case MSG_BAD_NUMBER:
            return OperandThat(statement, parts,
                               [number](const lsArg& arg) { return arg.status == number; });
        case MSG_NOT_UNSIGNED_BYTE:
        case MSG_NOT_BYTE:
        case MSG_OFFSET_TOO_BIG:
            return statement->args.Count() == 0 ? WordOrLabel(parts) : statement->args.Last().text;
        case MSG_ILLEGAL_ARGUMENT:
        case MSG_CANNOT_OPEN:
        case MSG_FILES_TOO_DEEP:
        case MSG_ORG_USED:
        case MSG_ORG_IN_CODE:
        case MSG_ORG_AFTER_CODE:
        case -1:
        case MSG_SYSTEM_ERROR:
            return AllOperands(parts);
        default:
            return WordOrLabel(parts);
    }
}

std::string_view ConcernedByText(std::string_view line, const LineParts& parts,
                                 std::string_view text) {
    const std::size_t at = FindWhole(line, text);
    return at == std::string_view::npos ? WordOrLabel(parts) : line.substr(at, text.size());
}

}  // namespace korv
