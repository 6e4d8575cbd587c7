#include "frontend/spelling.h"

#include <algorithm>

#include "frontend/instruction_forms.h"
#include "frontend/note_steps.h"
#include "source/char_class.h"

namespace korv {
namespace {

// True if the single quote at `at`, after another one, is inside a word and one more follows.
bool IsApostrophe(std::string_view source, std::size_t at) {
    return source.find('\'', at + 1) != std::string_view::npos &&
           HasClass(source[at - 1], CC_LETTER) && HasClass(source[at + 1], CC_LETTER);
}

constexpr const char* oddCharacterNote =
    "replace the characters that are not ASCII, such as typographic quotes and blanks";

// The text in single quotes that begins at offset `start` of the line. Two quotes in a row stand
// for one.
Foreign SingleQuoted(const StatementView& statement, std::size_t start) {
    const std::string_view line = statement.line;
    const std::string_view source = statement.typed;  // not cut off at a semicolon in the text
    std::size_t end = start + 1;
    std::string content;
    const char quote = source[start];
    for (; end < source.size(); ++end) {
        if (source.substr(end, 3) == "\\''") {  // '\''
            ++end;
        } else if (source[end] == quote && source.substr(end + 1, 1) == "'" && end > start + 1) {
            ++end;
        } else if (source[end] == '\'' && IsApostrophe(source, end)) {  // 'don't'
            content += '\'';
            continue;
        } else if (source[end] == quote || source[end] == '\'') {
            break;
        }
        content += source[end];
    }
    Foreign found{line.substr(start, end + 1 - start), "", doubleQuoteNote};
    if (end >= source.size() && content.size() == 1) {  // 'A
        found.fix = "\"" + content + "\"";
        return found;
    }
    if (const std::size_t other = content.find('"');
        end >= source.size() && other != std::string::npos) {  // 'text"
        found.part = {line.data() + start, other + 1};
        found.fix = "\"" + content.substr(0, other);
        return found;
    }
    if (end >= source.size()) {
        return found;
    }
    const bool isLong = content.size() > 1 && EscapeValue(content).empty();
    if (isLong && !HoldsWord("DB DEFB DM DEFM INCLUDE BINCLUDE", statement.mnemonic) &&
        statement.keyword != nullptr) {
        found.note = "use one character in double quotes: only DB and DM take longer strings";
        return found;
    }
    // A semicolon in the text ends the cleaned line, so the change applies to the line as typed.
    found.part = {line.data() + start, end + 1 - start};
    found.fix = EscapeValue(content);
    if (found.fix.empty() && content.find('"') == std::string::npos) {
        found.fix = "\"" + content + "\"";
        found.note = "use double quotes: " + found.fix;
    } else if (!found.fix.empty()) {
        found.note = "";
    } else {
        found.note = "use double quotes, and the number 34 for a double quote in the text";
    }
    return found;
}

// `operand` with parentheses in place of square brackets and braces.
Foreign Bracketed(std::string_view operand, std::string_view typed) {
    std::string fix;
    bool isString = false;
    for (const char c : typed) {
        isString = isString != (c == '"');
        fix += isString ? c : c == '[' || c == '{' ? '(' : c == ']' || c == '}' ? ')' : c;
    }
    const bool isStep = HoldsWord("(HLI) (HLD)", Raised(fix));
    return {operand, isStep ? "" : fix,
            isStep ? "write (HL), then INC HL or DEC HL: this form is of another processor"
                   : "use parentheses for memory: " + fix};
}

// A number in a foreign notation, or with a wrong digit.
Foreign ForeignNumber(const StatementView& statement, const Token& token) {
    const std::string_view text = token.text;
    const std::string typed(statement.Typed(text));
    const std::size_t letter = text.find_first_not_of(decimalDigits);
    const auto has = [text](std::string_view digits) {
        return text.find_first_of(digits) != std::string_view::npos;
    };
    if (letter == text.size() - 1 && text.ends_with('B') && has("23456789")) {  // "102B"
        const bool isEither = text.size() < 5;
        return {text, "",
                "use the digits 0 and 1 before B" +
                    (isEither ? ", or write " + typed + "H if it is hexadecimal" : "")};
    }
    if (text.starts_with("0B") &&
        text.find_first_not_of(decimalDigits, 2) == std::string_view::npos &&
        text.find_first_not_of("01", 2) != std::string_view::npos) {  // "0B12"
        const std::string other =
            text.size() < 5 ? ", or write " + typed + "H if it is hexadecimal" : "";
        return {text, "", "use the digits 0 and 1 after 0B" + other};
    }
    if (letter == text.size() - 1 && text.ends_with('O') && has("89")) {  // "8O"
        return {text, "", "use the digits 0 to 7 before O"};
    }
    if (letter != std::string_view::npos && letter > 0 && letter + 1 < text.size() &&
        text[letter] == 'E' &&
        text.find_first_not_of(decimalDigits, letter + 1) == std::string_view::npos) {  // "1E3"
        return {text, "", "write " + typed + "H if it is hexadecimal: there are no exponents"};
    }
    const std::string_view shorter = text.substr(0, text.size() - 1);  // of "11BB", "0FFHH"
    if (HoldsWord("B H", text.substr(shorter.size())) && shorter.ends_with(text.back()) &&
        CutTokens(shorter)[0].kind == TokenKind::number && (text.back() == 'H' || letter > 3)) {
        return {text, std::string(statement.Typed(shorter)), ""};
    }
    if (const std::string number = NumberSpelling(text); !number.empty()) {
        const bool isEither = text == number + "D";
        if (isEither && text.front() == '0') {  // "0D"
            return {text, typed + "H", ""};
        }
        return {text, number,
                isEither
                    ? "write " + number + ", or " + std::string(text) + "H if it is hexadecimal"
                    : ""};
    }
    return {};
}

// A colon after or before a name, or between two statements.
Foreign ForeignColon(const StatementView& statement, const Token& token) {
    const std::string_view text = token.text;
    const std::string typed(statement.Typed(text));
    if (text.size() > 1 && text.ends_with(':')) {
        const char* const restEnd = statement.rest.data() + statement.rest.size();
        const std::string_view after = WithoutLeadingBlanks({text.data() + text.size(), restEnd});
        if (FindKeyword(FirstWord(after)) != nullptr) {  // "5: INC A"
            return {text.substr(text.size() - 1), "\n\t", oneInstructionNote};
        }
        if (!after.empty() && HasClass(after.front(), CC_NAME)) {  // a comment
            return {};
        }
        return {text, typed.substr(0, typed.size() - 1),
                "remove the colon: only the definition of a label has one"};
    }
    if (text.size() > 1 && text.front() == ':') {
        return {text, typed.substr(1), "remove the colon: only the definition of a label has one"};
    }
    const std::size_t colon = std::min(text.find(':'), text.size() - 1);
    if (FindKeyword(text.substr(colon + 1)) != nullptr) {
        return {text.substr(colon, 1), "\n\t", oneInstructionNote};
    }
    return {};
}

// A token that the language does not have.
Foreign ForeignToken(const StatementView& statement, const Token& token) {
    if (Foreign number = ForeignNumber(statement, token); number.part.data() != nullptr) {
        return number;
    }
    const std::string_view text = token.text;
    const std::string typed(statement.Typed(text));
    if (token.kind == TokenKind::other && text.front() == '#' && text.size() > 1 &&
        CutTokens(text.substr(1))[0].kind != TokenKind::digitName) {
        return {text, typed.substr(1),
                "remove the #: a value needs no mark, and # begins a hexadecimal number"};
    }
    if (token.kind != TokenKind::other || text.find('"') != std::string_view::npos) {
        return {};
    }
    const std::size_t percent = text.find('%', 1);
    if (percent != std::string_view::npos && percent + 1 < text.size()) {
        const std::string fix = typed.substr(0, percent) + " MOD " + typed.substr(percent + 1);
        return {text, fix, ""};
    }
    if (text.find('?') != std::string_view::npos) {
        return {text, "", "use IF and ELSE: there is no operator that chooses"};
    }
    if (Foreign colon = ForeignColon(statement, token); colon.part.data() != nullptr) {
        return colon;
    }
    if (text.front() == '$' || text.front() == '&') {
        return {
            text, "",
            "check the digits after " + std::string(text.substr(0, text.front() == '&' ? 2 : 1))};
    }
    if (text.find_first_not_of("01") == percent) {  // "1010%"
        return {text, "%" + typed.substr(0, percent), ""};
    }
    if (text.front() == '%') {
        return {text, "", "use the digits 0 and 1 after %, and MOD for the remainder"};
    }
    if ((text.starts_with("IX") || text.starts_with("IY")) && HoldsWord(". :", text.substr(2, 1))) {
        const std::string fix = typed.substr(0, 2) + "+" + typed.substr(3);
        const bool isOpen = text.data()[-1] == '(';
        return {text, isOpen ? fix : "(" + fix + ")", ""};
    }
    if (text.find("..") != std::string_view::npos) {
        return {text, "", "write the values one by one: there are no ranges"};
    }
    if (HasClass(text.front(), CC_DIGIT) && text.find('.') != std::string_view::npos) {
        return {text, "", "use whole numbers, and commas between them: there are no fractions"};
    }
    if (text.ends_with('\'') && statement.mnemonic != "EX" &&
        ClassOf(text.substr(0, text.size() - 1)).kind != KIND_VALUE) {
        return {text, "", "use EX AF,AF' or EXX: the second set of registers has no names"};
    }
    if (text.front() == '\\' && text.size() > 1) {
        if (text.find_first_not_of(decimalDigits, 1) == text.npos) {
            return {text, typed.substr(1), ""};
        }
        if (const std::string value = EscapeValue(typed); !value.empty()) {
            return {text, value, ""};
        }
        return {text, "", "write the lines out: there are no macros"};
    }
    return {};
}

// A register in parentheses with blanks beside it, or an index register without a displacement.
Foreign ForeignMemory(const StatementView& statement, const OperandView& operand) {
    const bool isWhole = operand.what.reg == REG_IX_INDIRECT || operand.what.reg == REG_IY_INDIRECT;
    if (isWhole && !HoldsWord("JP JR CALL", statement.mnemonic)) {
        const std::string fix = std::string(statement.Typed(operand.text.substr(0, 3))) + "+0)";
        return {operand.text, fix, "write the displacement: " + fix};
    }
    const std::vector<Token>& tokens = operand.tokens;
    if (operand.what.reg != REG_DIRECT || tokens.size() < 3 ||
        ClassOf(tokens[1].text).kind == KIND_VALUE) {
        return {};
    }
    const bool isIndex = tokens[1].text == "IX" || tokens[1].text == "IY";
    if (tokens.size() > 3 && !(isIndex && HasClass(operand.text[1], CC_BLANK))) {
        return {};
    }
    std::string fix;
    for (const Token& token : tokens) {
        fix += statement.Typed(token.text);
    }
    return {operand.text, fix, "remove the blanks beside the register: " + fix};
}

}  // namespace

Foreign FindForeign(const StatementView& statement, const OperandView& operand) {
    bool isString = false;
    for (std::size_t i = 0; i < operand.text.size(); ++i) {
        const char c = operand.text[i];
        isString = isString != (c == '"');
        if (isString) {
            continue;
        }
        if (static_cast<unsigned char>(c) > 127) {
            return {operand.text, "", oddCharacterNote};
        }
        const std::size_t at = statement.PartOf(operand.text).offset + i;
        const bool isShadow = i > 0 && (HasClass(operand.text[i - 1], CC_NAME) ||
                                        operand.text[i - 1] == '\'');  // AF', AF'', H'FF'
        if (c == '\'' && i > 1 && HasClass(operand.text[i - 1], CC_BLANK) &&
            statement.typed.find(c, at + 1) == std::string_view::npos) {  // "LD A,5 ' text"
            return {operand.text.substr(i, 1), ";", "begin the comment with a semicolon"};
        }
        if ((c == '\'' || c == '`') && !isShadow && statement.mnemonic != "EX") {
            Foreign found = SingleQuoted(statement, at);
            if (found.part.data()[-1] == '#') {  // "#'A'"
                found.part = {found.part.data() - 1, found.part.size() + 1};
            }
            return found;
        }
        const bool isSlashed =
            operand.text.size() > 2 && operand.text.starts_with('/') && operand.text.ends_with('/');
        if (isSlashed && HoldsWord("DB DEFB DM DEFM", statement.mnemonic)) {  // ".ASCII /text/"
            const std::string_view inner = operand.text.substr(1, operand.text.size() - 2);
            const std::string fix = '"' + std::string(statement.Typed(inner)) + '"';
            return {operand.text, fix, "use double quotes: " + fix};
        }
        if (c == '{' && HoldsWord("DB DEFB DW DEFW", statement.mnemonic) &&
            operand.text.find('}') >= operand.text.size() - 1) {
            return {operand.text.substr(i, 1), "",
                    "remove the braces: values follow the directive"};
        }
        if (c == '{' && i + 1 == operand.text.size()) {  // "IF (X == 1) {"
            return {operand.text.substr(i), "", braceNote};
        }
        const bool isIndexed = operand.text.substr(i).starts_with("[IX]") ||
                               operand.text.substr(i).starts_with("[IY]");
        if (c == '[' && i > 0 && !isIndexed &&
            HasClass(operand.text[i - 1], CC_NAME)) {  // "TABLE[2]"
            const std::string_view index =
                operand.text.substr(i + 1, operand.text.find(']', i) - i - 1);
            if (HoldsWord("IX IY", operand.text.substr(0, i)) &&
                operand.text.ends_with(']')) {  // "IX[2]"
                const std::string_view typed = statement.Typed(operand.text);
                return {operand.text,
                        "(" + std::string(typed.substr(0, i)) + "+" +
                            std::string(typed.substr(i + 1, index.size())) + ")",
                        ""};
            }
            return {operand.text, "",
                    ClassOf(index).kind == KIND_VALUE
                        ? "add the index to the address with +: there are no arrays"
                        : "compute the address first: no register is added to one here"};
        }
        if (c == '[' && statement.rest.find(']') == std::string_view::npos) {
            return {operand.text.substr(i, 1), "",
                    "remove the bracket, or use parentheses for memory"};
        }
        if (std::string_view("[]{}").find(c) != std::string_view::npos) {
            return Bracketed(operand.text, statement.Typed(operand.text));
        }
    }
    if (Foreign found = ForeignMemory(statement, operand); found.part.data() != nullptr) {
        return found;
    }
    for (const Token& token : operand.tokens) {
        if (&token != &operand.tokens.back() && (&token)[1].text == "H") {  // "0FF H"
            continue;
        }
        if (Foreign found = ForeignToken(statement, token); found.part.data() != nullptr) {
            return found;
        }
    }
    return {};
}

std::size_t FindName(std::string_view text, std::string_view name, std::size_t from) {
    for (std::size_t at = from; (at = text.find(name, at)) != std::string_view::npos; ++at) {
        const std::size_t end = at + name.size();
        if ((at == 0 || !HasClass(text[at - 1], CC_NAME)) &&
            (end == text.size() || !HasClass(text[end], CC_NAME))) {
            return at;
        }
    }
    return std::string_view::npos;
}

std::string Applied(std::string_view line, const std::vector<TextEdit>& edits) {
    std::string text;
    std::size_t from = 0;
    for (const TextEdit& edit : edits) {
        const std::size_t start = std::min<std::size_t>(edit.part.offset, line.size());
        text.append(line.substr(from, start - from)).append(edit.text);
        from = std::min<std::size_t>(start + edit.part.length, line.size());
    }
    return text.append(line.substr(from));
}

}  // namespace korv
