#include "server/features/tokens.h"

#include <algorithm>
#include <optional>

#include "frontend/logical_line.h"
#include "frontend/statement_view.h"
#include "source/char_class.h"

namespace korv {
namespace {

using lsp::SemanticToken;
using lsp::TokenType;

class Painter {
  public:
    Painter(const Snapshot& snapshot, std::int32_t file) : snapshot(snapshot), file(file) {}

    void Paint(const Statement& statement) {
        const StoredText& text = *snapshot.File(file).text;
        const LogicalLine& line = places.LineAt(text, statement.line);
        const StatementView view = CutStatement(line.text);
        current = &statement;
        if (statement.isSkipped) {
            const std::string_view raw = text.Line(statement.line);
            AddPlace({file, statement.line, 0, static_cast<std::uint32_t>(raw.size())},
                     TokenType::comment, 0);
            return;
        }
        PaintLabel(view);
        const bool isDirective = statement.kind != StatementKind::instruction;
        if (statement.keyword != nullptr) {
            Add(view, view.mnemonic, isDirective ? TokenType::macro : TokenType::keyword, 0);
        }
        for (const OperandView& operand : view.operands) {
            for (const Token& token : operand.tokens) {
                PaintToken(view, operand, token);
            }
        }
        for (std::uint32_t i = 0; i < statement.lineCount; ++i) {
            PaintComment(statement.line + static_cast<std::int32_t>(i));
        }
    }

    [[nodiscard]] std::vector<SemanticToken> Take() {
        std::ranges::sort(tokens, {}, &SemanticToken::start);
        return std::move(tokens);
    }

  private:
    void PaintLabel(const StatementView& view) {
        if (const Name* const name = NameOf(view.label)) {
            Add(view, view.label, TypeOf(*name), lsp::modifierDefinition);
        }
    }

    void PaintToken(const StatementView& view, const OperandView& operand, const Token& token) {
        switch (token.kind) {
            case TokenKind::registerName:
            case TokenKind::condition:
                if (operand.what.kind != KIND_VALUE || operand.IsIndexed()) {
                    Add(view, token.text,
                        token.kind == TokenKind::condition ? TokenType::enumMember
                                                           : TokenType::variable,
                        0);
                    break;
                }
                [[fallthrough]];  // in an expression it is a name
            case TokenKind::name:
            case TokenKind::digitName:
                if (const Name* const name = NameOf(token.text)) {
                    Add(view, token.text, TypeOf(*name),
                        name->kind == NameKind::label ? 0 : lsp::modifierReadonly);
                }
                break;
            case TokenKind::number:
            case TokenKind::largeNumber:
            case TokenKind::emptyNumber:
            case TokenKind::here:
                Add(view, token.text, TokenType::number, 0);
                break;
            case TokenKind::string:
            case TokenKind::openString:
                Add(view, token.text, TokenType::string, 0);
                break;
            case TokenKind::wordOp:
                Add(view, token.text, TokenType::operatorSign, 0);
                break;
            case TokenKind::op:
            case TokenKind::other:
                break;
        }
    }

    // The comment at the end of physical line `number`.
    void PaintComment(std::int32_t number) {
        const std::string_view raw = snapshot.Line(file, number);
        bool isString = false;
        for (std::size_t i = 0; i < raw.size(); ++i) {
            isString = isString != (raw[i] == '"');
            if (raw[i] == ';' && !isString) {
                AddPlace({file, number, static_cast<std::uint32_t>(i),
                          static_cast<std::uint32_t>(raw.size() - i)},
                         TokenType::comment, 0);
                return;
            }
        }
    }

    [[nodiscard]] const Name* NameOf(std::string_view text) const {
        const auto& names = snapshot.analysis->names;
        const auto found = std::ranges::lower_bound(names, text, {}, &Name::text);
        return found != names.end() && found->text == text ? &*found : nullptr;
    }
    static TokenType TypeOf(const Name& name) {
        return name.kind == NameKind::label ? TokenType::function : TokenType::property;
    }

    void Add(const StatementView& view, std::string_view part, TokenType type,
             std::uint32_t modifiers) {
        if (!part.empty()) {
            const LinePart at = view.PartOf(part);
            AddPlace(places.PlaceOf(file, *snapshot.File(file).text, current->line, at.offset,
                                    at.length),
                     type, modifiers);
        }
    }
    void AddPlace(const Place& place, TokenType type, std::uint32_t modifiers) {
        const Range range = snapshot.RangeOf(place);
        if (range.end.character > range.start.character) {
            tokens.push_back(
                {range.start, range.end.character - range.start.character, type, modifiers});
        }
    }

    const Snapshot& snapshot;
    std::int32_t file;
    PlaceMap places;
    const Statement* current = nullptr;
    std::vector<SemanticToken> tokens;
};

}  // namespace

std::vector<lsp::SemanticToken> SemanticTokensIn(const Snapshot& snapshot, std::int32_t file,
                                                 const Range& range) {
    Painter painter(snapshot, file);
    for (const Statement* const statement : StatementsOf(snapshot, file)) {
        const auto line = static_cast<std::uint32_t>(statement->line - 1);
        if (line + statement->lineCount > range.start.line && line <= range.end.line) {
            painter.Paint(*statement);
        }
    }
    return painter.Take();
}

}  // namespace korv
