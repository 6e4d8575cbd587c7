/// What is at a place of a file: the statement there, and the part of it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "frontend/logical_line.h"
#include "frontend/statement_view.h"
#include "server/snapshot.h"

namespace korv {

class Cursor {
  public:
    /// `snapshot` is not owned.
    Cursor(const Snapshot& snapshot, const Place& place);
    Cursor(const Cursor&) = delete;
    Cursor& operator=(const Cursor&) = delete;

    /// The statement whose line the place is in.
    [[nodiscard]] const StatementView& View() const { return view; }
    [[nodiscard]] bool IsOnMnemonic() const { return IsOn(view.mnemonic); }
    /// The token at the place; null for none.
    [[nodiscard]] const Token* TokenHere() const;
    /// The place in the file of `part`, a view of the statement.
    [[nodiscard]] Place PlaceOf(std::string_view part) const;

  private:
    [[nodiscard]] bool IsOn(std::string_view part) const;

    const Snapshot& snapshot;
    std::int32_t file;
    std::int32_t firstLine;  // of the logical line
    LogicalLine line;
    StatementView view;      // of `line`
    std::size_t offset = 0;  // of the place in the cleaned line; npos: it is not in it
};

/// The text from the start of a line up to the cursor, as far as the line has been written: what
/// may follow depends on it. Works for lines that do not assemble.
struct LinePrefix {
    enum class Part : std::uint8_t { label, mnemonic, operand, string, comment };
    Part part = Part::label;       ///< in which the cursor is
    std::string mnemonic;          ///< in capitals; complete if the cursor is after it
    std::size_t operand = 0;       ///< index of the operand, if the cursor is in one
    std::string_view operandText;  ///< of that operand, up to the cursor
    std::string_view word;         ///< the unfinished word before the cursor, in `text`
};
/// `text` is the raw line up to the cursor; the views are of it.
[[nodiscard]] LinePrefix CutPrefix(std::string_view text);

}  // namespace korv
