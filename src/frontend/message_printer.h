/// The messages of a run as text, in the format that editors read, with the source line and a
/// caret.
#pragma once

#include <string>
#include <string_view>

#include "frontend/analysis.h"

namespace korv {

/// How a text is printed.
struct TextStyle {
    bool isColored = false;   ///< colours are wanted
    bool isTerminal = false;  ///< control characters take effect, so those in sources are escaped
};

/// All messages and their counts; empty if there are none.
[[nodiscard]] std::string MessagesText(const Analysis& analysis, const TextStyle& style);

/// The text of a message, without its place and its note.
[[nodiscard]] std::string SentenceOf(const Message& message);

/// The first line of a message, with its line end: "a.kor:1:7: error: ...".
[[nodiscard]] std::string MessageLine(const Analysis& analysis, const Message& message);

/// A message that belongs to no line, with its line end: "korv-as: error: ...".
[[nodiscard]] std::string FailureText(std::string_view sentence, const TextStyle& style);

}  // namespace korv
