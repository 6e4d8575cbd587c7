// What a run leaves when the system fails it: each request that it makes fails in turn.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "faults.h"
#include "run.h"

namespace korv_test {
namespace {
namespace fs = std::filesystem;
using Files = std::map<std::string, std::string>;

const std::string none = "none";  // instead of the contents of a file that is not there

// The files that a run writes, and what it says of each that is there, or cannot be opened. A
// target may be refused, and of errors there may be none.
const std::tuple<std::string, std::string, std::string> written[] = {
    {"out/OUT.COM", "Binary target secured. (out/OUT.COM)\n", "Could not open out/OUT.COM.\n"},
    {"out/Debug.Out", "Debugfile written!\n", "Could not open 'debug.out'!\n"},
    {"out/Labels.Out", "Labels.Out written.\n", "Could not create file Labels.Out.\n"},
    {"Errors.Out", "Errors.Out written!\n", ""},
};
std::string consoles;  // of all runs

// The last line of the source, what stood at the place of those files, what happens to a request.
using Row = std::tuple<std::string, std::string, RequestFault>;
class FaultTest : public testing::TestWithParam<Row> {
  public:
    static void TearDownTestSuite() {
        for (const char* message :
             {"[Korv] Could not write out/OUT.COM.\n", "[Korv] Could not write out/Debug.Out.\n",
              "[Korv] Could not write out/Labels.Out.\n", "[Korv] Could not write Errors.Out.\n",
              "[Korv] Could not open out/OUT.COM.\n",
              "/main.kor(2) : error X10 : Could not open file. [$DIR/main.kor]\n",
              "/sub/b.kor(2) : error X10 : Could not open file. [\"dat\"]\n", "Break received! Aborting program...\n",
              "(0) : error X32 : Could not get directory.\n"}) {
            EXPECT_TRUE(Contains(consoles, message)) << message;
        }
        // On Windows the way back is no request.
        EXPECT_EQ(!isWindows, Contains(consoles, "(0) : error X31 : Could not change directory. [$DIR]\n"));
    }
};

TEST_P(FaultTest, LeavesWhatItSays) {
    const auto& [lastLine, old, fault] = GetParam();
    const TempDir directory;
    const Files sources = {{"main.kor", " INCLUDE SUB\\B.KOR\nAT: DW AT\n" + lastLine},
                           {"sub/b.kor", " DB 1\n BINCLUDE \"dat\"\n DB 2\n"},
                           {"sub/dat", "data"}};
    std::string console;
    const auto run = [&, what = fault, before = old](int n) {
        Files files = sources;
        for (const auto& [name, said, denied] : written) {
            files[name] = before;
        }
        for (const auto& [name, contents] : files) {
            WriteFile(name, contents);
            fs::permissions(name, fs::perms(0640));
            contents == none ? fs::remove(name) : false;
        }
        FaultFileRequest(n, what);
        // Where the system finds it too, it has another name when it has not been looked up.
        RunKorv({isWindows ? "main.kor" : "Main.Kor", "out/OUT.COM", "/d", "/l", "/m", "/f:4"});
        fs::current_path(directory.Path());  // there may have been no way back
        console = ReplaceAll(*ReadFile("console"), "\\", "/");
        files.clear();
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(".")) {
            const std::string name = entry.path().generic_string().substr(2);
            if (entry.is_regular_file() && name != "console") {
                files[name] = *ReadFile(name);
                const bool isChanged = before != none && entry.status().permissions() != fs::perms(0640);
                EXPECT_FALSE(isChanged && !isWindows) << entry << n;
            }
        }
        return files;
    };
    const auto errors = [&] {
        const std::size_t start = std::min(console.find("[Korv] GOT"), console.size());
        return console.substr(start, console.find("---", start) - start);
    };
    Files rightFiles = run(0);
    const std::string right = console;
    const std::string rightErrors = errors();
    for (int n = 1;; ++n) {
        Files files = run(n);
        if (!FaultFileRequest(0, {})) {
            ASSERT_GT(n, 40);
            break;
        }
        SCOPED_TRACE(std::to_string(n) + console);
        for (const auto& [name, said, denied] : written) {
            const std::string now = files.try_emplace(name, none).first->second;
            files.erase(name);
            if (!Contains(console, said)) {
                ASSERT_EQ(old, now) << name;
                ASSERT_TRUE(Contains(console, denied) || Contains(console, "Could not write " + name + ".\n") ||
                            (name == "out/OUT.COM" && Contains(console, "NOT saved")));
            } else if (errors() == rightErrors) {
                ASSERT_EQ(rightFiles[name], now) << name;
            } else {
                ASSERT_NE(old, now) << name;
            }
        }
        ASSERT_EQ(sources, files);
        const bool isAborted = Contains(console, "Aborting");
        ASSERT_FALSE(isAborted && Contains(console, "secured"));
        if (fault == RequestFault::isBroken && !isAborted) {  // too late, and so it is not said
            ASSERT_EQ(right, console);
        }
        ASSERT_FALSE(Contains(console, "/main.kor]") && Contains(console, "[FROB]"));
        consoles += ReplaceAll(console, ReplaceAll(directory.Path(), "\\", "/"), "$DIR");
    }
}

INSTANTIATE_TEST_SUITE_P(Any, FaultTest,
                         testing::Combine(testing::Values("", " FROB\n"), testing::Values("old", none),
                                          testing::Values(RequestFault::failsOnce, RequestFault::failsForGood,
                                                          RequestFault::isBroken)));

}  // namespace
}  // namespace korv_test
