#include "run.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "driver/process.h"

#ifndef O_BINARY
#define O_BINARY 0
#endif

namespace korv_test {
namespace fs = std::filesystem;

std::string RunKorv(Strings arguments) {
    std::string program = "korv";
    std::vector<char*> argv = {program.data()};
    for (std::string& word : arguments) {
        argv.push_back(word.data());
    }
    const int savedOutput = dup(STDOUT_FILENO);
    CaptureConsole();
    if (const int status = korv::RunProcess(static_cast<int>(argv.size()), argv.data()); status != 0) {
        std::printf("exit status %d\n", status);
    }
    std::fflush(stdout);
    dup2(savedOutput, STDOUT_FILENO);
    close(savedOutput);
    return ReadFile("console").value_or("");
}

void CaptureConsole() {
    std::fflush(stdout);
    const int file = open("console", O_CREAT | O_TRUNC | O_WRONLY | O_BINARY, 0600);
    dup2(file, STDOUT_FILENO);
    close(file);
}

std::string RunKorvAs(Strings arguments) {
    std::string output;
    const std::string rest = RunKorvAs(std::move(arguments), &output);
    return output + rest;
}

std::string RunKorvAs(Strings arguments, std::string* output, int (*run)(int, char**)) {
    std::string program = "korv-as";
    std::vector<char*> argv = {program.data()};
    std::ranges::transform(arguments, std::back_inserter(argv), [](std::string& word) { return word.data(); });
    std::fflush(stdout);
    const int saved[] = {dup(STDOUT_FILENO), dup(STDERR_FILENO)};
    constexpr int flags = O_CREAT | O_TRUNC | O_WRONLY | O_BINARY | O_APPEND;
    const int streams[] = {open("console.out", flags, 0600), open("console.err", flags, 0600)};
    dup2(streams[0], STDOUT_FILENO);
    dup2(streams[1], STDERR_FILENO);
    EXPECT_NE(nullptr, std::freopen(fs::exists("stdin") ? "stdin" : nullDevice, "r", stdin));
    const int status = run(static_cast<int>(argv.size()), argv.data());
    std::fflush(nullptr);
    dup2(saved[0], STDOUT_FILENO);
    dup2(saved[1], STDERR_FILENO);
    for (const int handle : {saved[0], saved[1], streams[0], streams[1]}) {
        close(handle);
    }
    EXPECT_NE(nullptr, std::freopen(nullDevice, "r", stdin));  // not every system can remove an open file
    *output = ReadFile("console.out").value_or("");
    const std::string printed = ReadFile("console.err").value_or("");
    fs::remove("console.out");
    fs::remove("console.err");
    return printed + (status == 0 ? "" : "exit status " + std::to_string(status) + "\n");
}

TempDir::TempDir() : previous(fs::current_path().string()) {
    auto number = std::chrono::steady_clock::now().time_since_epoch().count();
    const std::string start = (fs::temp_directory_path() / "korv-test-").string();
    while (!fs::create_directory(start + std::to_string(number))) {
        ++number;
    }
    path = fs::canonical(start + std::to_string(number)).string();
    fs::current_path(path);
}

TempDir::~TempDir() {
    fs::current_path(previous);
    fs::remove_all(path);
}

std::string Shown(std::string text, const std::string& directory, Strings names) {
    for (std::size_t at = 0; (at = text.find("$DIR/", at)) != std::string::npos; ++at) {
        names.push_back(text.substr(at, text.find_first_of("(],'\n", at) - at));
    }
    for (const std::string& name : names) {
        text = ReplaceAll(text, name, fs::path(name).make_preferred().string());
    }
    return ReplaceAll(text, "$DIR", directory);
}

std::optional<std::string> ReadFile(const std::string& name) {
    std::ifstream file(name, name.ends_with(".Out") ? std::ios::in : std::ios::binary);
    return file ? std::optional(std::string(std::istreambuf_iterator<char>(file), {})) : std::nullopt;
}

std::map<std::string, std::string> FilesHere() {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(".")) {
        if (!entry.is_directory()) {
            const std::string name = entry.path().lexically_normal().generic_string();
            files[name] = ReadFile(name).value_or("unreadable");
        }
    }
    return files;
}

void WriteFile(const std::string& name, std::string_view contents) {
    if (const fs::path parent = fs::path(name).parent_path(); !parent.empty()) {
        fs::create_directories(parent);
    }
    std::ofstream(name, std::ios::binary) << contents;
}

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string ToHex(std::string_view bytes) {
    std::string hex;
    for (const char c : bytes) {
        hex += {"0123456789ABCDEF"[c >> 4 & 15], "0123456789ABCDEF"[c & 15]};
    }
    return hex;
}

std::string FromHex(const std::string& hex) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    }
    return bytes;
}

std::string ReplaceAll(const std::string& text, std::string_view from, std::string_view to) {
    std::string result;
    std::size_t done = 0;
    for (std::size_t at = 0; (at = text.find(from, done)) != std::string::npos;) {
        result.append(text, done, at - done) += to;
        done = at + from.size();
    }
    return result.append(text, done);
}

}  // namespace korv_test
