/// The messages of a run as text: the shape that editors read, with the line and a caret.
#pragma once

#include <string>
#include <string_view>

#include "frontend/analysis.h"

namespace korv {

/// What the reader of a text is.
struct TextStyle {
    bool isColored = false;   ///< it takes the sequences for colours
    bool isTerminal = false;  ///< its control characters act, so those of sources are escaped
};

/// All messages, and how many there were, if there were any.
[[nodiscard]] std::string MessagesText(const Analysis& analysis, const TextStyle& style);

/// What is wrong, without its place and its note.
[[nodiscard]] std::string SentenceOf(const Message& message);

/// The first line of a message, with its line end: "a.kor:1:7: error: ...".
[[nodiscard]] std::string MessageLine(const Analysis& analysis, const Message& message);

/// What cannot be blamed on a line: "korv-as: error: ...", with its line end.
[[nodiscard]] std::string FailureText(std::string_view sentence, const TextStyle& style);

}  // namespace korv
