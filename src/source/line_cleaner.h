/// The rules for cleaning a logical line, applied to the file byte by byte.
#pragma once

#include <cstddef>
#include <cstdint>

#include "source/char_class.h"

namespace korv {

/// Marks the end of a text file on some old systems; it is dropped.
inline constexpr char endOfText = 0x1A;

/// The key to the rules is the last significant character. It decides where trailing blanks begin
/// and whether the line is continued. It is found only when it is needed, by walking back over
/// blanks from the end of the stored text. After a continuation, the backslash remains the last
/// significant character until other text overwrites it, so an empty line after a continuation
/// continues the line again.
///
/// A caller can use `size` to map characters of the line to the file. Before a byte is taken,
/// `size` is the index at which the byte will be stored; if the byte is dropped, `size` does not
/// grow.
struct LineCleaner {
    /// Processes the next byte of the file. False: it is the line feed that ends the line.
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

    /// The index after the last character that is not a blank; 0 for none.
    [[nodiscard]] std::size_t SignificantEnd() const {
        const char* const end = WithoutBlanks(line + segment, line + size);
        return end == line + segment ? endBefore : static_cast<std::size_t>(end - line);
    }

    /// The length of the cleaned text.
    [[nodiscard]] std::size_t Length() const {
        const std::size_t end = SignificantEnd();
        return isComment ? commentStart : end == 0 ? size : end;
    }

    /// Terminates the text. If no text follows the last continuation, its backslash is dropped.
    void Finish() {
        line[size] = '\0';
        line[Length()] = '\0';
    }

    char* line;                 ///< receives the text; needs room for all bytes taken and 1 more
    std::size_t size = 0;       ///< characters stored in `line`
    std::size_t segment = 0;    ///< start of the text after the last continuation
    std::size_t endBefore = 0;  ///< `SignificantEnd` at that continuation
    std::size_t commentStart = 0;
    std::uint32_t taken = 0;     ///< bytes
    std::uint32_t released = 0;  ///< bytes taken that are no longer in the line
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

    // Whether the line continues after a line feed. If it does, the text that follows replaces the
    // backslash.
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
