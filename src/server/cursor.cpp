#include "server/cursor.h"

#include <algorithm>

#include "source/char_class.h"

namespace korv {
namespace {

std::int32_t FirstLineOf(const Snapshot& snapshot, const Place& place) {
    const Statement* const statement = FindStatementAt(snapshot, place.file, place.line);
    return statement == nullptr ? place.line : statement->line;
}

}  // namespace

Cursor::Cursor(const Snapshot& snapshot, const Place& place)
    : snapshot(snapshot),
      file(place.file),
      firstLine(FirstLineOf(snapshot, place)),
      line(LogicalLineAt(*snapshot.File(place.file).text, firstLine)),
      view(CutStatement(line.text)) {
    const auto isHere = [&place](const LogicalLine::Position& position) {
        return position.line == place.line && position.column == place.column;
    };
    const auto found = std::ranges::find_if(line.positions, isHere);
    if (found != line.positions.end()) {
        offset = static_cast<std::size_t>(found - line.positions.begin());
        return;
    }
    const bool isAtEnd = !line.positions.empty() && line.positions.back().line == place.line &&
                         line.positions.back().column + 1 == place.column;
    offset = isAtEnd ? line.text.size() : std::string::npos;
}

bool Cursor::IsOn(std::string_view part) const {
    const LinePart at = view.PartOf(part);
    return !part.empty() && offset != std::string::npos && offset >= at.offset &&
           offset <= at.offset + at.length;
}

const Token* Cursor::TokenHere() const {
    for (const OperandView& operand : view.operands) {
        for (const Token& token : operand.tokens) {
            if (IsOn(token.text)) {
                return &token;
            }
        }
    }
    return nullptr;
}

Place Cursor::PlaceOf(std::string_view part) const {
    const LinePart at = view.PartOf(part);
    PlaceMap places;
    return places.PlaceOf(file, *snapshot.File(file).text, firstLine, at.offset, at.length);
}

LinePrefix CutPrefix(std::string_view text) {
    LinePrefix prefix;
    std::size_t at = 0;
    const auto isBlank = [&] { return HasClass(text[at], CC_BLANK); };
    const auto skip = [&](auto isWanted) {
        while (at < text.size() && isWanted()) {
            ++at;
        }
    };
    skip([&] { return HasClass(text[at], CC_NAME); });
    prefix.word = text.substr(0, at);
    if (at == text.size()) {
        return prefix;
    }
    at += at != 0 ? 1 : 0;  // the colon
    skip(isBlank);
    const std::size_t start = at;
    skip([&] { return !isBlank() && text[at] != ';' && text[at] != '"'; });
    prefix.word = text.substr(start, at - start);
    prefix.mnemonic = Raised(prefix.word);
    prefix.part = LinePrefix::Part::mnemonic;
    if (at == text.size()) {
        return prefix;
    }
    std::size_t operandStart = at;
    std::size_t wordStart = at;
    bool isString = false;
    for (; at < text.size(); ++at) {
        const char c = text[at];
        isString = isString != (c == '"');
        if (!isString && c == ';') {
            prefix.part = LinePrefix::Part::comment;
            prefix.word = {};
            return prefix;
        }
        if (!isString && c == ',') {
            ++prefix.operand;
            operandStart = at + 1;
        }
        if (!HasClass(c, CC_NAME)) {
            wordStart = at + 1;
        }
    }
    prefix.part = isString ? LinePrefix::Part::string : LinePrefix::Part::operand;
    prefix.operandText = WithoutLeadingBlanks(text.substr(operandStart));
    prefix.word = text.substr(std::min(wordStart, text.size()));
    return prefix;
}

}  // namespace korv
