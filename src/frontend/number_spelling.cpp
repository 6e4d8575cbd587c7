// Numbers in the notations of other assemblers.

#include <algorithm>
#include <array>

#include "expr/number.h"
#include "frontend/spelling.h"
#include "source/char_class.h"

namespace korv {
namespace {

constexpr std::string_view hexDigits = "0123456789ABCDEF";

// How another assembler marks the base of a number, and how Korv does.
struct Notation {
    std::string_view prefix;
    std::string_view suffix;
    std::string_view digits;
    std::string_view ownPrefix;
    std::string_view ownSuffix;
};

constexpr Notation Hexadecimal(std::string_view prefix, std::string_view suffix = "") {
    return {prefix, suffix, hexDigits, "$", ""};
}

constexpr Notation Binary(std::string_view prefix, std::string_view suffix = "") {
    return {prefix, suffix, "01", "%", ""};
}

constexpr Notation Octal(std::string_view prefix, std::string_view suffix = "") {
    return {prefix, suffix, "01234567", "", "O"};
}

constexpr Notation notations[] = {
    Hexadecimal("0X"),
    Hexadecimal("0X", "H"),
    Hexadecimal("#0X"),
    Hexadecimal("$0X"),
    Hexadecimal("#$"),
    Hexadecimal("#", "H"),
    Hexadecimal("$", "H"),
    Hexadecimal("H'", "'"),
    Hexadecimal("X'", "'"),
    Binary("0B"),
    Binary("#0B"),
    Binary("#%"),
    Binary("%", "B"),
    Binary("B'", "'"),
    Octal("0O"),
    Octal("", "Q"),
    {"", "D", decimalDigits, "", ""},
};

bool IsOf(std::string_view text, std::string_view characters) {
    return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

}  // namespace

std::string EscapeValue(std::string_view content) {
    if (content == "\"") {
        return "34";
    }
    if (content == "\\0") {
        return "0";
    }
    if (content == "\\\\" || content == "\\'") {
        return "\"" + std::string(content.substr(1)) + "\"";
    }
    if (content.starts_with("\\x")) {
        return NumberSpelling(Raised("0" + std::string(content.substr(1))));
    }
    constexpr std::array controls = {'a', 'b', 't', 'n', 'v', 'f', 'r'};  // 7 to 13
    for (std::size_t i = 0; i < controls.size(); ++i) {
        if (content == std::string{'\\', controls[i]}) {
            return std::to_string(i + 7);
        }
    }
    return "";
}

std::string NumberSpelling(std::string_view token) {
    std::int32_t value = 0;
    if (token.find_first_of("0123456789$#%") == 0 && token.find('_') != std::string_view::npos) {
        std::string number(token);  // "1_000", "0B1111_0000"
        std::erase(number, '_');
        return ReadNumber(number, &value) == 0 ? number : NumberSpelling(number);
    }
    for (const Notation& notation : notations) {
        if (!token.starts_with(notation.prefix) || !token.ends_with(notation.suffix)) {
            continue;
        }
        std::string_view digits = token.substr(notation.prefix.size());
        digits = digits.substr(0, digits.size() - std::min(digits.size(), notation.suffix.size()));
        if (IsOf(digits, notation.digits)) {
            return std::string(notation.ownPrefix) + std::string(digits) +
                   std::string(notation.ownSuffix);
        }
    }
    if (token.size() > 4 && token.starts_with('B') && IsOf(token.substr(1), "01")) {  // "b11110000"
        return "%" + std::string(token.substr(1));
    }
    const bool isUnmarked = !token.empty() && HasClass(token[0], CC_DIGIT) &&
                            IsOf(token, hexDigits) && ReadNumber(token, &value) == notANumber;
    return isUnmarked ? std::string(token) + "H" : "";
}

}  // namespace korv
