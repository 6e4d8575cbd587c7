// Slips of the finger in operands: registers, a comma that is missing, the order.

#include <algorithm>

#include "frontend/instruction_forms.h"
#include "frontend/note_rows.h"
#include "frontend/operand_case.h"
#include "source/char_class.h"

namespace korv {
namespace {

// The registers and conditions that `token` is a slip of: those as long as it first, and of these
// the one with its letters.
std::vector<std::string> NearRegisters(const StatementView& statement, const Token& token,
                                       bool isIndex) {
    std::vector<std::string> near;
    std::size_t best = 3;
    for (const std::string_view name :
         {"A",  "B",  "C",  "D",  "E", "H",  "L",  "BC", "DE", "HL", "SP",
          "IX", "IY", "AF", "NZ", "Z", "NC", "PO", "PE", "P",  "M"}) {
        const bool isPermuted = std::ranges::is_permutation(name, token.text);
        const std::size_t rank = isPermuted ? 0 : name.size() == token.text.size() ? 1 : 2;
        if (rank > best || (isIndex && !name.starts_with('I')) ||
            EditDistance(token.text, name) != 1 ||
            !HasFormWith(statement, {{statement.PartOf(token.text), std::string(name)}})) {
            continue;
        }
        if (rank < best) {
            near.clear();
            best = rank;
        }
        near.emplace_back(name);
    }
    return near;
}

}  // namespace

bool AdviseOnMisspeltRegister(OperandCase* it) {
    constexpr std::size_t longest = 3;
    for (const OperandView& operand : it->statement.operands) {
        const Token* token = operand.OnlyToken();
        const bool isIndex = token == nullptr && operand.tokens.size() > 3 &&
                             operand.tokens[0].code == OP_OPEN;  // "(XI+1)"
        token = isIndex ? &operand.tokens[1] : token;
        const bool isName = token != nullptr &&
                            (token->kind == TokenKind::name || token->kind == TokenKind::digitName);
        if (!isName || token->text.size() < 2 || token->text.size() > longest ||
            it->IsDefined(token->text)) {
            continue;
        }
        const std::vector<std::string> near = NearRegisters(it->statement, *token, isIndex);
        if (near.empty()) {
            continue;
        }
        it->PointAt(token->text);
        if (near.size() == 1) {
            it->Replace(token->text, near[0]);
        }
        it->advice.note = "did you mean " + Listed(near) + "?";
        return true;
    }
    return false;
}

std::string Listed(const std::vector<std::string>& words) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        text += (i == 0 ? "" : i + 1 == words.size() ? " or " : ", ") + words[i];
    }
    return text;
}

// A register in double quotes.
bool AdviseOnQuotedRegister(OperandCase* it) {
    for (const OperandView& operand : it->statement.operands) {
        const std::string_view text = operand.text;
        const bool isString =
            operand.tokens.size() == 1 && operand.tokens[0].kind == TokenKind::string;
        const std::string name(isString ? text.substr(1, text.size() - 2) : "");
        const std::vector<TextEdit> edits = {{it->statement.PartOf(text), name}};
        if (ClassOf(Raised(name)).kind != KIND_VALUE && HasFormWith(it->statement, edits)) {
            it->PointAt(text);
            it->advice.edits = edits;
            it->advice.note = WriteNote(it->statement, edits) + ": a register has no quotes";
            return true;
        }
    }
    return false;
}

bool AdviseOnGluedOperands(OperandCase* it) {
    const auto& operands = it->statement.operands;
    if (it->fault.number != MSG_ARGUMENT_EXPECTED || operands.size() != 1 ||
        operands[0].tokens.size() != 1) {
        return false;
    }
    const std::string_view text = operands[0].text;
    for (const std::size_t size : {std::size_t{2}, std::size_t{1}}) {
        const std::string_view left = text.substr(0, size);
        const std::string_view right = text.substr(std::min(size, text.size()));
        const std::vector<TextEdit> edits = {{it->statement.PartOf(right.substr(0, 0)), ","}};
        if (!right.empty() && ClassOf(left).kind != KIND_VALUE &&
            (ClassOf(right).kind != KIND_VALUE || it->IsDefined(right) ||
             HasClass(right[0], CC_DIGIT)) &&
            HasFormWith(it->statement, edits)) {
            it->PointAt(text);
            it->advice.edits = edits;
            it->advice.note = "add the comma: " + WriteNote(it->statement, edits).substr(6);
            return true;
        }
    }
    return false;
}

bool AdviseOnSwappedOperands(OperandCase* it) {
    const auto& operands = it->statement.operands;
    if (operands.size() != 2 || operands[0].text.empty() || operands[1].text.empty()) {
        return false;
    }
    const std::string_view first = operands[0].text;
    const std::string_view second = operands[1].text;
    const std::vector<TextEdit> edits = {
        {it->statement.PartOf(first), std::string(it->statement.Typed(second))},
        {it->statement.PartOf(second), std::string(it->statement.Typed(first))}};
    if (!HasFormWith(it->statement, edits)) {
        return false;
    }
    it->advice.edits = edits;
    if (it->ProposesUnknownName()) {
        it->advice.edits.clear();
        return false;
    }
    it->PointAt(first);
    it->advice.note = WriteNote(it->statement, edits) + ": the target is the first operand";
    return true;
}

}  // namespace korv
