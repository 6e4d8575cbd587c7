/// The record of one statement, passed to every handler.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

#include "diagnostics/source_place.h"
#include "expr/operands.h"

namespace korv {

/// Maximum length of a label, a mnemonic or a token of an expression, in characters.
inline constexpr std::size_t maxWord = 256;

struct CStatement {
    /// `line` is the buffer for the logical lines and is not owned. `file` is the number of the
    /// source file.
    CStatement(CAssembler* assembler, char* line, std::int32_t file)
        : text(line), fileName(file), args(assembler) {}

    char* text;                   ///< the logical line, null-terminated; not owned
    std::string_view label;       ///< label of the line, in `text`; null data if none
    std::string_view token;       ///< the word read last, in `text`: the label, then the mnemonic
    std::uint32_t flags = 0;      ///< SF_* bits
    std::int32_t lineNumber = 0;  ///< of its first physical line, from 1
    std::int32_t fileName;        ///< number of the file, from 1
    std::uint32_t address = 0;    ///< the location counter at its start
    KO_Args args;                 ///< its operands
    const lsArg* refused = nullptr;  ///< the operand at fault, set by `Refuse`; null: the mnemonic

    [[nodiscard]] bool HasLabel() const { return label.data() != nullptr; }
    /// The character that ended `token`; 0 is the end of the line.
    [[nodiscard]] char Terminator() const { return *(token.data() + token.size()); }

    /// The place of `part`, which must be in the line.
    [[nodiscard]] SourcePlace PlaceIn(std::string_view part) const {
        return {fileName, lineNumber, static_cast<std::uint32_t>(part.data() - text),
                static_cast<std::uint32_t>(part.size())};
    }
    /// Like `PlaceIn`, for any text. If `part` is not in the line or has no data, the result is the
    /// place of the whole statement.
    [[nodiscard]] SourcePlace PlaceOf(std::string_view part) const {
        // Compared as numbers, since the part may belong to another text.
        const auto start = reinterpret_cast<std::uintptr_t>(text);
        const auto at = reinterpret_cast<std::uintptr_t>(part.data());
        return at >= start && at <= start + std::strlen(text)
                   ? PlaceIn(part)
                   : SourcePlace{.file = fileName, .line = lineNumber};
    }
};

/// Bits of `CStatement::flags`.
inline constexpr std::uint32_t SF_LABEL_DEFINED = 0x1;  ///< `DefineLabel` has been called

}  // namespace korv
