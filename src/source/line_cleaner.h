/// The rules by which a logical line is cleaned, one byte of the file after the other.
#pragma once

#include <cstddef>
#include <cstdint>

#include "source/char_class.h"

namespace korv {

/// Ends a text file on some old systems; here it is dropped.
inline constexpr char endOfText = 0x1A;

/// The hard idea is the last significant character, which decides where trailing blanks begin and
/// whether the line goes on. It is not kept up to date per byte but found when it is asked for, by
/// walking back over blanks from the end of what has been stored. After a continuation it is the
/// place of the backslash, and the backslash stays there until something overwrites it. So an empty
/// line after a continuation continues the line again.
///
/// A caller finds the place of a character in the file by `size`: before a byte is taken, it is the
/// index in the line at which the byte is stored, and it does not grow if the byte is dropped.
struct LineCleaner {
    /// Takes the next byte of the file. False: it is the line feed that ends the line.
    bool Take(char c) {
        ++taken;
        if (c == '\n') {
            ++lines;
            return Continues();
        }
        if (c != '\r' && c != endOfText) {
            Store(c);
        }
        return true;
    }

    /// The index after the last character that is no blank; 0 for none.
    [[nodiscard]] std::size_t SignificantEnd() const {
        const char* const end = WithoutBlanks(line + segment, line + size);
        return end == line + segment ? endBefore : static_cast<std::size_t>(end - line);
    }

    /// Length of the text.
    [[nodiscard]] std::size_t Length() const {
        const std::size_t end = SignificantEnd();
        return isComment ? commentStart : end == 0 ? size : end;
    }

    /// Terminates the text. The backslash of a continuation by nothing is no part of it.
    void Finish() {
        line[size] = '\0';
        line[Length()] = '\0';
    }

    char* line;                 ///< receives the text; has room for what is taken and 1 more
    std::size_t size = 0;       ///< of what has been stored
    std::size_t segment = 0;    ///< where what follows the last continuation begins
    std::size_t endBefore = 0;  ///< what `SignificantEnd` was there
    std::size_t commentStart = 0;
    std::uint32_t taken = 0;     ///< bytes
    std::uint32_t released = 0;  ///< bytes that have lost their place in the line
    std::uint32_t lines = 0;     ///< line feeds taken
    bool isString = false;
    bool isComment = false;

  private:
    void Store(char c) {
        if (!isComment && c == '"') {
            isString = !isString;
        } else if (!isComment && !isString && c == ';') {
            isComment = true;
            commentStart = SignificantEnd();
        }
        line[size++] = isComment || isString ? c : Raised(c);
    }

    // After a line feed: whether the line goes on, with what follows in the place of the backslash.
    bool Continues() {
        const std::size_t end = SignificantEnd();
        if (end == 0 || line[end - 1] != '\\') {
            return false;
        }
        released += static_cast<std::uint32_t>(size - end + 1);
        segment = size = end - 1;
        endBefore = end;
        return true;
    }
};

}  // namespace korv
