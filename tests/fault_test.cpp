// Makes the system fail at each point of a run in turn, and checks the files that the run leaves.

#include <gtest/gtest.h>

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <algorithm>
#include <cctype>
#include <csignal>
#include <filesystem>
#include <map>
#include <set>

#include "faults.h"
#include "frontend/frontend.h"
#include "run.h"

namespace korv_test {
namespace {
namespace fs = std::filesystem;
using Files = std::map<std::string, std::string>;

Files FilesHere() {
    Files files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(".")) {
        if (entry.is_regular_file()) {
            const std::string name = entry.path().generic_string().substr(2);
            files[name] = *ReadFile(name);
        }
    }
    return files;
}

const std::string none = "none";  // stands for the contents of a file that does not exist

// Each file that a run writes, the message printed when it has been written, and the message printed when it cannot be
// opened. A run may also end without writing the target or the error file.
const std::tuple<std::string, std::string, std::string> written[] = {
    {"out/OUT.COM", "Binary target secured. (out/OUT.COM)\n", "Could not open out/OUT.COM.\n"},
    {"out/Debug.Out", "Debugfile written!\n", "Could not open 'debug.out'!\n"},
    {"out/Labels.Out", "Labels.Out written.\n", "Could not create file Labels.Out.\n"},
    {"Errors.Out", "Errors.Out written!\n", ""},
};
std::string consoles;  // the output of all runs

// The last line of the source, the old contents of the files above, and the kind of fault at a request.
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
        // On Windows, leaving a directory makes no request.
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
        // On Windows, a name is shown as typed if the directory cannot be searched, so the exact name is used.
        RunKorv({isWindows ? "main.kor" : "Main.Kor", "out/OUT.COM", "/d", "/l", "/m", "/f:4"});
        fs::current_path(directory.Path());  // the run may have failed to leave a directory
        console = ReplaceAll(*ReadFile("console"), "\\", "/");
        files = FilesHere();
        files.erase("console");
        for (const auto& [name, contents] : files) {
            const bool isChanged = before != none && fs::status(name).permissions() != fs::perms(0640);
            EXPECT_FALSE(isChanged && !isWindows) << name << n;
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
        if (fault == RequestFault::isBroken && !isAborted) {  // the event was too late, so it is not reported
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

// A fault at the n-th point of a run. `isEnd`: the fault may end the process.
struct Fault {
    const char* name;
    void (*cause)(int n);
    bool isEnd;
    int step = 1;  // between values of n: a run makes a thousand allocations, and each fault needs a process
};
std::ostream& operator<<(std::ostream& out, const Fault& fault) {
    return out << fault.name;
}
const Fault faults[] = {
    {"request", [](int n) { FaultFileRequest(n, RequestFault::failsOnce); }, false},
    {"requests", [](int n) { FaultFileRequest(n, RequestFault::failsForGood); }, false},
#ifndef _WIN32
    {"signal", [](int n) { FaultFileRequest(n, RequestFault::isBroken); }, true},
    {"allocation", [](int n) { FailAllocation(n, false); }, true, 7},
    {"allocations", [](int n) { FailAllocation(n, true); }, true, 11},
#endif
};

// The output and exit status of a run, and whether its fault has occurred.
struct Ending {
    std::string printed;
    bool hasCome;
};

Ending RunUnder(const Fault& fault, int n) {
#ifndef _WIN32
    if (fault.isEnd) {
        const pid_t child = fork();
        if (child == 0) {
            std::string words[] = {"korv-as", "@words"};
            char* arguments[] = {words[0].data(), words[1].data()};
            EXPECT_NE(nullptr, std::freopen("console", "w", stderr));
            std::signal(SIGINT, SIG_DFL);  // it is ignored if the tests run in the background
            fault.cause(n);
            std::exit(korv::RunFrontend(2, arguments));
        }
        int status = 0;
        waitpid(child, &status, 0);
        const std::string printed = *ReadFile("console");
        fs::remove("console");
        const std::string number = std::to_string(WEXITSTATUS(status));
        const std::string end = WIFSIGNALED(status) ? "signal" : status == 0 ? "" : "exit status " + number + "\n";
        return {printed + end, status != 0};
    }
#endif
    fault.cause(n);
    const std::string printed = RunKorvAs({"@words"});
    return {printed, FaultFileRequest(0, {})};
}

// A file whose contents are in lower case, with "/" for "\", so that all spellings of a name compare equal.
Files::value_type WithFoldedNames(Files::value_type file) {
    std::ranges::transform(file.second, file.second.begin(),
                           [](unsigned char c) { return c == '\\' ? '/' : static_cast<char>(std::tolower(c)); });
    return file;
}

class OutputFaultTest : public testing::TestWithParam<std::tuple<Fault, bool>> {};

// Either all outputs are replaced or all keep their old contents, and the messages agree with this.
TEST_P(OutputFaultTest, LeavesAllOutputsOrNone) {
    const auto& [fault, isThere] = GetParam();
    const TempDir directory;
    const std::string outputs[] = {"out/a.com", "out/a.d", "out/a.lst", "out/a.sym"};
    WriteFile("words",
              "a.kor -o out/a.com -M out/a.d -l out/a.lst --symbols out/a.sym --debug " + std::string(nullDevice));
    WriteFile("a.kor", " INCLUDE SUB\\B.KOR\nAT: DW AT,LATE\nLATE: DB 1,\n");
    WriteFile("sub/b.kor", " BINCLUDE dat\n");
    WriteFile("sub/dat", "data");
    const auto prepare = [&, hasOld = isThere] {
        fs::remove_all("out");
        fs::create_directory("out");
        for (const std::string& name : outputs) {
            hasOld ? WriteFile(name, "old") : void();
        }
        return FilesHere();
    };
    const bool isForGood = fault.name == std::string("requests");
    Files before = prepare();
    const std::string right = RunUnder(fault, 0).printed;
    Files after = FilesHere();
    const auto isRight = [&](const std::string& printed, Files files) {
        if (printed.ends_with("signal")) {
            return files == before || files == after;
        }
        if (printed == right) {  // Windows shows a name as typed if it cannot search the directory
            return std::ranges::equal(files, after, {}, WithFoldedNames, WithFoldedNames);
        }
        if (!Contains(printed, "exit status ")) {  // names are full paths, since the current directory was not found
            return files["out/a.com"] == after["out/a.com"] && files["out/a.sym"] == after["out/a.sym"] &&
                   Contains(files["out/a.d"], fs::path(directory.Path()).generic_string()) &&
                   Contains(files["out/a.lst"], directory.Path());
        }
        for (const std::string& name : outputs) {
            const bool isLost = isForGood && Contains(printed, "; cannot restore " + name);
            // The new listing then shows the error.
            const bool isListing = name == "out/a.lst" && Contains(printed, ": error: could not ");
            const bool isNew = files[name] != before[name];
            if (isNew != isLost && !(isNew && isListing)) {
                return false;
            }
            files[name] = before[name];
        }
        return files == before && Contains(printed, "error: ");
    };
    int n = 1;
    bool isReasonGiven = false;
    for (bool hasCome = true; hasCome; n += fault.step) {
        prepare();
        const Ending ending = RunUnder(fault, n);
        hasCome = ending.hasCome;
        isReasonGiven = isReasonGiven || Contains(ending.printed, "error: could not read file 'dat': ");
        ASSERT_TRUE(isRight(ending.printed, FilesHere())) << n << ending.printed << testing::PrintToString(FilesHere());
    }
    EXPECT_GT(n, 40);
    EXPECT_EQ(fault.name == std::string("request"), isReasonGiven);
}

INSTANTIATE_TEST_SUITE_P(Any, OutputFaultTest, testing::Combine(testing::ValuesIn(faults), testing::Bool()));

}  // namespace
}  // namespace korv_test
