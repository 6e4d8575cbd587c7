// Finds the operand that a message is about: the one at the place that the core reported, or else
// the one that is at fault according to the forms or the tokens.

#include "frontend/operand_case.h"

#include <algorithm>
#include <utility>

#include "codegen/keywords.h"
#include "frontend/expression_fault.h"
#include "frontend/instruction_forms.h"
#include "frontend/note_rows.h"
#include "frontend/note_steps.h"
#include "source/char_class.h"

namespace korv {

bool OperandCase::Propose(std::string_view part, std::vector<TextEdit> edits, std::string_view head,
                          std::string_view tail) {
    PointAt(part);
    advice.note = std::string(head).append(WriteNote(statement, edits).substr(6)).append(tail);
    advice.edits = std::move(edits);
    return true;
}

bool OperandCase::ProposesUnknownName() const {
    const bool isFile = HoldsWord("INCLUDE BINCLUDE", statement.mnemonic);
    return !isFile && std::ranges::any_of(statement.operands, [this](const OperandView& operand) {
        return std::ranges::any_of(operand.tokens, [this](const Token& token) {
            const bool isName = token.kind == TokenKind::name || token.kind == TokenKind::digitName;
            return isName && !adviser.Facts().FindName(token.text) &&
                   std::ranges::any_of(advice.edits, [&token](const TextEdit& edit) {
                       return FindName(Raised(edit.text), token.text) != std::string::npos;
                   });
        });
    });
}

const OperandView* FocusOf(const FaultView& fault) {
    const auto& operands = fault.statement.operands;
    const auto find = [&operands](auto isIt) -> const OperandView* {
        const auto it = std::ranges::find_if(operands, isIt);
        return it == operands.end() ? nullptr : &*it;
    };
    const std::size_t faulty = FindFaultyOperand(fault.statement);
    const bool isFaulty = faulty < operands.size();
    const OperandView* const at = find([&fault](const OperandView& each) {
        const LinePart part = fault.statement.PartOf(each.text);
        return fault.part.offset >= part.offset && fault.part.offset < part.offset + part.length;
    });
    const bool isNamed =
        at != nullptr && fault.statement.PartOf(at->text).length >= fault.part.length;
    const bool isByForm =
        fault.number == MSG_ILLEGAL_ARGUMENT || fault.number == MSG_TOO_MANY_ARGUMENTS;
    if (isNamed && !(isByForm && isFaulty)) {
        return at;
    }
    if (const std::size_t excess = FindExcess(fault.statement); excess != noFault) {
        return &operands[excess];
    }
    if (isFaulty) {
        return &operands[faulty];
    }
    if (const OperandView* const it = find([](const OperandView& each) {
            return each.what.kind == KIND_VALUE &&
                   FindExpressionFault(each).fault != ExpressionFault::none;
        })) {
        return it;
    }
    return operands.size() == 1 ? operands.data() : nullptr;
}

bool HasFormWith(const StatementView& statement, const std::vector<TextEdit>& edits) {
    const std::string line = Raised(Applied(statement.line, edits));
    return HasForm(CutStatement(line));
}

const Token* FindToken(const OperandView& operand, std::string_view text) {
    const auto token = std::ranges::find(operand.tokens, text, &Token::text);
    return token == operand.tokens.end() ? nullptr : &*token;
}

bool IsNumberedLabel(const StatementView& statement) {
    if (!HoldsWord("JP JR CALL DJNZ", statement.mnemonic)) {
        return false;
    }
    const std::string_view text = statement.operands.back().text;
    return text.size() == 2 && HasClass(text[0], CC_DIGIT) && (text[1] == 'F' || text[1] == 'B');
}

}  // namespace korv
