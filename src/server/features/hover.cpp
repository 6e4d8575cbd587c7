#include "server/features/hover.h"

#include <algorithm>
#include <string>

#include "codegen/keywords.h"
#include "frontend/cycles.h"
#include "frontend/instruction_help.h"
#include "frontend/statement_view.h"
#include "server/cursor.h"
#include "server/features/value_text.h"
#include "source/char_class.h"

namespace korv {
namespace {

// A text of the source between the signs of code, which it must not end.
std::string Code(std::string_view text) {
    std::string code = "```korv\n";
    for (const char c : text) {
        code += c == '`' ? '\'' : c;
    }
    return code + "\n```";
}

std::string_view KindText(NameKind kind) {
    switch (kind) {
        case NameKind::label:
            return "label";
        case NameKind::constant:
            return "constant";
        case NameKind::commandLine:
            return "constant of the command line";
        case NameKind::internal:
            return "constant of the assembler";
        case NameKind::undefined:
            return "undefined name";
    }
    return "";
}

std::string NameText(const Snapshot& snapshot, std::int32_t number) {
    const Name& name = snapshot.analysis->names[static_cast<std::size_t>(number)];
    const Place& definition = name.definition;
    std::string text = Code(name.text + (name.hasValue ? " = " + ValueText(name.value) : ""));
    text += "\n" + std::string(KindText(name.kind));
    if (definition.IsSomewhere()) {
        text += ", defined in " + snapshot.analysis->LineName(definition);
    }
    const auto all = OccurrencesOf(snapshot, number);
    const auto uses = std::ranges::count(all, false, &NameAt::isDefinition);
    text += uses == 0   ? ", never used"
            : uses == 1 ? ", used once"
                        : ", used " + std::to_string(uses) + " times";
    if (definition.IsSomewhere()) {
        const std::string comment =
            CommentOf(*snapshot.File(definition.file).text, definition.line);
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
    const std::string bytes =
        Hex(statement.address, 4) + "H: " + BytesText(*snapshot.analysis, statement, mostBytes);
    text += "\n\n" + Code(bytes);
    const std::string cycles = CyclesText(CyclesOf(*snapshot.analysis, statement));
    return cycles.empty() ? text : text + "\n" + cycles + " T-states";
}

}  // namespace

std::string CommentOf(const StoredText& text, std::int32_t line) {
    const auto commentIn = [&text](std::int32_t number) {
        bool isString = false;
        std::string_view rest = text.Line(number);
        while (!rest.empty() && (isString || rest.front() != ';')) {
            isString = isString != (rest.front() == '"');
            rest.remove_prefix(1);
        }
        while (rest.starts_with(';')) {
            rest.remove_prefix(1);
        }
        return std::string(WithoutLeadingBlanks(rest));
    };
    if (std::string beside = commentIn(line); !beside.empty()) {
        return beside;
    }
    std::string above;
    for (--line; WithoutLeadingBlanks(text.Line(line)).starts_with(';'); --line) {
        const std::string comment = commentIn(line);
        above = comment + (above.empty() ? "" : "\n") + above;
    }
    return above;
}

std::optional<lsp::Hover> HoverAt(const Snapshot& snapshot, const Place& place) {
    if (const auto at = FindNameAt(snapshot, place)) {
        return lsp::Hover{NameText(snapshot, at->name), snapshot.RangeOf(at->place)};
    }
    const Cursor cursor(snapshot, place);
    const Statement* const statement = FindStatementAt(snapshot, place.file, place.line);
    if (statement == nullptr) {
        return std::nullopt;
    }
    const auto about = [&](std::string_view part, std::string text) {
        return lsp::Hover{std::move(text), snapshot.RangeOf(cursor.PlaceOf(part))};
    };
    if (cursor.IsOnMnemonic() && statement->keyword != nullptr) {
        return about(cursor.View().mnemonic, StatementText(snapshot, *statement));
    }
    const Token* const token = cursor.TokenHere();
    if (token == nullptr) {
        return std::nullopt;
    }
    const bool isCharacter = token->kind == TokenKind::string && token->text.size() == 3;
    if (token->kind == TokenKind::number || isCharacter) {
        return about(token->text, Code(ValueText(token->value)));
    }
    if (token->kind == TokenKind::here && !statement->isSkipped) {
        const auto address = static_cast<std::int32_t>(statement->address);
        return about(token->text, Code("$ = " + ValueText(address)));
    }
    return std::nullopt;
}

}  // namespace korv
