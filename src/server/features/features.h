/// The features. Each is a function that takes a request about a place in a snapshot and returns
/// the result as JSON. A feature that refuses a request throws a `RequestError` with the reason.
#pragma once

#include <string_view>

#include "server/snapshot.h"
#include "server/workspace.h"

namespace korv {

struct Query {
    const Snapshot& snapshot;
    std::int32_t file;  ///< index of the file that the request is about
    Place place;        ///< the position, with length 0, if the request has one
    Range range;        ///< the whole file if the request has no range
    const Json& parameters;
    Workspace& workspace;

    /// The raw line up to the position.
    [[nodiscard]] std::string_view LineBefore() const {
        return snapshot.Text(file).Line(place.line).substr(0, place.column);
    }
};

// navigation.cpp: definitions and uses of names, and renaming.
/// The definition of the name, or the file that an INCLUDE or BINCLUDE reads.
[[nodiscard]] Json Definition(const Query& query);
/// All uses and definitions of the name, including those in skipped blocks.
[[nodiscard]] Json References(const Query& query);
/// The uses and definitions of the name in the file of the request.
[[nodiscard]] Json Highlights(const Query& query);
/// The name and its range. Throws the reason if the name cannot be renamed.
[[nodiscard]] Json PrepareRename(const Query& query);
[[nodiscard]] Json Rename(const Query& query);
/// Links to the files of INCLUDE and BINCLUDE.
[[nodiscard]] Json Links(const Query& query);

// hover.cpp
/// For a name, its value, kind, definition, comment and number of uses; for a number, its value in
/// several bases; for a mnemonic, its meaning, address, bytes and T-states; for "$", the address.
[[nodiscard]] Json Hover(const Query& query);

// completion.cpp: what may be written at the cursor, in a line that need not be valid.
/// Mnemonics where one is expected; registers, conditions and names where the forms of the mnemonic
/// accept them; files after INCLUDE and BINCLUDE. Nothing in comments, or in strings that are not
/// file names.
[[nodiscard]] Json Completions(const Query& query);
/// The forms of the mnemonic that match the operands before the one at the cursor; none if the
/// cursor is not in an operand.
[[nodiscard]] Json Signatures(const Query& query);

// outline.cpp
/// The labels and constants of the file, in source order. The list is flat, because it is not
/// certain which labels are routines and which are places inside a routine.
[[nodiscard]] Json DocumentSymbols(const Query& query);
/// Adds the names of the whole program that contain `text`, without regard to case.
void AddSymbolsLike(const Snapshot& snapshot, std::string_view text, Json* symbols);
/// The blocks between IF, ELSE and ENDIF, multi-line comments, and routines. A routine is a label
/// and its code, up to the next label.
[[nodiscard]] Json FoldingRanges(const Query& query);
/// After each line that emits bytes, so no text moves: its address, optionally with the bytes.
[[nodiscard]] Json InlayHints(const Query& query);

// tokens.cpp: the kind of each word. A skipped line is shown as a comment.
[[nodiscard]] Json SemanticTokens(const Query& query);
/// The names of the token types and token modifiers.
[[nodiscard]] Json SemanticTokensLegend();

// actions.cpp
/// The message as the editor shows it.
[[nodiscard]] Json DiagnosticOf(const Snapshot& snapshot, const Message& message);
/// The fixes for the messages in the lines of the range. Then, for each of their codes that has
/// several fixes in the program, one action that applies them all.
[[nodiscard]] Json CodeActions(const Query& query);

// formatting.cpp
/// The edits that lay out lines in columns. They only replace blanks between the parts of a line,
/// so the image stays the same. Comment lines, continued lines, lines with an unknown mnemonic or
/// unclear parts, and lines that would become too long are not changed.
[[nodiscard]] Json Formatting(const Query& query);

}  // namespace korv
