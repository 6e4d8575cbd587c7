/// Runs the programs in the process of a test and captures their output. Also provides an empty directory for the test.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frontend/frontend.h"
#include "table.h"

namespace korv_test {

#ifdef _WIN32
inline constexpr bool isWindows = true;
inline constexpr const char* nullDevice = "NUL";
#else
inline constexpr bool isWindows = false;
inline constexpr const char* nullDevice = "/dev/null";
#endif

/// Runs korv with `arguments` in the current directory. Result: its output, which is also left in the file `console`.
std::string RunKorv(Strings arguments);
/// Runs korv-as. If the current directory contains a file `stdin`, it becomes standard input. Result: its output on
/// both streams, then its exit status if that is not 0. Leaves no file.
std::string RunKorvAs(Strings arguments);
/// The same, but stores standard output in `output`. Result: standard error, then the exit status. `run` may also be
/// RunServer of korv-ls.
std::string RunKorvAs(Strings arguments, std::string* output, int (*run)(int, char**) = korv::RunFrontend);

/// Enters a new empty directory. The destructor leaves and removes it.
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

/// `text` with each "$DIR" replaced by `directory`, and with the system's separators in "$DIR/a/b" and in `names`.
std::string Shown(std::string text, const std::string& directory, Strings names = {});

/// The contents of a file, if it exists. Line ends of a report (*.Out) are converted to line feeds.
std::optional<std::string> ReadFile(const std::string& name);
/// The contents of all files in the current directory and below it, by name.
std::map<std::string, std::string> FilesHere();
/// Writes a file, and creates the directories in `name` if they are missing.
void WriteFile(const std::string& name, std::string_view contents);

/// Redirects the standard output of this process to the file `console`.
void CaptureConsole();

bool Contains(const std::string& text, const std::string& part);
std::string ToHex(std::string_view bytes);
std::string FromHex(const std::string& hex);
std::string ReplaceAll(const std::string& text, std::string_view from, std::string_view to);

}  // namespace korv_test
