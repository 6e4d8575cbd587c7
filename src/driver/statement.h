/// The record of one statement, which every handler gets.
#pragma once

#include <cstdint>
#include <string_view>

#include "expr/operands.h"

namespace korv {

/// Longest label, mnemonic or token of an expression, in characters.
inline constexpr std::size_t maxWord = 256;

struct CStatement {
    /// `line` is the buffer of the logical lines, not owned; `file` the number of the source file.
    CStatement(CAssembler* assembler, char* line, std::int32_t file)
        : text(line), fileName(file), args(assembler) {}

    char* text;                   ///< the logical line, terminated; not owned
    std::string_view label;       ///< label of the line, in `text`; without data for none
    std::uint32_t flags = 0;      ///< SF_* bits
    std::int32_t lineNumber = 0;  ///< of its first physical line, from 1
    std::int32_t fileName;        ///< number of the file, from 1
    std::uint32_t address = 0;    ///< the location counter at its start
    KO_Args args;                 ///< its operands

    [[nodiscard]] bool HasLabel() const { return label.data() != nullptr; }
};

/// Bits of `CStatement::flags`.
inline constexpr std::uint32_t SF_LABEL_DEFINED = 0x1;  ///< the label has been taken care of

}  // namespace korv
