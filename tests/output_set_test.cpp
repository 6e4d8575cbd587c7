// The outputs of a run when the system fails: all are there or none.

#include "frontend/output_set.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>

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

}  // namespace
}  // namespace korv_test
