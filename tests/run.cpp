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
        extension = word == "/b" ? ".bin" : extension;
        if (word[0] != '-' && (word[0] != '/' || word.rfind('/') != 0)) {
            names.push_back(word);
        }
    }
    names.resize(std::max<std::size_t>(names.size(), 1), "Main.Kor");
    return names.size() > 1 ? names[1] : fs::path(names[0]).replace_extension(extension).string();
}

}  // namespace

RunResult RunKorv(const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {"korv"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    const int savedOutput = dup(STDOUT_FILENO);
    CaptureConsole();
    const int status = korv::RunProcess(static_cast<int>(argv.size()), argv.data());
    std::fflush(stdout);
    dup2(savedOutput, STDOUT_FILENO);
    close(savedOutput);
    const std::string end = status == 0 ? "" : "exit status " + std::to_string(status) + "\n";
    return {ReadFile("console").value_or("") + end, ReadFile(TargetName(arguments))};
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

std::string ProjectPath(const std::string& part) {
    return KORV_SOURCE_DIR "/" + part;
}

std::vector<std::string> TablesIn(const std::string& folder) {
    std::vector<std::string> tables;
    for (const auto& entry : fs::directory_iterator(ProjectPath("tests/" + folder))) {
        tables.push_back(entry.path());
    }
    std::sort(tables.begin(), tables.end());
    return tables;
}

std::vector<Encoding> ReadEncodings(const std::string& path) {
    std::ifstream table(path);
    std::vector<Encoding> encodings;
    for (std::string line; std::getline(table, line);) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        const std::size_t equals = line.rfind(" = ");
        const std::string left = line.substr(0, equals);
        const std::size_t open = std::min(left.find('['), equals);
        const std::size_t close = std::min(left.find(']'), equals);
        std::istringstream alternatives(open < close ? left.substr(open + 1, close - open - 1)
                                                     : "");
        std::istringstream groups(ReplaceAll(line.substr(equals + 3), " ", ""));
        for (std::string alternative, bytes; std::getline(groups, bytes, '|');) {
            std::getline(alternatives, alternative, '|');
            const std::string end = open < close ? left.substr(close + 1) : "";
            encodings.push_back({left.substr(0, open) + alternative + end, bytes});
        }
    }
    return encodings;
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
