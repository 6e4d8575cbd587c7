#include "server/line_prefix.h"

#include <algorithm>

#include "frontend/statement_view.h"
#include "source/char_class.h"

namespace korv {

std::size_t CommentStart(std::string_view line) {
    bool isString = false;
    const auto* const found = std::ranges::find_if(line, [&isString](char c) {
        isString = isString != (c == '"');
        return c == ';' && !isString;
    });
    return static_cast<std::size_t>(found - line.begin());
}

LinePrefix CutPrefix(std::string_view text) {
    LinePrefix prefix;
    if (CommentStart(text) != text.size()) {
        prefix.part = LinePrefix::Part::comment;
        return prefix;
    }
    std::size_t at = 0;
    const auto isBlank = [&] { return HasClass(text[at], CC_BLANK); };
    const auto skip = [&](auto isWanted) {
        while (at < text.size() && isWanted()) {
            ++at;
        }
    };
    skip([&] { return HasClass(text[at], CC_NAME); });
    if (at == text.size()) {
        return prefix;
    }
    at += at != 0 ? 1 : 0;  // the colon
    skip(isBlank);
    const std::size_t start = at;
    skip([&] { return !isBlank() && text[at] != '"'; });
    prefix.mnemonic = Raised(text.substr(start, at - start));
    prefix.part = LinePrefix::Part::mnemonic;
    if (at == text.size()) {
        return prefix;
    }
    prefix.part = LinePrefix::Part::operand;
    std::size_t operandStart = at;
    std::size_t wordStart = at;
    for (; at < text.size(); ++at) {
        const bool isString = prefix.part == LinePrefix::Part::string;
        if (text[at] == '"') {
            prefix.part = isString ? LinePrefix::Part::operand : LinePrefix::Part::string;
        } else if (text[at] == ',' && !isString) {
            ++prefix.operand;
            operandStart = at + 1;
        }
        if (!HasClass(text[at], CC_NAME)) {
            wordStart = at + 1;
        }
    }
    prefix.operandText = WithoutLeadingBlanks(text.substr(operandStart));
    prefix.word = text.substr(wordStart);
    return prefix;
}

}  // namespace korv
