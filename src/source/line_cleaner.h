/// The rules by which a logical line is cleaned, one byte of the file after the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "source/char_class.h"

namespace korv {

/// Where a cleaned line parts from the file: from `offset` in the line on, its characters are those
/// from `column` of physical line `line` on, up to the next break. Before the first, both begin
/// alike.
struct LineBreak {
    std::size_t offset;
    std::uint32_t line;  ///< physical lines after the first of the logical line
    std::size_t column;  ///< in bytes, from 0
};

/// The hard idea is the last significant character, which decides where trailing blanks begin and
/// whether the line goes on. It is not kept up to date per byte but found when it is asked for, by
/// walking back over blanks from the end of what has been stored. After a continuation it is the
/// place of the backslash, and the backslash stays there until something overwrites it. So an empty
/// line after a continuation continues the line again.
class LineCleaner {
  public:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);
    /// Ends a text file on some old systems; here it is dropped.
    static constexpr char endOfText = 0x1A;

    /// `line`, not owned, receives the text: with its end a character more than bytes are taken.
    /// `breaks`, not owned, receives the breaks, in order; null: they are not wanted.
    explicit LineCleaner(char* line, std::vector<LineBreak>* breaks = nullptr)
        : line(line), breaks(breaks) {
        *line = '\0';
    }
    /// The text has been moved to `newLine`, where there is more room.
    void MoveTo(char* newLine) { line = newLine; }

    /// Takes the next byte of the file. False: it is the line feed that ends the line.
    bool Take(char c) {
        ++taken;
        if (c == '\n') {
            ++lines;
            return Continues();
        }
        if (c == '\r' || c == endOfText) {
            isApart = true;
        } else {
            Store(c);
        }
        ++column;
        return true;
    }

    /// Length of the text.
    [[nodiscard]] std::size_t Length() const {
        const std::size_t last = LastSignificant();
        return isComment ? commentStart : last == none ? size : last + 1;
    }
    /// Terminates the text, with which the backslash of a continuation by nothing goes.
    void Finish() {
        line[size] = '\0';
        line[Length()] = '\0';
    }

    /// Bytes taken.
    [[nodiscard]] std::uint32_t Taken() const { return taken; }
    /// Those of them that have no place in the line any more, since it was continued.
    [[nodiscard]] std::uint32_t Released() const { return released; }
    /// Line feeds taken.
    [[nodiscard]] std::uint32_t Lines() const { return lines; }
    [[nodiscard]] std::size_t Size() const { return size; }
    [[nodiscard]] bool IsInComment() const { return isComment; }
    /// Index of the last character that is no blank; `none` if there is none.
    [[nodiscard]] std::size_t LastSignificant() const {
        std::size_t end = size;
        while (end != segment && HasClass(line[end - 1], CC_BLANK)) {
            --end;
        }
        return end == segment ? lastBefore : end - 1;
    }

  private:
    void Store(char c) {
        if (isApart) {
            isApart = false;
            AddBreak();
        }
        if (!isComment) {
            if (c == '"') {
                isString = !isString;
            } else if (c == ';' && !isString) {
                isComment = true;
                commentStart = LastSignificant() + 1;  // 0 for none
            } else if (!isString) {
                c = Raised(c);
            }
        }
        line[size++] = c;
    }

    void AddBreak() {
        if (breaks == nullptr) {
            return;
        }
        while (!breaks->empty() && breaks->back().offset >= size) {
            breaks->pop_back();
        }
        breaks->push_back({size, lines, column});
    }

    // After a line feed: whether the line goes on, with what follows in the place of the backslash.
    bool Continues() {
        const std::size_t last = LastSignificant();
        if (last == none || line[last] != '\\') {
            return false;
        }
        released += static_cast<std::uint32_t>(size - last);
        lastBefore = segment = size = last;
        column = 0;
        isApart = true;
        return true;
    }

    char* line;
    std::vector<LineBreak>* breaks;
    std::size_t size = 0;           // of what has been stored
    std::size_t segment = 0;        // where what follows the last continuation begins
    std::size_t lastBefore = none;  // last significant character before `segment`
    std::size_t commentStart = 0;
    std::size_t column = 0;  // of the next byte, in its physical line
    std::uint32_t taken = 0;
    std::uint32_t released = 0;
    std::uint32_t lines = 0;
    bool isString = false;
    bool isComment = false;
    bool isApart = false;  // the next character does not follow the one before in the file
};

}  // namespace korv
