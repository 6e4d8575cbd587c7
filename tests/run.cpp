#include "run.h"

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "driver/process.h"

namespace korv_test {
namespace fs = std::filesystem;

namespace {

// The file that a run with `arguments` is to write.
std::string TargetName(const std::vector<std::string>& arguments) {
    std::vector<std::string> names;
    bool isBinary = false;
    for (const std::string& word : arguments) {
        const bool isSwitch = word[0] == '-' || (word[0] == '/' && word.rfind('/') == 0);
        isBinary = isBinary || word.substr(1) == "b";
        if (!isSwitch) {
            names.push_back(word);
        }
    }
    if (names.size() > 1) {
        return names[1];
    }
    const fs::path source = names.empty() ? "Main.Kor" : names[0];
    return (source.parent_path() / source.stem()).string() + (isBinary ? ".bin" : ".com");
}

}  // namespace

RunResult RunKorv(const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {"korv"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    std::fflush(stdout);
    std::FILE* const capture = std::tmpfile();
    const int savedOutput = dup(STDOUT_FILENO);
    dup2(fileno(capture), STDOUT_FILENO);
    const int status = korv::RunProcess(static_cast<int>(argv.size()), argv.data());
    std::fflush(stdout);
    dup2(savedOutput, STDOUT_FILENO);
    close(savedOutput);

    RunResult result;
    std::rewind(capture);
    for (int c = std::fgetc(capture); c != EOF; c = std::fgetc(capture)) {
        result.console += static_cast<char>(c);
    }
    std::fclose(capture);
    if (status != 0) {
        result.console += "exit status " + std::to_string(status) + "\n";
    }
    result.target = ReadFile(TargetName(arguments));
    return result;
}

TempDir::TempDir() : previous(fs::current_path()) {
    std::string pattern = fs::temp_directory_path() / "korv-test-XXXXXX";
    path = fs::canonical(mkdtemp(pattern.data()));
    fs::current_path(path);
}

TempDir::~TempDir() {
    fs::current_path(previous);
    fs::remove_all(path);
}

std::optional<std::string> ReadFile(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    std::ostringstream contents;
    contents << file.rdbuf();
    return contents.str();
}

void WriteFile(const std::string& name, std::string_view contents) {
    if (const fs::path parent = fs::path(name).parent_path(); !parent.empty()) {
        fs::create_directories(parent);
    }
    std::ofstream(name, std::ios::binary) << contents;
}

std::string ExamplesDirectory() {
    return KORV_SOURCE_DIR "/examples";
}
std::string TestsDirectory() {
    return KORV_SOURCE_DIR "/tests";
}
std::string DocsDirectory() {
    return KORV_SOURCE_DIR "/docs";
}

std::string ToHex(std::string_view bytes) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string hex;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        hex += hex.empty() ? "" : " ";
        hex += {digits[byte >> 4], digits[byte & 15]};
    }
    return hex;
}

std::vector<std::string> SplitWords(std::string_view text) {
    std::istringstream stream{std::string(text)};
    std::vector<std::string> words;
    for (std::string word; stream >> word;) {
        words.push_back(word);
    }
    return words;
}

std::string ReplaceAll(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
    return text;
}

}  // namespace korv_test
