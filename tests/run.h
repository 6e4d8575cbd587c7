/// Running the program from a test: in this process, in an empty directory, with its console output
/// captured.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korv_test {

struct RunResult {
    std::string console;                ///< all that the run printed
    std::optional<std::string> target;  ///< bytes of the target, if there is one behind the run
};

/// Runs the program with `arguments`, in the current directory.
RunResult RunKorv(const std::vector<std::string>& arguments);

/// Enters an empty directory; leaves and removes it at the end.
class TempDir {
  public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    [[nodiscard]] const std::string& Path() const { return path; }

  private:
    std::string previous;
    std::string path;
};

std::optional<std::string> ReadFile(const std::string& name);
/// Makes the directories of `name` as well.
void WriteFile(const std::string& name, std::string_view contents);
/// The absolute paths of the project's folders.
std::string ExamplesDirectory();
std::string TestsDirectory();
std::string DocsDirectory();

std::string ToHex(std::string_view bytes);
std::vector<std::string> SplitWords(std::string_view text);
std::string ReplaceAll(std::string text, std::string_view from, std::string_view to);

}  // namespace korv_test
