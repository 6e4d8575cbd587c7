#include <algorithm>
#include <array>

#include "codegen/keywords.h"
#include "frontend/cycles.h"
#include "frontend/instruction_help.h"
#include "frontend/logical_line.h"
#include "frontend/statement_view.h"
#include "server/features/features.h"
#include "server/features/value_text.h"
#include "source/char_class.h"

namespace korv {
namespace {

// `text` as a Markdown code block. Three backquotes in it would end the block.
std::string Code(std::string text) {
    std::ranges::replace(text, '`', '\'');
    return "```korv\n" + text + "\n```";
}

// Indexed by `NameKind`.
constexpr std::array kindTexts = {"label", "constant", "constant of the command line",
                                  "constant of the assembler", "undefined name"};

// A line's comment, without leading semicolons; empty if there is none.
std::string CommentIn(std::string_view line) {
    line.remove_prefix(CommentStart(line));
    line.remove_prefix(std::min(line.find_first_not_of(';'), line.size()));
    return std::string(WithoutLeadingBlanks(line));
}

// The comment at the end of line `number`, or else the comment in the lines directly above.
std::string CommentOf(const StoredText& text, std::int32_t number) {
    std::string comment = CommentIn(text.Line(number));
    if (!comment.empty()) {
        return comment;
    }
    while (--number > 0 && WithoutLeadingBlanks(text.Line(number)).starts_with(';')) {
        comment = CommentIn(text.Line(number)) + (comment.empty() ? "" : "\n") + comment;
    }
    return comment;
}

std::string NameText(const Snapshot& snapshot, const Name& name) {
    const Place& definition = name.definition;
    std::string text = Code(name.text + (name.hasValue ? " = " + ValueText(name.value) : ""));
    text += std::string("\n") + kindTexts.at(static_cast<std::size_t>(name.kind));
    if (definition.IsSomewhere()) {
        text += ", defined in " + snapshot.analysis->LineName(definition);
    }
    const auto all = OccurrencesOf(snapshot, &name);
    const auto uses = std::ranges::count(all, false, &NameAt::isDefinition);
    text += uses == 0   ? ", never used"
            : uses == 1 ? ", used once"
                        : ", used " + std::to_string(uses) + " times";
    if (definition.IsSomewhere()) {
        const std::string comment = CommentOf(snapshot.Text(definition.file), definition.line);
        text += comment.empty() ? "" : "\n\n" + Code(comment);
    }
    return text;
}

std::string StatementText(const Snapshot& snapshot, const Statement& statement) {
    constexpr std::uint32_t mostBytes = 16;
    std::string text(HelpFor(*statement.keyword));
    if (statement.isSkipped) {
        return text + "\n\nThis line is not assembled: a condition skips it.";
    }
    if (statement.count == 0) {
        return text;
    }
    text += "\n\n" + Code(Hex(statement.address, 4) +
                          "H: " + BytesText(*snapshot.analysis, statement, mostBytes));
    const std::string cycles = CyclesText(CyclesOf(*snapshot.analysis, statement));
    return cycles.empty() ? text : text + "\n" + cycles + " T-states";
}

// The text to show for a token; empty if there is none.
std::string TokenText(const Token& token, const Statement& statement) {
    const bool isCharacter = token.kind == TokenKind::string && token.text.size() == 3;
    if (token.kind == TokenKind::number || isCharacter) {
        return Code(ValueText(token.value));
    }
    if (token.kind == TokenKind::here && !statement.isSkipped) {
        return Code("$ = " + ValueText(static_cast<std::int32_t>(statement.address)));
    }
    return "";
}

}  // namespace

Json Hover(const Query& query) {
    const Snapshot& snapshot = query.snapshot;
    const auto about = [&](const Place& place, const std::string& text) -> Json {
        return {{"contents", Markdown(text)}, {"range", snapshot.RangeOf(place)}};
    };
    if (const NameAt* const at = FindNameAt(snapshot, query.place)) {
        return about(at->place, NameText(snapshot, *at->name));
    }
    const Statements here = StatementsIn(snapshot, query.file, snapshot.RangeOf(query.place));
    if (here.empty()) {
        return nullptr;
    }
    const Statement& statement = *here.front();
    const StoredText& text = snapshot.Text(query.file);
    PlaceMap places;
    const StatementView view = CutStatement(places.LineAt(text, statement.line).text);
    const auto placeOf = [&](std::string_view part) {
        const LinePart at = view.PartOf(part);
        return places.PlaceOf(query.file, text, statement.line, at.offset, at.length);
    };
    if (statement.keyword != nullptr && Covers(placeOf(view.mnemonic), query.place)) {
        return about(placeOf(view.mnemonic), StatementText(snapshot, statement));
    }
    for (const OperandView& operand : view.operands) {
        for (const Token& token : operand.tokens) {
            const std::string found = TokenText(token, statement);
            if (!found.empty() && Covers(placeOf(token.text), query.place)) {
                return about(placeOf(token.text), found);
            }
        }
    }
    return nullptr;
}

}  // namespace korv
