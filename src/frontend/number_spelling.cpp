// Numbers in the notations of other assemblers.

#include <algorithm>

#include "expr/number.h"
#include "frontend/spelling.h"
#include "source/char_class.h"

namespace korv {
namespace {

constexpr std::string_view hexDigits = "0123456789ABCDEF";

bool IsOf(std::string_view text, std::string_view characters) {
    return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

// `digits` in Korv's notation, for the base that another assembler marks with `base`; empty if they
// do not belong to it.
std::string Spelled(std::string_view digits, char base) {
    const bool isHex = base == 'X' || base == 'H';
    const bool isBinary = base == 'B' || base == '%';
    const bool isOctal = base == 'O' || base == 'Q';
    if (isHex && IsOf(digits, hexDigits)) {
        return "$" + std::string(digits);
    }
    if (isBinary && IsOf(digits, "01")) {
        return "%" + std::string(digits);
    }
    if (isOctal && IsOf(digits, "01234567")) {
        return std::string(digits) + "O";
    }
    return "";
}

// The same for a number that can be recognised only by its suffix or its digits.
std::string SuffixSpelling(std::string_view token) {
    const std::size_t size = token.size();
    if (token.empty() || !HasClass(token[0], CC_DIGIT)) {
        return "";
    }
    if (token.ends_with('Q')) {
        return Spelled(token.substr(0, size - 1), 'Q');
    }
    std::string digits(token);
    std::erase(digits, '_');
    std::int32_t value = 0;
    if (digits.size() < size && ReadNumber(digits, &value) == 0) {
        return digits;
    }
    if (token.ends_with('D') && IsOf(token.substr(0, size - 1), "0123456789")) {
        return std::string(token.substr(0, size - 1));
    }
    if (IsOf(token, hexDigits) && ReadNumber(token, &value) == notANumber) {
        return std::string(token) + "H";
    }
    return "";
}

}  // namespace

std::string EscapeValue(std::string_view content) {
    if (content.size() == 2 && content.front() == '\\') {
        switch (content[1]) {
            case 'n':
                return "10";
            case 'r':
                return "13";
            case 't':
                return "9";
            case '0':
                return "0";
            default:
                return "\"" + std::string(content.substr(1)) + "\"";
        }
    }
    return content == "\"" ? "34" : "";
}

std::string NumberSpelling(std::string_view token) {
    const bool isGrouped = token.size() > 2 && HasClass(token[0], CC_DIGIT) &&
                           HasClass(token[1], CC_LETTER) &&
                           token.find('_') != std::string_view::npos;
    if (isGrouped) {  // "0B1111_0000"
        std::string digits(token);
        std::erase(digits, '_');
        return NumberSpelling(digits);
    }
    const std::size_t size = token.size();
    const std::size_t quote = token.find('\'');
    if (size > 3 && quote == 1 && token.ends_with('\'')) {  // H'FF'
        return Spelled(token.substr(2, size - 3), token[0]);
    }
    if (size > 2 && (token.starts_with("0X") || token.starts_with("0B") ||
                     token.starts_with("0O") || token.starts_with("0Q"))) {
        if (std::string number = Spelled(token.substr(2), token[1]); !number.empty()) {
            return number;
        }
        if (token.ends_with('H') && token[1] == 'X') {
            return Spelled(token.substr(2, size - 3), 'H');
        }
    }
    if (size > 2 && (token[0] == '$' || token[0] == '#') && token.ends_with('H')) {
        return Spelled(token.substr(1, size - 2), 'H');
    }
    if (size > 2 && (token[0] == '$' || token[0] == '#') && token[1] == '$') {
        return Spelled(token.substr(2), 'H');
    }
    if (size > 2 && (token[0] == '#' || token.starts_with("$0X"))) {  // "#X1F", "#0x1F", "#%101"
        return token[1] == 'X'   ? Spelled(token.substr(2), 'X')
               : token[1] == '%' ? Spelled(token.substr(2), 'B')
                                 : NumberSpelling(token.substr(1));
    }
    if (size > 2 && token[0] == '%' && token.ends_with('B')) {
        return Spelled(token.substr(1, size - 2), 'B');
    }
    if (size > 2 && std::string_view("$%").find(token[0]) != std::string_view::npos &&
        token.find('_') != std::string_view::npos) {
        std::string digits(token.substr(1));
        std::erase(digits, '_');
        return Spelled(digits, token[0] == '$' ? 'H' : 'B');
    }
    if (size > 3 && (token.starts_with("16#") || token.starts_with("2#"))) {
        return Spelled(token.substr(token.find('#') + 1), token[0] == '2' ? 'B' : 'H');
    }
    return SuffixSpelling(token);
}

}  // namespace korv
