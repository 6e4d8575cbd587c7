// What a run leaves when the system fails it: each request that it makes fails in turn.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <map>

#include "diagnostics/report_writer.h"
#include "platform/platform.h"
#include "run.h"

namespace korv_test {
namespace {
namespace fs = std::filesystem;
using korv::platform::RequestFault;
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
              "/sub/b.kor(2) : error X10 : Could not open file. [\"dat\"]\n",
              "(0) : error X31 : Could not change directory. [$DIR]\n", "Break received! Aborting program...\n",
              "(0) : error X32 : Could not get directory.\n"}) {
            EXPECT_TRUE(Contains(consoles, message)) << message;
        }
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
        korv::platform::FaultFileRequest(n, what);
        RunKorv({"Main.Kor", "out/OUT.COM", "/d", "/l", "/m", "/f:4"});
        fs::current_path(directory.Path());  // there may have been no way back
        console = *ReadFile("console");
        files.clear();
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(".")) {
            if (entry.is_regular_file() && entry.path() != "./console") {
                files[entry.path().string().substr(2)] = *ReadFile(entry.path());
                const bool isChanged = before != none && entry.status().permissions() != fs::perms(0640);
                EXPECT_FALSE(isChanged) << entry << n;
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
        if (!korv::platform::FaultFileRequest(0, {})) {
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
        consoles += ReplaceAll(console, directory.Path(), "$DIR");
    }
}

INSTANTIATE_TEST_SUITE_P(Any, FaultTest,
                         testing::Combine(testing::Values("", " FROB\n"), testing::Values("old", none),
                                          testing::Values(RequestFault::failsOnce, RequestFault::failsForGood,
                                                          RequestFault::isBroken)));

// The superuser may do everything, so these runs are somebody else's, in directories for all.
class AsNobody {
  public:
    AsNobody() {
        fs::current_path("/tmp");
        setenv("TMPDIR", "/tmp", 1);
        EXPECT_EQ(0, isRoot ? setreuid(nobody, 0) | seteuid(nobody) : 0);
    }
    ~AsNobody() {
        EXPECT_EQ(0, isRoot ? seteuid(0) | setreuid(0, 0) : 0);
        setenv("TMPDIR", temporary.c_str(), 1);
        fs::current_path(previous);
    }

  private:
    static constexpr uid_t nobody = 65534;
    const bool isRoot = getuid() == 0;
    const std::string temporary = fs::temp_directory_path();
    const fs::path previous = fs::current_path();
};

TEST(OutputTest, KeepsWhatIsNotItsOwn) {
    const char* const secured = "[Korv] Binary target secured. (";
    const char* const noReports = "[Korv] Could not open 'debug.out'!\nCould not create file Labels.Out.\n";
    // clang-format off
    // What a shell does before the run, the arguments after the source, a part of the console, and
    // what a shell finds true afterwards.
    const std::tuple<std::string, Strings, const char*, std::string> rows[] = {
        {"chmod 640 old", {"old"}, secured, "test `stat -c %a old` = 640 && ! grep old old"},
        {"chmod 444 old", {"old"}, "[Korv] Could not open old.\n", "grep old old"},
        {"chmod 555 .", {"old", "/d", "/l"}, noReports, "test -s old && ! grep old old"},
        {"chmod 555 .", {"new"}, "[Korv] Could not open new.\n", "test ! -e new"},
        {"ln -s old a; ln -s a b", {"b"}, secured, "test -h b -a -h a -a ! -h old && ! grep old old"},
        {"mkdir sub; ln -s sub/new a", {"a"}, secured, "test -h a -a -s sub/new"},
        {"ln -s a b; ln -s b a", {"a"}, "[Korv] Could not open a.\n", "test -h a"},
        {"ln -s /dev/null a", {"a"}, secured, "test -h a -a -c /dev/null"},
        {"echo ' DS 9999' >Main.Kor", {"old"}, "[Korv] Could not write old.\n", "grep old old && test ! -e korv*"},
        {"mkdir Debug.Out", {"a", "/d"}, "[Korv] Could not open 'debug.out'!\n", "test -s a"},
        {"mkfifo Labels.Out; cat Labels.Out >b&", {"a", "/l"}, secured, "sleep 0.1; grep user b && test -p Labels.Out"},
        {"ln -s old Debug.Out", {"a", "/d"}, secured, "test ! -h Debug.Out && grep RET Debug.Out && grep old old"},
        {"ln Main.Kor Debug.Out; ln Main.Kor Labels.Out", {"a", "/d", "/l"}, noReports, "grep RET Main.Kor"},
        {"cp old Errors.Out; echo ' BINCLUDE ERRORS.OUT\n FROB' >Main.Kor", {"a"}, "[FROB]", "grep old Errors.Out"},
        {"touch korv$PPID.tmp", {"a"}, secured, "test -s a -a ! -s korv*.tmp"},
    };
    // clang-format on
    rlimit most;
    ASSERT_EQ(0, getrlimit(RLIMIT_FSIZE, &most));
    const rlimit pages = {8192, most.rlim_max};
    for (const auto& [arrangement, words, part, truth] : rows) {
        const AsNobody nobody;
        const TempDir directory;
        WriteFile("Main.Kor", " RET\n");
        WriteFile("old", "old");
        WriteFile("console", "");
        SCOPED_TRACE(arrangement);
        ASSERT_EQ(0, std::system(arrangement.c_str()));
        Strings arguments = {"Main.Kor", "/m"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        setrlimit(RLIMIT_FSIZE, &pages);
        const std::string console = RunKorv(arguments);
        setrlimit(RLIMIT_FSIZE, &most);
        EXPECT_TRUE(Contains(console, part)) << console;
        EXPECT_EQ(0, std::system(("(" + truth + ") >console").c_str()));
        EXPECT_EQ(0, std::system("chmod 755 ."));
    }
}

TEST(OutputTest, LeavesNothingWhenTheProcessEnds) {
    for (const bool isLast : {false, true}) {
        const TempDir directory;
        const pid_t child = fork();
        if (child == 0) {
            korv::platform::OutputFile files[2];
            bool isRight = files[0].Open("a", {}, {}) && files[1].Open("b", {}, {});
            std::raise(SIGUSR1);  // which waits as long as a file is unfinished
            files[0].Write("text", 4);
            isRight = isRight && files[0].Commit() && (!isLast || files[1].Commit());
            std::exit(isRight ? 0 : 1);
        }
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_EQ(isLast ? SIGUSR1 : 0, status);
        EXPECT_EQ("text", ReadFile("a"));
        EXPECT_EQ(isLast ? 2 : 1, std::distance(fs::directory_iterator("."), {}));
    }
}

TEST(TerminalTest, GetsNoControlCharacters) {
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    const bool isReady = master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0;
    std::FILE* const terminal = isReady ? fdopen(open(ptsname(master), O_RDWR | O_NOCTTY), "r+") : nullptr;
    if (terminal == nullptr) {
        GTEST_SKIP() << "No terminal can be had";
    }
    const std::pair<std::string, std::string> rows[] = {
        {"a\tb\x7F~", "a\\x09b\\x7F~"},
        {"\n[Korv] \x1B[2J", "\\x0A[Korv] \\x1B[2J"},
        {"gr\xC3\xB6\xC3\x9F"
         "e \xE2\x82\xAC \xF0\x9F\x98\x80",
         "größe € 😀"},
        {"\xC2\x9F\xC2\xA0\xC2", "\\xC2\\x9F\u00A0\\xC2"},
        {"\x80\xC1\xBF\xE0\x9F\xBF\xED\xA0\x80", "\\x80\\xC1\\xBF\\xE0\\x9F\\xBF\\xED\\xA0\\x80"},
        {"\xF4\x8F\xBF\xBF\xF4\x90\x80\x80\xFF", "\xF4\x8F\xBF\xBF\\xF4\\x90\\x80\\x80\\xFF"},
        {"\xE2\x82x\xF0\x9F\x98", "\\xE2\\x82x\\xF0\\x9F\\x98"},
    };
    for (const auto& [text, shown] : rows) {
        korv::PrintTexts(terminal, "<%>", {text});
        std::fflush(terminal);
        std::string got(256, '\0');
        got.resize(static_cast<std::size_t>(std::max<ssize_t>(0, read(master, got.data(), got.size()))));
        EXPECT_EQ("<" + shown + ">", got);
    }
    std::fclose(terminal);
    close(master);
}

}  // namespace
}  // namespace korv_test
