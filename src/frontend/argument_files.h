/// Argument files, which hold the command-line arguments of a project for `korv-as @FILE` and the
/// language server.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korv {

/// Appends the words of an argument file to `words`. Blanks and line ends separate words. As in the
/// argument files of GNU programs, '...' and "..." keep blanks, and a backslash makes the next
/// character literal, even in quotes. A line that begins with # is a comment. A byte order mark is
/// skipped. Result: empty, or an error message with the line number.
[[nodiscard]] std::string SplitWords(std::string_view text, std::vector<std::string>* words);

/// Replaces each word @NAME with the words of the file NAME, recursively. A relative NAME is
/// relative to `directory`, or to the current directory if that is empty. Result: empty, or an
/// error message.
[[nodiscard]] std::string ExpandArgumentFiles(std::vector<std::string>* words,
                                              std::string_view directory = {});

}  // namespace korv
