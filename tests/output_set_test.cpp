// If the system fails, or an output is refused, either all outputs of a run are written or none.

#include "frontend/output_set.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "platform/platform.h"
#include "run.h"

namespace korv_test {
namespace {
namespace fs = std::filesystem;

TEST(OutputSetTest, WritesAllOrNoneIfARequestFails) {
    const std::vector<korv::Output> outputs = {{"a.com", "image"}, {nullDevice, "x"}, {"a.lst", "list"}, {"a.d", ""}};
    for (const bool isThere : {true, false}) {
        int failures = 0;
        for (int n = 1;; ++n) {
            const TempDir directory;
            for (const char* name : {"a.com", "a.lst", "a.d"}) {
                isThere ? WriteFile(name, "old") : void();
            }
            const auto before = FilesHere();
            korv::platform::FaultFileRequest(n, korv::platform::RequestFault::failsOnce);
            const std::string failure = korv::WriteOutputs(outputs, {});
            const bool hasCome = korv::platform::FaultFileRequest(0, {});
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

TEST(OutputSetTest, ReportsRefusalsAndFailures) {
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
        // On Windows, the text of the reason differs.
        EXPECT_EQ(isWindows ? std::string(failure).substr(0, got.find(": ")) : failure,
                  isWindows ? got.substr(0, got.find(": ")) : got);
        EXPECT_EQ((std::map<std::string, std::string>{{"a.kor", "source"}, {"sub/link", "source"}}), FilesHere());
    }
}

}  // namespace
}  // namespace korv_test
