#include "run.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
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
    const char* extension = ".com";
    for (const std::string& word : arguments) {
        if (word[0] != '-' && (word[0] != '/' || word.rfind('/') != 0)) {
            names.push_back(ReplaceAll(word, "\\", "/"));
        } else if (word.find_first_of("bB") == 1) {
            extension = word.ends_with('-') ? ".com" : ".bin";
        }
    }
    names.resize(std::max<std::size_t>(names.size(), 2));
    fs::path source = names[0].empty() ? "Main.Kor" : names[0];
    return names[1].empty() ? source.replace_extension(extension).string() : names[1];
}

}  // namespace

RunResult RunKorv(const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {"korv"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    const std::string target = TargetName(arguments);
    const auto before = ReadFile(target);
    const int savedOutput = dup(STDOUT_FILENO);
    CaptureConsole();
    const int status = korv::RunProcess(static_cast<int>(argv.size()), argv.data());
    std::fflush(stdout);
    dup2(savedOutput, STDOUT_FILENO);
    close(savedOutput);
    const std::string end = status == 0 ? "" : "exit status " + std::to_string(status) + "\n";
    return {ReadFile("console").value_or("") + end, target, before, ReadFile(target)};
}

void CaptureConsole() {
    std::fflush(stdout);
    const int file = open("console", O_CREAT | O_TRUNC | O_WRONLY, 0600);
    dup2(file, STDOUT_FILENO);
    close(file);
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

std::string ReplaceAll(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
    return text;
}

}  // namespace korv_test
