/// Argument files: a project keeps the words of its command line in a file, and `korv-as @FILE`,
/// CI and an editor read the same one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace korv {

/// Appends the words of an argument file to `words`. Blanks and line ends separate words. Quotes
/// are those of GNU's argument files: '...' and "..." keep blanks, and a backslash, in quotes too,
/// takes the next character as it is. A line whose first character is # is a comment. A byte order
/// mark is skipped. Result: what is wrong with the text, with its line; empty: nothing.
[[nodiscard]] std::string SplitWords(std::string_view text, std::vector<std::string>* words);

/// Puts the words of file NAME in the place of each word @NAME, also in those files; a relative
/// NAME is one in `directory`; empty: in the current one. Result: what is wrong; empty: nothing.
[[nodiscard]] std::string ExpandArgumentFiles(std::vector<std::string>* words,
                                              std::string_view directory = {});

}  // namespace korv
