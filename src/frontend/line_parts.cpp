#include "frontend/line_parts.h"

#include <algorithm>

#include "source/char_class.h"

namespace korv {
namespace {

std::string_view Trimmed(std::string_view text) {
    text = WithoutLeadingBlanks(text);
    while (!text.empty() && HasClass(text.back(), CC_BLANK)) {
        text.remove_suffix(1);
    }
    return text;
}

// The characters at the start of `text` that `belongs` takes.
template <typename Belongs>
std::string_view Prefix(std::string_view text, Belongs belongs) {
    return {text.begin(), std::ranges::find_if_not(text, belongs)};
}

// `pattern` has no alternatives.
bool MatchesOne(std::string_view text, std::string_view pattern) {
    if (pattern.empty()) {
        return text.empty();
    }
    if (pattern.front() == '*') {
        for (std::size_t i = 0; i <= text.size(); ++i) {
            if (MatchesOne(text.substr(i), pattern.substr(1))) {
                return true;
            }
        }
        return false;
    }
    const bool isPlain = pattern.front() == '\\';
    pattern.remove_prefix(isPlain ? 1 : 0);
    if (text.empty()) {
        return false;
    }
    const char c = text.front();
    const char wanted = pattern.front();
    const bool isThere = isPlain         ? c == wanted
                         : wanted == '?' ? true
                         : wanted == '#' ? HasClass(c, CC_DIGIT)
                         : wanted == '^' ? HasClass(c, CC_LETTER)
                                         : c == wanted;
    return isThere && MatchesOne(text.substr(1), pattern.substr(1));
}

}  // namespace

LineParts SplitLine(std::string_view line) {
    LineParts parts;
    if (!line.empty() && HasClass(line.front(), CC_NAME_START)) {
        parts.label = Prefix(line, [](char c) { return HasClass(c, CC_NAME); });
        line.remove_prefix(parts.label.size());
        parts.hasColon = line.starts_with(':');
        line.remove_prefix(line.empty() ? 0 : 1);
    } else if (line.starts_with('*')) {
        line.remove_prefix(1);
    }
    line = WithoutLeadingBlanks(line);
    parts.word = Prefix(line, [](char c) { return !HasClass(c, CC_BLANK); });
    parts.rest = Trimmed(line.substr(parts.word.size()));
    if (parts.rest.empty()) {
        return parts;
    }
    bool isString = false;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= parts.rest.size(); ++i) {
        const bool isEnd = i == parts.rest.size();
        isString = isString != (!isEnd && parts.rest[i] == '"');
        if (isEnd || (parts.rest[i] == ',' && !isString)) {
            parts.operands.push_back(Trimmed(parts.rest.substr(start, i - start)));
            start = i + 1;
        }
    }
    return parts;
}

std::size_t FindWhole(std::string_view where, std::string_view text) {
    if (text.empty()) {
        return std::string_view::npos;
    }
    const auto joins = [](char a, char b) { return HasClass(a, CC_NAME) && HasClass(b, CC_NAME); };
    bool isString = false;
    for (std::size_t at = 0; at + text.size() <= where.size(); ++at) {
        const std::size_t end = at + text.size();
        if ((!isString || text.find('"') != std::string_view::npos) &&
            where.substr(at, text.size()) == text &&
            (at == 0 || !joins(where[at - 1], text.front())) &&
            (end == where.size() || !joins(text.back(), where[end]))) {
            return at;
        }
        isString = isString != (where[at] == '"');
    }
    return std::string_view::npos;
}

bool Matches(std::string_view text, std::string_view pattern) {
    for (;;) {
        std::size_t end = pattern.find('|');
        while (end != std::string_view::npos && end > 0 && pattern[end - 1] == '\\') {
            end = pattern.find('|', end + 1);
        }
        if (MatchesOne(text, pattern.substr(0, end))) {
            return true;
        }
        if (end == std::string_view::npos) {
            return false;
        }
        pattern.remove_prefix(end + 1);
    }
}

}  // namespace korv
