#include "server/features/tokens.h"

#include <algorithm>

#include "codegen/handlers.h"
#include "codegen/keywords.h"
#include "frontend/logical_line.h"
#include "frontend/statement_view.h"

namespace korv {
namespace {

using lsp::SemanticToken;
using lsp::TokenType;

class Painter {
  public:
    Painter(const Snapshot& snapshot, std::int32_t file) : snapshot(snapshot), file(file) {}

    void Paint(const Statement& statement) {
        current = &statement;
        if (statement.isSkipped) {
            for (std::uint32_t i = 0; i < statement.lineCount; ++i) {
                AddRest(statement.line + static_cast<std::int32_t>(i), 0);
            }
            return;
        }
        const LogicalLine& line = places.LineAt(*snapshot.File(file).text, statement.line);
        const StatementView view = CutStatement(line.text);
        if (const Name* const name = FindName(*snapshot.analysis, view.label)) {
            Add(view, view.label, TypeOf(*name), lsp::modifierDefinition);
        }
        if (view.keyword != nullptr) {
            const bool isInstruction = statement.kind == StatementKind::instruction;
            Add(view, view.mnemonic, isInstruction ? TokenType::keyword : TokenType::macro, 0);
        }
        if (view.keyword != nullptr && view.keyword->handler == AssembleInclude) {
            Add(view, view.rest, TokenType::string, 0);
        } else {
            PaintOperands(view);
        }
        PaintComments(line);
    }

    [[nodiscard]] std::vector<SemanticToken> Take() {
        std::ranges::sort(tokens, {}, &SemanticToken::start);
        return std::move(tokens);
    }

  private:
    void PaintOperands(const StatementView& view) {
        for (const OperandView& operand : view.operands) {
            for (const Token& token : operand.tokens) {
                if (!operand.HoldsAsName(token)) {
                    PaintToken(view, token);
                } else if (const Name* const name = FindName(*snapshot.analysis, token.text)) {
                    Add(view, token.text, TypeOf(*name),
                        name->kind == NameKind::label ? 0 : lsp::modifierReadonly);
                }
            }
        }
    }

    void PaintToken(const StatementView& view, const Token& token) {
        switch (token.kind) {
            case TokenKind::registerName:
                Add(view, token.text, TokenType::variable, 0);
                break;
            case TokenKind::condition:
                Add(view, token.text, TokenType::enumMember, 0);
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
            case TokenKind::other:
                if (token.text == "AF'") {
                    Add(view, token.text, TokenType::variable, 0);
                }
                break;
            case TokenKind::name:
            case TokenKind::digitName:
            case TokenKind::op:
                break;
        }
    }

    // What the cleaned line has left out at the end of each physical line, where that is a comment.
    void PaintComments(const LogicalLine& line) {
        bool isComment = false;  // one that goes on
        auto at = line.positions.begin();
        for (std::int32_t number = current->line;
             number < current->line + static_cast<std::int32_t>(current->lineCount); ++number) {
            std::size_t end = 0;  // of the text in the line
            for (; at != line.positions.end() && at->line == number; ++at) {
                end = at->column + 1;
            }
            if (!isComment) {
                end = snapshot.Line(file, number).find(';', end);
            }
            if (end != std::string_view::npos) {
                AddRest(number, static_cast<std::uint32_t>(end));
                isComment = true;
            }
        }
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
    void AddRest(std::int32_t line, std::uint32_t column) {
        const auto size = static_cast<std::uint32_t>(snapshot.Line(file, line).size());
        AddPlace({file, line, column, size - column}, TokenType::comment, 0);
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
    for (const Statement* const statement : StatementsIn(snapshot, file, range)) {
        painter.Paint(*statement);
    }
    return painter.Take();
}

}  // namespace korv
