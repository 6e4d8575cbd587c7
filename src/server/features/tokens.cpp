#include <array>

#include "codegen/handlers.h"
#include "codegen/keywords.h"
#include "frontend/logical_line.h"
#include "frontend/statement_view.h"
#include "server/features/features.h"

namespace korv {
namespace {

// The protocol's names for types and modifiers. In a token, the type is a number and the modifiers
// are bits, both in the order of the legend.
constexpr std::array typeNames = {"keyword",  "macro",  "variable", "enumMember", "function",
                                  "property", "number", "string",   "comment",    "operator"};
enum Type : std::uint32_t {
    mnemonic,
    directive,
    registerName,
    condition,
    label,
    constant,
    number,
    string,
    comment,
    operatorWord,
    none,  // not shown
};
constexpr std::array modifierNames = {"definition", "readonly"};
constexpr std::uint32_t definition = 1;
constexpr std::uint32_t readonly = 2;

Type TypeOf(const Name& name) {
    return name.kind == NameKind::label ? label : constant;
}

Type TypeOf(const Token& token) {
    switch (token.kind) {
        case TokenKind::registerName:
            return registerName;
        case TokenKind::condition:
            return condition;
        case TokenKind::number:
        case TokenKind::largeNumber:
        case TokenKind::emptyNumber:
        case TokenKind::here:
            return number;
        case TokenKind::string:
        case TokenKind::openString:
            return string;
        case TokenKind::wordOp:
            return operatorWord;
        case TokenKind::other:
            return token.text == "AF'" ? registerName : none;
        case TokenKind::name:
        case TokenKind::digitName:
        case TokenKind::op:
            return none;
    }
    return none;
}

// Collects the tokens statement by statement, in text order.
class Painter {
  public:
    Painter(const Snapshot& snapshot, std::int32_t file)
        : snapshot(snapshot), file(file), text(snapshot.Text(file)) {}

    void Paint(const Statement& statement) {
        current = &statement;
        if (statement.isSkipped) {
            for (std::int32_t line = statement.line; line <= LastLineOf(statement); ++line) {
                AddRest(line, 0);
            }
            return;
        }
        const LogicalLine& line = places.LineAt(text, statement.line);
        const StatementView view = CutStatement(line.text);
        if (const Name* const name = FindName(*snapshot.analysis, view.label)) {
            Add(view, view.label, TypeOf(*name), definition);
        }
        if (view.keyword != nullptr) {
            const bool isInstruction = statement.kind == StatementKind::instruction;
            Add(view, view.mnemonic, isInstruction ? mnemonic : directive);
        }
        if (view.keyword != nullptr && view.keyword->handler == AssembleInclude) {
            Add(view, view.rest, string);
        } else {
            PaintOperands(view);
        }
        PaintComments(line);
    }

    [[nodiscard]] const std::vector<std::uint32_t>& Data() const { return data; }

  private:
    void PaintOperands(const StatementView& view) {
        for (const OperandView& operand : view.operands) {
            for (const Token& token : operand.tokens) {
                if (!operand.HoldsAsName(token)) {
                    Add(view, token.text, TypeOf(token));
                } else if (const Name* const name = FindName(*snapshot.analysis, token.text)) {
                    Add(view, token.text, TypeOf(*name),
                        name->kind == NameKind::label ? 0 : readonly);
                }
            }
        }
    }

    // Adds the comments at the ends of the physical lines. The cleaned line does not contain them.
    void PaintComments(const LogicalLine& line) {
        bool isComment = false;  // continued from the line before
        auto at = line.positions.begin();
        for (std::int32_t each = current->line; each <= LastLineOf(*current); ++each) {
            std::size_t end = 0;  // of the statement in this line
            for (; at != line.positions.end() && at->line == each; ++at) {
                end = at->column + 1;
            }
            if (!isComment) {
                end = text.Line(each).find(';', end);
            }
            if (end != std::string_view::npos) {
                AddRest(each, static_cast<std::uint32_t>(end));
                isComment = true;
            }
        }
    }

    void Add(const StatementView& view, std::string_view part, Type type,
             std::uint32_t modifiers = 0) {
        if (!part.empty() && type != none) {
            const LinePart at = view.PartOf(part);
            AddPlace(places.PlaceOf(file, text, current->line, at.offset, at.length), type,
                     modifiers);
        }
    }
    void AddRest(std::int32_t line, std::uint32_t column) {
        AddPlace(snapshot.RestOf(file, line, column), comment, 0);
    }
    // Each token is five numbers. Its line is relative to the previous token, and so is its column
    // if both are on the same line.
    void AddPlace(const Place& place, Type type, std::uint32_t modifiers) {
        const auto [start, end] = snapshot.RangeOf(place);
        if (start < end) {
            const std::uint32_t lines = start.line - last.line;
            data.insert(data.end(), {lines, start.character - (lines == 0 ? last.character : 0),
                                     end.character - start.character, type, modifiers});
            last = start;
        }
    }

    const Snapshot& snapshot;
    std::int32_t file;
    const StoredText& text;
    PlaceMap places;
    const Statement* current = nullptr;
    std::vector<std::uint32_t> data;
    Position last;  // the start of the last token
};

}  // namespace

Json SemanticTokensLegend() {
    return {{"tokenTypes", typeNames}, {"tokenModifiers", modifierNames}};
}

Json SemanticTokens(const Query& query) {
    Painter painter(query.snapshot, query.file);
    for (const Statement* const each : StatementsIn(query.snapshot, query.file, query.range)) {
        painter.Paint(*each);
    }
    return {{"data", painter.Data()}};
}

}  // namespace korv
