// The outputs of a run when the system fails, or refuses one of them: all are there or none.

#include "frontend/output_set.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "faults.h"
#include "platform/platform.h"
#include "run.h"

namespace korv_test {
namespace {
namespace fs = std::filesystem;

std::map<std::string, std::string> FilesHere() {
    std::map<std::string, std::string> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(".")) {
        if (entry.is_regular_file()) {
            files[entry.path().filename().string()] = *ReadFile(entry.path().string());
        }
    }
    return files;
}

TEST(OutputSetTest, LeavesAllOrNoneWhenARequestFails) {
    const std::vector<korv::Output> outputs = {{"a.com", "image"}, {nullDevice, "x"}, {"a.lst", "list"}, {"a.d", ""}};
    for (const bool isThere : {true, false}) {
        int failures = 0;
        for (int n = 1;; ++n) {
            const TempDir directory;
            for (const char* name : {"a.com", "a.lst", "a.d"}) {
                isThere ? WriteFile(name, "old") : void();
            }
            const auto before = FilesHere();
            FaultFileRequest(n, RequestFault::failsOnce);
            const std::string failure = korv::WriteOutputs(outputs, {});
            const bool hasCome = FaultFileRequest(0, {});
            const auto files = FilesHere();
            ASSERT_EQ(3U, failure.empty() ? files.size() : 3U);
            ASSERT_TRUE(failure.empty() ? files.at("a.com") == "image" && files.at("a.lst") == "list" : files == before)
                << n << failure;
            failures += failure.empty() ? 0 : 1;
            if (!hasCome) {
                break;
            }
        }
        EXPECT_GT(failures, 10);
    }
}

TEST(OutputSetTest, SaysWhatItRefusesAndWhyItFails) {
    const TempDir directory;
    WriteFile("a.kor", "source");
    fs::create_directory("sub");
    fs::create_hard_link("a.kor", "sub/link");
    korv::platform::InputFile source;
    ASSERT_TRUE(source.Open("a.kor"));
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"a.com", "sub/link", "refusing to overwrite sub/link: it is an input of this run"},
        {"a.com", "./a.com", "refusing to write two outputs to one file: a.com and ./a.com"},
        {"-", "-", "refusing to write two outputs to one file: standard output and standard output"},
        {"a.com", "no/list", "cannot write no/list: No such file or directory"},
        {"a.com", "sub", "cannot write sub: Is a directory"},
    };
    for (const auto& [first, second, failure] : rows) {
        const std::string got = korv::WriteOutputs({{first, "1"}, {second, "2"}}, {source.Identity()});
        // Windows has its own words for the reason.
        EXPECT_EQ(isWindows ? std::string(failure).substr(0, got.find(": ")) : failure,
                  isWindows ? got.substr(0, got.find(": ")) : got);
        EXPECT_EQ((std::map<std::string, std::string>{{"a.kor", "source"}}), FilesHere());
    }
}

}  // namespace
}  // namespace korv_test
