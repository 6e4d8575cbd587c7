/// What the features of the language server give, as plain data. protocol.cpp turns it into JSON,
/// and is the only file that knows JSON.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "server/text_position.h"

namespace korv::lsp {

/// A part of a file, by its full path.
struct Location {
    std::string path;
    Range range;
};

struct TextEdit {
    Range range;
    std::string newText;
};
/// Changes by the full paths of their files.
using WorkspaceEdit = std::map<std::string, std::vector<TextEdit>>;

struct RelatedInformation {
    Location location;
    std::string message;
};

struct Diagnostic {
    Range range;
    bool isError = true;  ///< else a warning
    std::string code;
    std::string message;  ///< the text as korv-as prints it, with its notes
    std::vector<RelatedInformation> related;
};

struct Hover {
    std::string markdown;
    Range range;  ///< what it is about
};

struct PreparedRename {
    Range range;
    std::string name;
};

/// Numbers of the protocol.
enum class CompletionKind : std::uint8_t {
    function = 3,
    variable = 6,
    keyword = 14,
    file = 17,
    constant = 21,
    operatorSign = 24,
};

struct CompletionItem {
    std::string label;
    CompletionKind kind = CompletionKind::keyword;
    std::string detail;         ///< shown beside it
    std::string documentation;  ///< markdown
    std::string sortText;       ///< empty: `label`
};

struct Signature {
    std::string label;                    ///< "LD A,(nn)"
    std::vector<std::string> parameters;  ///< parts of `label`, in its order
    std::string documentation;
};
struct SignatureHelp {
    std::vector<Signature> signatures;
    std::uint32_t activeSignature = 0;
    std::uint32_t activeParameter = 0;
};

enum class SymbolKind : std::uint8_t { function = 12, variable = 13, constant = 14 };

struct DocumentSymbol {
    std::string name;
    std::string detail;
    SymbolKind kind = SymbolKind::function;
    Range range;           ///< all that belongs to it
    Range selectionRange;  ///< its name
    std::vector<DocumentSymbol> children;
};
struct WorkspaceSymbol {
    std::string name;
    SymbolKind kind = SymbolKind::function;
    Location location;
};

enum class HighlightKind : std::uint8_t { read = 2, write = 3 };
struct DocumentHighlight {
    Range range;
    HighlightKind kind = HighlightKind::read;
};

/// Types and modifiers of tokens, in the order of the legend.
enum class TokenType : std::uint8_t {
    keyword,     ///< mnemonic
    macro,       ///< directive
    variable,    ///< register
    enumMember,  ///< condition
    function,    ///< label
    property,    ///< constant
    number,
    string,
    comment,
    operatorSign,
};
inline constexpr std::string_view tokenTypeNames[] = {
    "keyword",  "macro",  "variable", "enumMember", "function",
    "property", "number", "string",   "comment",    "operator"};
inline constexpr std::uint32_t modifierDefinition = 1;
inline constexpr std::uint32_t modifierReadonly = 2;
inline constexpr std::string_view tokenModifierNames[] = {"definition", "readonly"};

/// On one line.
struct SemanticToken {
    Position start;
    std::uint32_t length = 0;  ///< in units of the encoding
    TokenType type = TokenType::keyword;
    std::uint32_t modifiers = 0;
};

struct FoldingRange {
    std::uint32_t startLine = 0;
    std::uint32_t endLine = 0;
    bool isComment = false;  ///< else a region
};

struct InlayHint {
    Position position;
    std::string label;
};

struct CodeAction {
    std::string title;
    WorkspaceEdit edit;
    std::optional<Diagnostic> diagnostic;  ///< which it fixes
    bool isPreferred = false;
};

struct DocumentLink {
    Range range;
    std::string path;  ///< full path of the target
};

struct FormattingOptions {
    std::uint32_t tabSize = 8;
    bool insertSpaces = true;
};

/// Why a request is refused, for a person.
struct Refusal {
    std::string message;
};

}  // namespace korv::lsp
