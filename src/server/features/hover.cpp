#include "server/features/hover.h"

#include <algorithm>
#include <bitset>
#include <string>

#include "codegen/keywords.h"
#include "diagnostics/report_writer.h"
#include "frontend/cycles.h"
#include "frontend/instruction_help.h"
#include "frontend/statement_view.h"
#include "server/cursor.h"
#include "source/char_class.h"

namespace korv {
namespace {

std::string Hex(std::uint32_t value, std::size_t digits) {
    char text[16];
    return {text, PutHex(text, value, digits)};
}

// In the bases of the language; as a character, where it is one that can be seen.
std::string ValueText(std::int32_t value) {
    const auto bits = static_cast<std::uint32_t>(value);
    const bool isByte = value >= -128 && value <= 255;
    std::string text = isByte ? Hex(bits & 0xFF, 2) : Hex(bits, 4);
    text += "H, " + std::to_string(value) + ", ";
    text += isByte ? std::bitset<8>(bits).to_string() : std::bitset<16>(bits).to_string();
    text += "B";
    if (value > ' ' && value < 0x7F) {
        text += std::string(", \"") + static_cast<char>(value) + '"';
    }
    return text;
}

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

std::string NameText(const Snapshot& snapshot, const Name& name) {
    std::string text = Code(name.text + (name.hasValue ? " = " + ValueText(name.value) : ""));
    text += "\n" + std::string(KindText(name.kind));
    if (name.definition.IsSomewhere()) {
        text += ", defined in " + snapshot.analysis->LineName(name.definition);
    }
    const std::size_t uses = DistinctPlaces(name).size();
    text += uses == 0   ? ", never used"
            : uses == 1 ? ", used once"
                        : ", used " + std::to_string(uses) + " times";
    if (name.definition.IsSomewhere()) {
        const StoredText& file = *snapshot.File(name.definition.file).text;
        if (const std::string comment = CommentOf(file, name.definition.line); !comment.empty()) {
            text += "\n\n" + Code(comment);
        }
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
    std::string bytes = Hex(statement.address, 4) + "H:";
    for (std::uint32_t i = 0; i < std::min(statement.count, mostBytes); ++i) {
        bytes += " " + Hex(snapshot.analysis->image[statement.offset + i], 2);
    }
    bytes += statement.count > mostBytes ? " ..." : "";
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
        const Name& name = snapshot.analysis->names[static_cast<std::size_t>(at->name)];
        return lsp::Hover{NameText(snapshot, name), snapshot.RangeOf(at->place)};
    }
    const Cursor cursor(snapshot, place);
    const Statement* const statement = FindStatementAt(snapshot, place.file, place.line);
    if (cursor.IsOnMnemonic() && statement != nullptr && statement->keyword != nullptr) {
        return lsp::Hover{StatementText(snapshot, *statement),
                          snapshot.RangeOf(cursor.PlaceOf(cursor.View().mnemonic))};
    }
    const Token* const token = cursor.TokenHere();
    if (token == nullptr) {
        return std::nullopt;
    }
    const Range range = snapshot.RangeOf(cursor.PlaceOf(token->text));
    if (token->kind == TokenKind::number) {
        return lsp::Hover{Code(ValueText(token->value)), range};
    }
    if (token->kind == TokenKind::here && statement != nullptr) {
        const auto address = static_cast<std::int32_t>(statement->address);
        return lsp::Hover{Code("$ = " + ValueText(address)), range};
    }
    return std::nullopt;
}

}  // namespace korv
