// Runs korv on arbitrary bytes. The first line contains the switches. The rest is the main source and a few more files,
// separated by FE bytes. The sanitizers detect faults within a run; the checks below examine the files that it leaves.

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>

#include "driver/process.h"
#include "fuzz.h"
#include "platform/platform.h"

namespace {
namespace fs = std::filesystem;
using Files = std::map<std::string, std::string>;  // contents by name

const fs::path directory = fs::canonical(fs::temp_directory_path()) / ("korv-fuzz-" + std::to_string(getpid()));
int filesRead = 0;

Files FilesAfterRun(std::vector<std::string> words, const Files& sources) {
    fs::remove_all(directory);
    fs::create_directory(directory);
    fs::current_path(directory);
    fs::create_symlink(".", "Sub");  // names with a directory refer to the same sources
    for (const auto& [name, contents] : sources) {
        std::ofstream(name, std::ios::binary) << contents;
    }
    std::vector<char*> argv(words.size());
    std::transform(words.begin(), words.end(), argv.begin(), [](auto& word) { return &word[0]; });
    filesRead = 0;
    const int handle = dup(STDOUT_FILENO);  // the lowest free number
    close(handle);
    Require(korv::RunProcess(static_cast<int>(argv.size()), argv.data()) == 0, "exit status");
    Require(dup(STDOUT_FILENO) == handle && close(handle) == 0, "file left open");
    Require(fs::current_path() == directory, "directory");
    Files files;
    for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
        if (std::ifstream stream(entry.path(), std::ios::binary); entry.is_regular_file()) {
            files[entry.path().filename()].assign(std::istreambuf_iterator<char>(stream), {});
        }
    }
    return files;
}

}  // namespace

extern "C" {
// One line may emit gigabytes of zeros, and a file that includes itself twice is read a thousand times; both are legal
// but slow. So the linker replaces PutZeros and Leave with the wrappers below: a call emits at most 5000 zeros, and a
// run is aborted once it has read 200 files.
std::uint32_t __real__ZN4korv8BinBlock8PutZerosEj(void*, std::uint32_t);
std::uint32_t __wrap__ZN4korv8BinBlock8PutZerosEj(void* binary, std::uint32_t count) {
    return __real__ZN4korv8BinBlock8PutZerosEj(binary, std::min(count, 5000U));
}
}

// Not extern "C", which allows only C types as results.
std::optional<std::string> RealLeave(void*) __asm__("__real__ZN4korv8platform16CurrentDirectory5LeaveB5cxx11Ev");
std::optional<std::string> WrapLeave(void*) __asm__("__wrap__ZN4korv8platform16CurrentDirectory5LeaveB5cxx11Ev");
std::optional<std::string> WrapLeave(void* directory) {
    korv::OnConsoleEvent(++filesRead == 200 ? korv::platform::EVENT_CTRL_C : -1);
    return RealLeave(directory);
}

extern "C" {
// A run may ask for a line buffer of any size. A request for a large one fails, as if memory were exhausted.
const char* __asan_default_options() {
    return "allocator_may_return_null=1:max_allocation_size_mb=64";
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream input(std::string(data, data + size));
    std::string line;
    Files sources;
    std::getline(input, line);
    for (const char* name : {"Main.Kor", "B.KOR", "C.KOR"}) {
        std::getline(input, sources[name], '\xFE');
    }
    sources["DAT"].assign(std::istreambuf_iterator<char>(input), {});

    // Switches are kept, except for help. All other words are replaced with a target that may be written.
    std::vector<std::string> words = WordsIn(line, 10, {"korv", "Main.Kor"});
    std::replace_if(
        words.begin() + 2, words.end(),
        [](const auto& word) { return word[0] != '-' || word.find_first_of("?hH") == 1; }, "Sub\\OUT.COM");
    Files files = FilesAfterRun(words, sources);
    // The size of the read buffer must not matter, and nothing may be left over from the run before.
    static std::uint32_t runs = 0;
    if (++runs % 64 == 0) {
        words.emplace_back("-f:7");
        Require(FilesAfterRun(words, sources) == files, "second run differs");
    }
    // There must be one target, or none if there are errors, and the sources must be unchanged.
    const std::size_t count = sources.size() + (files.contains("Errors.Out") ? 0 : 1);
    std::erase_if(files, [](const auto& file) { return file.first.ends_with(".Out"); });
    Require(files.size() == count, "a target too much or none");
    for (const auto& source : sources) {
        Require(files[source.first] == source.second, "source changed");
    }
    return 0;
}
}
