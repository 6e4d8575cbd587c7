// Advice on strings with quotes that are missing, superfluous, or inside the text.

#include <algorithm>

#include "frontend/instruction_forms.h"
#include "frontend/operand_case.h"
#include "frontend/proposal.h"
#include "source/char_class.h"

namespace korv {

// A text with double quotes in it: proposes the number 34 for each.
bool AdviseOnQuotes(OperandCase* it) {
    const std::string_view text = it->operand->text;
    const bool isText = text.size() > 3 && text.back() == '"' &&
                        std::ranges::none_of(it->operand->tokens, [](const Token& token) {
                            return token.text.find('"') == std::string_view::npos;
                        });
    const bool hasBlanks =
        std::ranges::adjacent_find(it->operand->tokens, [](const Token& one, const Token& next) {
            return one.text.data() + one.text.size() != next.text.data();
        }) != it->operand->tokens.end();
    if (!isText || hasBlanks) {
        return false;
    }
    const std::string_view inner = it->statement.Typed(text.substr(1, text.size() - 2));
    std::string fix;
    std::string piece;
    const auto close = [&](bool isLast) {
        if (!piece.empty()) {
            fix += (fix.empty() ? "\"" : ",\"") + piece + "\"";
        }
        fix += isLast ? "" : fix.empty() ? "34" : ",34";
        piece.clear();
    };
    for (std::size_t i = 0; i < inner.size(); ++i) {
        if (inner[i] != '"') {
            piece += inner[i];
            continue;
        }
        if (piece.ends_with('\\')) {  // as in "say \"hi\""
            piece.pop_back();
        }
        close(false);
        i += inner.substr(i + 1).starts_with('"') ? std::size_t{1} : 0;
    }
    close(true);
    it->PointAt(text);
    it->Replace(text, fix);
    it->advice.note = "write " + fix + ": a double quote in a string is the number 34";
    return true;
}

// Proposes the closing quote of a string: at its end, or before trailing numbers and names with
// byte values, as in ",13,10".
void CloseString(OperandCase* it, std::string_view text) {
    std::size_t end = text.size();
    for (std::size_t comma; (comma = text.substr(0, end).rfind(',')) != std::string_view::npos;) {
        const std::vector<Token> tokens = CutTokens(text.substr(comma + 1, end - comma - 1));
        const auto known = it->adviser.Facts().FindName(text.substr(comma + 1, end - comma - 1));
        const bool isByte = known && known->hasValue && known->value < 256;
        if (tokens.size() != 1 || (tokens[0].kind != TokenKind::number && !isByte)) {
            break;
        }
        end = comma;
    }
    if (end < 2) {
        return;
    }
    const bool isSingle = text[end - 1] == '\'';  // "text'
    it->Replace(isSingle ? text.substr(end - 1, 1) : text.substr(end, 0), "\"");
}

// "DB HELLO, WORLD"": the string extends from the first unknown word to the quote.
bool AdviseOnUnopenedString(OperandCase* it) {
    const auto& operands = it->statement.operands;
    const auto isEnd = [](const OperandView& operand) {
        const std::size_t quote = operand.text.find('"');
        const std::string_view after =
            operand.text.substr(std::min(quote, operand.text.size() - 1) + 1);
        return quote != std::string_view::npos && quote > 0 &&
               after.find('"') == std::string_view::npos &&
               (after.empty() || HasClass(after.front(), CC_BLANK) || after.front() == ',');
    };
    const auto isProse = [it](const OperandView& operand) {
        return !operand.tokens.empty() &&
               std::ranges::all_of(operand.tokens, [it](const Token& token) {
                   return token.kind == TokenKind::name && !it->IsDefined(token.text);
               });
    };
    if (!HoldsWord("DB DEFB DM DEFM", it->statement.mnemonic)) {
        return false;
    }
    const auto end = std::ranges::find_if(
        operands, [isEnd](const OperandView& each) { return !each.text.empty() && isEnd(each); });
    if (end == operands.end()) {
        return false;
    }
    auto start = end;
    while (start != operands.begin() && isProse(*(start - 1))) {
        --start;
    }
    it->Insert(start->text, "\"");
    it->advice.note = "open the string with a double quote";
    return true;
}

// One double quote too many, as in "LD B,"COUNT" and "LD A,B"".
bool AdviseOnSingleQuote(OperandCase* it) {
    const StatementView& statement = it->statement;
    const std::size_t at = statement.rest.find('"');
    const OperandView& last = statement.operands.back();
    const bool isLast = at + 1 == statement.rest.size();
    const bool isData = HoldsWord(dataDirectives, statement.mnemonic);
    const std::vector<TextEdit> edits = {{statement.PartOf(statement.rest.substr(at, 1)), ""}};
    if ((isData && (!isLast || last.tokens.size() != 1 || !HasClass(last.text[0], CC_DIGIT))) ||
        !IsSound(it->adviser.Facts(), statement, edits)) {
        return false;
    }
    it->PointAt(statement.rest.substr(at, 1));
    it->advice.note = "remove the quote";
    if (at == 1 || (at > 1 && HoldsWord(", (", statement.rest.substr(at - 2, 1)))) {  // "LD A,B""
        it->advice.note += ", or open the string before it";
    } else {
        it->advice.edits = edits;
    }
    return true;
}

// True if the changed list of bytes is sound, all names in it are defined, and no string looks like
// the values between two strings: ",13,10,".
bool IsLikelyList(const OperandCase& it, const std::vector<TextEdit>& edits) {
    const std::string line = Raised(Applied(it.statement.typed, edits));
    const StatementView changed = CutStatement(line);
    const auto isLikely = [&it](const Token& token) {
        const std::size_t comma = token.text.find(',');
        return token.kind == TokenKind::string
                   ? comma == std::string_view::npos ||
                         (comma > 1 && !HasClass(token.text[1], CC_DIGIT) &&
                          !HasClass(token.text[comma + 1], CC_DIGIT))
                   : token.kind != TokenKind::name || it.IsDefined(token.text);
    };
    return IsSound(it.adviser.Facts(), it.statement, edits) &&
           std::ranges::all_of(changed.operands, [isLikely](const OperandView& operand) {
               return std::ranges::all_of(operand.tokens, isLikely);
           });
}

bool AdviseOnOddQuotes(OperandCase* it) {
    constexpr std::size_t longest = 200;  // a bound for the work on one message
    const std::string_view rest = it->statement.rest;
    if (rest.size() > longest) {
        return false;
    }
    const auto count = std::ranges::count(rest, '"');
    if (count == 1 && AdviseOnSingleQuote(it)) {
        return true;
    }
    for (std::size_t i = 0; (i = rest.find("\"\"", i)) < rest.size(); ++i) {
        const std::vector<TextEdit> edits = {{it->statement.PartOf(rest.substr(i, 1)), ""}};
        if (IsSound(it->adviser.Facts(), it->statement, edits)) {
            return it->Propose(rest.substr(i, 2), edits, "remove the extra quote: ");
        }
    }
    if (const std::size_t end = rest.find("\"\"", 2); rest.starts_with("\"\"")) {  // ""text""
        const std::vector<TextEdit> edits = {
            {it->statement.PartOf(rest.substr(0, 1)), ""},
            {it->statement.PartOf(rest.substr(std::min(end, rest.size()), 1)), ""}};
        if (count > 3 && IsSound(it->adviser.Facts(), it->statement, edits)) {
            return it->Propose(rest.substr(0, 2), edits, "remove the extra quotes: ");
        }
    }
    if (count < 3 || !HoldsWord("DB DEFB", it->statement.mnemonic)) {
        return false;
    }
    for (std::size_t i = 0; i <= rest.size(); ++i) {
        const bool isOpen = std::ranges::count(rest.substr(0, i), '"') % 2 == 1;
        const bool isStart = !HasClass(rest[std::min(i, rest.size() - 1)], CC_BLANK) &&
                             (i == 0 || rest[rest.find_last_not_of(" \t", i - 1)] == ',');
        const bool isEnd = isOpen && (i == rest.size() || rest[i] == ',');
        const bool isSingle = rest.substr(i).starts_with('\'');  // 'text"
        const std::vector<TextEdit> edits = {
            {it->statement.PartOf(rest.substr(i, isSingle ? 1 : 0)), "\""}};
        if ((isStart || isEnd || isSingle) && IsLikelyList(*it, edits)) {
            it->PointAt(rest.substr(std::min(i, rest.size() - 1), 1));
            it->advice.edits = edits;
            it->advice.note = isOpen ? closeQuoteNote : "open the string with a double quote";
            return true;
        }
    }
    for (std::size_t i = 1; i + 1 < rest.size() && count == 3 && !rest.ends_with('"'); ++i) {
        if (rest[i] == '"' && HasClass(rest[i - 1], CC_NAME) && HasClass(rest[i + 1], CC_NAME)) {
            it->PointAt(rest.substr(i, 1));
            it->advice.note = "remove this quote, or write the number 34 for it";
            return true;
        }
    }
    return false;
}

}  // namespace korv
