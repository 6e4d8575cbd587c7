/// Running the program from a test: in this process, in an empty directory, with its console output captured.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "table.h"

namespace korv_test {

#ifdef _WIN32
inline constexpr bool isWindows = true;
inline constexpr const char* nullDevice = "NUL";
#else
inline constexpr bool isWindows = false;
inline constexpr const char* nullDevice = "/dev/null";
#endif

/// Runs the program with `arguments`, in the current directory. Result: what it printed, which a file `console` there
/// holds too.
std::string RunKorv(Strings arguments);
/// The same for korv-as, where a file `stdin` in the current directory is the input: what it printed on both streams,
/// then its exit status if that is not 0. No file stays.
std::string RunKorvAs(Strings arguments);
/// The same with standard output in `output`. Result: the rest.
std::string RunKorvAs(Strings arguments, std::string* output);

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

/// `text` with `directory` for each "$DIR", and "$DIR/a/b", like each of `names`, as the system writes it.
std::string Shown(std::string text, const std::string& directory, Strings names = {});

/// A report, which is a file *.Out, with the line ends of all systems.
std::optional<std::string> ReadFile(const std::string& name);
/// Makes the directories of `name` as well.
void WriteFile(const std::string& name, std::string_view contents);

/// Sends what this process prints to the file `console`.
void CaptureConsole();

bool Contains(const std::string& text, const std::string& part);
std::string ToHex(std::string_view bytes);
std::string FromHex(const std::string& hex);
std::string ReplaceAll(const std::string& text, std::string_view from, std::string_view to);

}  // namespace korv_test
