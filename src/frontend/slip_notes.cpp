// Advice on slips in operands: misspelt or quoted registers, words with a blank in them, the wrong
// order.

#include <algorithm>

#include "frontend/instruction_forms.h"
#include "frontend/note_rows.h"
#include "frontend/operand_case.h"
#include "frontend/proposal.h"
#include "source/char_class.h"

namespace korv {
namespace {

// True if `text` is `name` with its letters rearranged, or is one letter longer but has no other
// letters, or is "H1" for HL.
bool IsSureSlip(std::string_view text, std::string_view name) {
    const bool isDoubled =
        text.size() == name.size() + 1 && std::ranges::all_of(text, [name](char c) {
            return name.find(c) != std::string_view::npos;
        });
    return isDoubled || std::ranges::is_permutation(name, text) || (name == "HL" && text == "H1");
}

// The registers and conditions that `token` may misspell: those of the same length and sure slips
// if there are any, else all others.
std::vector<std::string> NearRegisters(const OperandCase& it, const Token& token, bool isIndex) {
    std::vector<std::string> near;
    std::size_t best = 3;
    for (const std::string_view name :
         {"A",  "B",  "C",  "D",  "E", "H",  "L",  "BC", "DE", "HL", "SP",
          "IX", "IY", "AF", "NZ", "Z", "NC", "PO", "PE", "P",  "M"}) {
        const std::size_t rank =
            name.size() == token.text.size() || IsSureSlip(token.text, name) ? 1 : 2;
        const std::vector<TextEdit> edits = {{it.statement.PartOf(token.text), std::string(name)}};
        if (rank > best || (isIndex && !name.starts_with('I')) ||
            EditDistance(token.text, name) != 1 || !HasFormWith(it.statement, edits)) {
            continue;
        }
        const std::string line = Raised(Applied(it.statement.line, edits));
        if (HasLargeName(it.adviser.Facts(), CutStatement(line))) {
            continue;  // the value is an address, so a pair was meant
        }
        if (rank < best) {
            near.clear();
            best = rank;
        }
        near.emplace_back(name);
    }
    return near;
}

// The defined name that two words form together, if the first is not a defined name itself or the
// second begins with a digit.
std::string NameOf(const OperandCase& it, std::string_view left, std::string_view right) {
    for (const std::string_view between : {"_", ""}) {
        const std::string name = std::string(left).append(between).append(right);
        if ((!it.IsDefined(left) || HasClass(right.front(), CC_DIGIT)) && it.IsDefined(name)) {
            return name;
        }
    }
    return "";
}

}  // namespace

bool AdviseOnMisspeltRegister(OperandCase* it, bool isSure) {
    constexpr std::size_t longest = 3;
    for (const OperandView& operand : it->statement.operands) {
        const Token* token = operand.OnlyToken();
        const bool isIndex = operand.tokens.size() > 3;  // "(XI+1)"
        token = isIndex ? &operand.tokens[1] : token;
        if (token == nullptr || token->kind != TokenKind::name || token->text.size() < 2 ||
            token->text.size() > longest ||
            (HoldsWord("CC CS GE LE GT", token->text) &&
             HoldsWord("JP JR CALL RET", it->statement.mnemonic)) ||
            it->IsDefined(token->text)) {
            continue;
        }
        const std::vector<std::string> near = NearRegisters(*it, *token, isIndex);
        if (near.empty() || (isSure && !IsSureSlip(token->text, near[0]))) {
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

// A register in double quotes, or after "#".
bool AdviseOnQuotedRegister(OperandCase* it) {
    for (const OperandView& operand : it->statement.operands) {
        const std::string_view text = operand.text;
        const bool isString = text.starts_with('"');
        const bool isMarked = text.starts_with('#');
        const std::string name(isString   ? text.substr(1, text.size() - 2)
                               : isMarked ? it->statement.Typed(text.substr(1))
                                          : "");
        const std::vector<TextEdit> edits = {{it->statement.PartOf(text), name}};
        if (it->statement.mnemonic != "OUT" && ClassOf(Raised(name)).kind != KIND_VALUE &&
            HasFormWith(it->statement, edits)) {
            return it->Propose(text, edits, "write ",
                               isString ? ": a register has no quotes" : ": a register has no #");
        }
    }
    return false;
}

bool AdviseOnSplitWord(OperandCase* it) {
    const StatementView& statement = it->statement;
    for (const OperandView& operand : statement.operands) {
        for (std::size_t i = 0; i + 1 < operand.tokens.size(); ++i) {
            const Token& left = operand.tokens[i];
            const bool isDash =
                operand.tokens[i + 1].code == OP_MINUS && i + 2 < operand.tokens.size();
            const Token& right = operand.tokens[i + (isDash ? 2 : 1)];
            if (!left.IsValue() || (isDash && it->IsDefined(right.text))) {
                continue;
            }
            const std::string_view part = statement.Span(left.text, right.text);
            const std::string joined =
                std::string(statement.Typed(left.text)).append(statement.Typed(right.text));
            const bool isRegister = ClassOf(Raised(joined)).kind != KIND_VALUE &&
                                    HasFormWith(statement, {{statement.PartOf(part), joined}});
            const bool isNumber =  // "$ 10"
                HoldsWord("$ # %", left.text) && (i == 0 || !operand.tokens[i - 1].IsValue()) &&
                CutTokens(joined)[0].kind == TokenKind::number;
            const std::string name = NameOf(*it, left.text, right.text);
            if (isRegister || isNumber || !name.empty()) {
                it->PointAt(part);
                it->Replace(part, name.empty() ? joined : name);
                it->advice.note =
                    name.empty() ? "remove the blank: " + joined : "did you mean " + name + "?";
                return true;
            }
        }
    }
    return false;
}

bool AdviseOnSplitNumber(OperandCase* it, const Token& before, const Token& token) {
    const std::string number = std::string(before.text) + std::string(token.text);
    const bool isBinary =  // "1010 0101B", "%1010 0101"
        before.text.starts_with('%') != token.text.ends_with('B') &&
        before.text.find_first_not_of("01", before.text.starts_with('%') ? 1 : 0) ==
            std::string_view::npos &&
        token.text.find_first_not_of("01") >= token.text.size() - 1;
    const bool isGroup =  // "10 000"
        token.text.size() == 3 && number.find_first_not_of(decimalDigits) == std::string::npos;
    const bool isPart =
        (isBinary && number.size() % 8 == 1) ||
        ((isBinary || isGroup) && !HoldsWord(dataDirectives, it->statement.mnemonic));
    const bool isNumber = (isPart || HoldsWord("B H O", token.text)) &&
                          CutTokens(number)[0].kind == TokenKind::number;
    if (isNumber) {
        it->PointAt(it->statement.Span(before.text, token.text));
        it->Replace(it->statement.Span(before.text, token.text), number);
        it->advice.note = "remove the blank: " + number;
    }
    return isNumber;
}

bool AdviseOnSwappedOperands(OperandCase* it) {
    const auto& operands = it->statement.operands;
    const bool hasOrder = it->statement.mnemonic == "SBC";  // HL-DE is not DE-HL
    if (operands.size() != 2 || hasOrder) {
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
    it->advice.note = WriteNote(it->statement, edits) + ": the target is the first operand";
    return true;
}

}  // namespace korv
