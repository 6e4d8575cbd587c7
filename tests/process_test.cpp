// Tests that need POSIX: child processes that fail, are interrupted or wait; owners, permissions, links.

#include "driver/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>

#include "diagnostics/report_writer.h"
#include "driver/assembler.h"
#include "faults.h"
#include "frontend/frontend.h"
#include "frontend/platform/platform.h"
#include "frontend/platform/shared.h"
#include "platform/platform.h"
#include "run.h"
#include "symbols/system_identifiers.h"

namespace korv_test {
namespace {
namespace fs = std::filesystem;

struct Outcome {
    int status;  // as set by waitpid()
    std::string console;
};

using Action = std::function<void(pid_t)>;

void Nothing(pid_t) {}

// Runs the program in a child process, where `prepare` is called first. `meanwhile` is called in this process while the
// child runs.
Outcome RunChild(Strings words, const Action& prepare, const Action& meanwhile = Nothing) {
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        alarm(60);
        CaptureConsole();
        prepare(child);
        std::exit(korv::RunProcess(static_cast<int>(argv.size()), argv.data()));
    }
    meanwhile(child);
    int status = 0;
    waitpid(child, &status, 0);
    return {status, ReadFile("console").value_or("")};
}

void Await(const std::function<bool()>& isReached) {
    for (int i = 0; i < 10000 && !isReached(); ++i) {
        usleep(1000);
    }
}

// The name makes this test run first: the other tests leave blocks of patches in this process.
TEST(FaultDeathTest, AnyAllocationMayFailOnceOrForGood) {
    const TempDir directory;
    // clang-format off
    const std::string dump =
        "Korv Status Dump.\n----------------------------------------------------\n"
        "   File depth:          2/2.\n   Conditional depth:   1.\n   Total Linecount:     0.\n"
        "   Current filename:  " + directory.Path() + "/7\nTemp string info\n----------------\n"
        "   Block Count:     2.\n     Size: 16384, Reference count:     2, IsFull: 0.\n"
        "     Size: 16384, Reference count:    15, IsFull: 1.\n"
        "Identifier manager\n------------------\n   Total Count:    " + std::to_string(korv::reservedWords.Count() + 8) +
        ".\n   Table Size:    211.\n"
        "Binary target manager\n---------------------\n   Block size:  4096.\n   Position:    4096,\n";
    // clang-format on
    const std::string death = "Could not allocate more memory! (Size=4096)\n";
    const std::string firstDeath = "[ERROR!] Failed to allocate 8192 bytes.\n" + dump + death + dump;
    const std::string use = " DW F0+" + std::string(1100, '0') + "\n";  // no block has room for 15 of these
    std::string source =
        "L0: DW F0+0,F1,F2\n" + ReplaceAll(std::string(16, 'x'), "x", use) + " IF 1\n INCLUDE 7\n ENDIF\n";
    const std::string text = " DB \"" + std::string(200, 'x') + "\"\n";
    std::string included = ReplaceAll(std::string(25, 'x'), "x", text) + " DS 20735-$\n DW 5\n";
    for (int i = 0; i < 1000; ++i) {
        source += i < 20 ? std::string(200, 'N') + std::to_string(i) + ": DW F0\n" : " DW F2\n";
        included += i < 65 ? text : "";
    }
    source += "F0: EQU F1+1\nF1: EQU F2+1\n BINCLUDE Dat.bin\nF2 LD A,F0\n";
    WriteFile("Good.Kor", source);
    WriteFile("Bad.Kor", source + " FROB\n LD A,300\n JP NOWHERE\n");
    WriteFile("7", included);
    WriteFile("Dat.bin", "data");
    Strings consoles;
    for (const auto& [name, allBehind] : {std::pair("Bad.Kor", false), {"Good.Kor", false}, {"Good.Kor", true}}) {
        const auto run = [&, file = name, all = allBehind](int n) {
            WriteFile("OUT.COM", "old");
            return RunChild({"korv", file, "OUT.COM", "/d", "/l", "/f:777", "/linelen:1233", all ? "/f:0" : "/p-"},
                            [n, all](pid_t) { FailAllocation(n, all); });
        };
        const auto results = [] { return *ReadFile("OUT.COM") + *ReadFile("Debug.Out") + *ReadFile("Labels.Out"); };
        const std::string right = run(0).console;
        const std::string rightResults = results();
        for (int n = 1, rightRuns = 0; rightRuns < 2; ++n) {  // the failure of all steps at once is silent
            const auto [status, console] = run(n);
            if (console == right) {
                ++rightRuns;
                EXPECT_TRUE(status == 0 && results() == rightResults) << n;
                continue;
            }
            SCOPED_TRACE(console);
            ASSERT_EQ("old", ReadFile("OUT.COM")) << n;
            ASSERT_TRUE(Contains(console, "[ERROR!] Failed to allocate ")) << n;
            ASSERT_EQ(Contains(console, "error X15 :") ? 0 : 255 << 8, status) << n;
            if (Contains(console, death)) {
                EXPECT_EQ(firstDeath, console.substr(console.find("[ERROR!]")));
            }
            EXPECT_FALSE(Contains(console, "allocate 20480 ")) << "all steps at once are a try";
            consoles.push_back(console);
        }
    }
    // clang-format off
    const std::string line = " : error X52 : Out of Memory.\n", noFile = "\nUhm, I DUNNO! ;p(0)" + line;
    const std::pair<std::string, std::string> rows[] = {
        // the size that could not be allocated, and the output
        {"", "Could not allocate more memory! (Size=20480)\n"},  // the image grows to hold a word
        {"", "Could not allocate memory for BinBlock.\n"}, {"", "Could not allocate more memory.\n"},
        {"", "Could not allocate memory for CPatchInfoMemBlock!\n"}, {"", "realloc error\n"},
        {"", "Could not allocate memory for CtmpStringBlock!\n"}, {"", "Could not allocate memory for lsArg!\n"},
        {" 777 ", noFile}, {" 1234 ", noFile}, {" " + std::to_string(source.size()) + " ", noFile},
        {" 777 ", "/Bad.Kor(19)" + line}, {" 4 ", "   Total Linecount:    93.\n"},
    };
    // clang-format on
    for (const auto& [size, part] : rows) {
        const auto holds = [&, bytes = size, text = part](const std::string& console) {
            return Contains(console, bytes) && Contains(console, text);
        };
        EXPECT_TRUE(std::ranges::any_of(consoles, holds)) << size << part;
    }
}

TEST(BreakTest, EndsTheRunAndLeavesTheTarget) {
    const TempDir directory;
    WriteFile("OUT.COM", "old");
    ASSERT_EQ(0, mkfifo("PIPE", 0600));
    const std::string end =
        " received! Aborting program...\n[Korv] GOT 1 ERRORS!\n"
        "Uhm, I DUNNO! ;p(0) : error X15 : Program aborted!\n---";
    const std::tuple<int, void (*)(int), std::string> rows[] = {
        {SIGINT, SIG_IGN, "*\nBreak" + end},
        {SIGQUIT, SIG_DFL, "*\nBreak" + end},
        {SIGHUP, SIG_DFL, "*\nClose" + end},
        {SIGHUP, SIG_IGN, "(3) : error X33"},  // as under nohup: the run continues
        {SIGTERM, SIG_DFL, "*\nShutdown" + end}};
    for (const auto& [signal, before, expected] : rows) {
        const auto prepare = [number = signal, handler = before](pid_t) {
            EXPECT_NE(SIG_ERR, std::signal(number, handler));
        };
        const auto breakOff = [number = signal](pid_t child) {
            const int pipe = open("PIPE", O_RDWR);
            EXPECT_EQ(6, write(pipe, " DB 1\n", 6));
            int unread = 0;
            Await([&] { return ioctl(pipe, FIONREAD, &unread) == 0 && unread == 0; });
            kill(child, number);
            EXPECT_EQ(12, write(pipe, " DB 2\n FROB\n", 12));
            close(pipe);
        };
        const auto [status, console] = RunChild({"korv", "PIPE", "OUT.COM"}, prepare, breakOff);
        EXPECT_EQ(0, status);
        EXPECT_EQ("old", ReadFile("OUT.COM"));
        EXPECT_TRUE(Contains(console, expected)) << console;
    }
}

TEST(IncludeTest, FindsWhatAppearsDuringTheRun) {
    const TempDir directory;
    ASSERT_EQ(0, mkfifo("pause", 0600));
    WriteFile("a.kor", " DB 1\n");
    WriteFile("Main.Kor", " INCLUDE A.KOR\n BINCLUDE \"pause\"\n INCLUDE B.KOR\n INCLUDE A.KOR\n");
    const auto change = [](pid_t) {
        int pause = -1;
        Await([&] { return (pause = open("pause", O_WRONLY | O_NONBLOCK)) >= 0; });
        WriteFile("b.kor", " DB 2\n");
        WriteFile("A.kor", " DB 3\n");
        close(pause);
    };
    EXPECT_EQ(0, RunChild({"korv", "Main.Kor", "OUT.COM"}, Nothing, change).status);
    EXPECT_EQ("\1\2\3", ReadFile("OUT.COM"));
}

TEST(WaitTest, TakesOneByteOfAPipe) {
    const TempDir directory;
    int ends[2];
    ASSERT_EQ(0, pipe(ends));
    EXPECT_EQ(2, write(ends[1], "ab", 2));
    close(ends[1]);
    const auto fromPipe = [&](pid_t) { dup2(ends[0], STDIN_FILENO); };
    const std::string console = RunChild({"korv", "/wait"}, fromPipe).console;
    EXPECT_TRUE(console.ends_with("\nPress a key to continue...\r" + std::string(26, ' ') + '\r'));
    char left = 0;
    EXPECT_EQ(1, read(ends[0], &left, 1));
    EXPECT_EQ(0, RunChild({"korv", "/wait"}, fromPipe).status);  // the end of the input counts as a key
    close(ends[0]);
}

TEST(WaitTest, EndsWithAnEvent) {
    const TempDir directory;
    WriteFile("Main.Kor", " NOP\n");
    int ends[2];
    ASSERT_EQ(0, pipe(ends));
    const auto breakOff = [](pid_t child) {
        Await([] { return Contains(ReadFile("console").value_or(""), "Press a key"); });
        const auto hasEnded = [child] {
            siginfo_t end = {};
            return waitid(P_PID, static_cast<id_t>(child), &end, WEXITED | WNOHANG | WNOWAIT) != 0 || end.si_pid != 0;
        };
        for (int i = 0; i < 5 && !hasEnded(); ++i) {  // an event between the prompt and the wait is too early
            kill(child, SIGTERM);
            Await(hasEnded);
        }
    };
    const auto fromPipe = [&](pid_t) { dup2(ends[0], STDIN_FILENO); };
    const auto [status, console] = RunChild({"korv", "Main.Kor", "/wait"}, fromPipe, breakOff);
    EXPECT_EQ(0, status);
    EXPECT_TRUE(Contains(console, "\rShutdown received! Aborting program...\n")) << console;
    close(ends[0]);
    close(ends[1]);
}

TEST(SettledTest, ARefusedTargetCannotBeAborted) {
    const TempDir directory;
    korv::CAssembler assembler(std::tmpfile());
    assembler.RunFromCommandLine("none", "a", "");
    EXPECT_TRUE(assembler.flags.Has(korv::RF_SETTLED));
}

// Both ends of a terminal; -1 if the system provides none.
class Terminal {
  public:
    Terminal() : keyboard(posix_openpt(O_RDWR | O_NOCTTY)) {
        const bool isReady = keyboard >= 0 && grantpt(keyboard) == 0 && unlockpt(keyboard) == 0;
        screen = isReady ? open(ptsname(keyboard), O_RDWR | O_NOCTTY) : -1;
    }
    ~Terminal() {
        close(screen);
        close(keyboard);
    }
    // The text on the screen. It may arrive in parts, so it is read up to a mark.
    [[nodiscard]] std::string Text() const {
        std::string text;
        EXPECT_EQ(1, write(screen, "\1", 1));
        for (char c; read(keyboard, &c, 1) == 1 && c != '\1';) {
            text += c;
        }
        return ReplaceAll(text, "\r\n", "\n");
    }
    int keyboard;
    int screen = -1;
};

TEST(WaitTest, TakesOneKeyOfATerminal) {
    const Terminal terminal;
    if (terminal.screen < 0) {
        GTEST_SKIP() << "No terminal can be had: " << std::strerror(errno);
    }
    const TempDir directory;
    termios before;
    ASSERT_EQ(0, tcgetattr(terminal.screen, &before));
    termios now = before;
    const auto type = [&](pid_t) {
        Await([&] { return tcgetattr(terminal.screen, &now) == 0 && now.c_lflag != before.c_lflag; });
        EXPECT_EQ(1, write(terminal.keyboard, "x", 1));  // without Return
    };
    const auto fromTerminal = [&](pid_t) { dup2(terminal.screen, STDIN_FILENO); };
    EXPECT_EQ(0, RunChild({"korv", "/wait"}, fromTerminal, type).status);
    EXPECT_EQ(0U, now.c_lflag & (ICANON | ECHO));
    ASSERT_EQ(0, tcgetattr(terminal.screen, &now));
    EXPECT_EQ(before.c_lflag, now.c_lflag);
}

// The superuser has all permissions, so some tests run as another user, in directories that everyone can use.
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
    // Shell commands before the run, the arguments after the source, a part of the console output, and a shell
    // condition that must be true afterwards.
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

// The status of a child process that calls `run`, which must end the process.
int StatusOf(const std::function<void()>& run) {
    const pid_t child = fork();
    child == 0 ? run() : void();
    int status = 0;
    waitpid(child, &status, 0);
    return status;
}

TEST(OutputTest, LeavesNothingWhenTheProcessEnds) {
    for (const bool isLast : {false, true}) {
        const TempDir directory;
        const int status = StatusOf([isLast] {
            korv::platform::OutputFile files[2];
            const bool isOpen = files[0].Open("a", {}, {}) && files[1].Open("b", {}, {});
            std::raise(SIGUSR1);  // the signal is delayed while a file is unfinished
            files[0].Write("text", 4);
            std::exit(isOpen && files[0].Commit() && (!isLast || files[1].Commit()) ? 0 : 1);
        });
        EXPECT_EQ(isLast ? SIGUSR1 : 0, status);
        EXPECT_EQ("text", ReadFile("a"));
        EXPECT_EQ(isLast ? 2 : 1, std::distance(fs::directory_iterator("."), {}));
    }
}

// A signal ends a run that waits for the reader of a pipe, unless it was ignored or blocked before.
TEST(OutputTest, ASignalEndsARunThatWaits) {
    for (const auto& [handler, end] : {std::pair(SIG_DFL, SIGHUP), {SIG_IGN, SIGTERM}}) {
        const TempDir directory;
        const int status = StatusOf([before = handler] {
            korv::platform::OutputFile file;
            sigset_t blocked = {};
            const bool isOpen = sigaddset(&blocked, SIGINT) == 0 && sigprocmask(SIG_BLOCK, &blocked, nullptr) == 0 &&
                                std::signal(SIGHUP, before) != SIG_ERR && file.Open("a", {}, {});
            std::raise(SIGINT);
            std::raise(SIGHUP);
            { const korv::platform::SignalWindow whileItWaits; }
            std::raise(SIGTERM);  // is delayed again
            std::exit(isOpen && file.Commit() ? 0 : 1);
        });
        EXPECT_EQ(end, status);
        EXPECT_EQ(end == SIGHUP, fs::is_empty("."));
    }
}

TEST(TerminalTest, GetsNoControlCharacters) {
    const Terminal terminal;
    std::FILE* const screen = terminal.screen < 0 ? nullptr : fdopen(dup(terminal.screen), "r+");
    if (screen == nullptr) {
        GTEST_SKIP() << "No terminal can be had";
    }
    const std::pair<std::string, std::string> rows[] = {
        {"a\tb\x7F~", "a\\x09b\\x7F~"},
        {"\n[Korv] \x1B[2J", "\\x0A[Korv] \\x1B[2J"},
        {"größe € 😀", "größe € 😀"},
        {"\xC2\x9F\xC2\xA0\xC2", "\\xC2\\x9F\u00A0\\xC2"},
        {"\x80\xC1\xBF\xE0\x9F\xBF\xED\xA0\x80", "\\x80\\xC1\\xBF\\xE0\\x9F\\xBF\\xED\\xA0\\x80"},
        {"\xF4\x8F\xBF\xBF\xF4\x90\x80\x80\xFF", "\xF4\x8F\xBF\xBF\\xF4\\x90\\x80\\x80\\xFF"},
        {"\xE2\x82x\xF0\x9F\x98", "\\xE2\\x82x\\xF0\\x9F\\x98"},
    };
    for (const auto& [text, shown] : rows) {
        korv::PrintTexts(screen, "<%>", {text});
        std::fflush(screen);
        EXPECT_EQ("<" + shown + ">", terminal.Text());
    }
    std::fclose(screen);
}

int RunFrontendOn(
    const std::string& line, const std::function<void()>& prepare = [] {}) {
    Strings words = Split(line, ' ');
    std::vector<char*> argv;
    std::ranges::transform(words, std::back_inserter(argv), [](std::string& word) { return word.data(); });
    prepare();
    return korv::RunFrontend(static_cast<int>(argv.size()), argv.data());
}

// Colours are printed if they are wanted, but control characters from a source are never printed.
TEST(TerminalTest, GetsColoursAndNoControlCharactersFromKorvAs) {
    const Terminal terminal;
    if (terminal.screen < 0) {
        GTEST_SKIP() << "No terminal can be had";
    }
    const TempDir directory;
    WriteFile("a.kor", " DB \"\x1B\",FOO\n");
    WriteFile("b.kor", " RET\t; WPMEM \x1B\n");
    // clang-format off
    const std::string plain = "a.kor:1:9: error: could not resolve label: 'FOO' [X12]\n DB \"\\x1B\",FOO\n           ^~~\n"
                              "korv-as: 1 error\n";
    const std::string coloured = "\x1B[1ma.kor:1:9: \x1B[31merror: \x1B[0mcould not resolve label: 'FOO' [X12]\n"
                                 " DB \"\\x1B\",FOO\n           \x1B[32m^~~\x1B[0m\nkorv-as: 1 error\n";
    const std::tuple<const char*, const char*, const char*, std::string> rows[] = {
        // TERM, NO_COLOR, the words of the run, the output
        {"xterm", nullptr, "a.kor", coloured}, {"xterm", "", "a.kor", coloured}, {"xterm", "1", "a.kor", plain},
        {"dumb", nullptr, "a.kor", plain}, {"", nullptr, "a.kor", plain}, {"xterm", nullptr, "a.kor --color never", plain},
        {"dumb", "1", "a.kor --color always", coloured}, {"xterm", "", "--\x1B", "korv-as: error: unknown option '--\\x1B'; --help lists the options\n"},
        {"xterm", "", "b.kor -o /dev/null -l -", " RET\t; WPMEM \\x1B\n"}, {"xterm", "", "b.kor -o /dev/null --debug -", "|; WPMEM \\x1B\n"}, {"xterm", "", "b.kor -o - -l /dev/null", "\xC9"},
        {"xterm", "", "b.kor -o - -l -", "two outputs to one file: standard output and standard output\n"}};
    // clang-format on
    for (const auto& [type, noColor, words, shown] : rows) {
        setenv("TERM", type, 1);
        noColor == nullptr ? unsetenv("NO_COLOR") : setenv("NO_COLOR", noColor, 1);
        const int saved[] = {dup(STDOUT_FILENO), dup(STDERR_FILENO)};
        dup2(terminal.screen, STDOUT_FILENO);
        dup2(terminal.screen, STDERR_FILENO);
        RunFrontendOn(std::string("korv-as ") + words);
        dup2(saved[0], STDOUT_FILENO);
        dup2(saved[1], STDERR_FILENO);
        close(saved[0]);
        close(saved[1]);
        const std::string got = terminal.Text();
        EXPECT_TRUE(Contains(got, shown)) << type << " " << words << "\n" << got;
    }
}

// Standard output is a full disk, unless a sign precedes the words: with "|", it is a pipe that nobody reads; with "<"
// or ">", standard input or output is closed; with ".", standard input is a directory.
TEST(FrontendProcessTest, WhyAFileCannotBeReadOrWrittenIsSaid) {
    const std::string full = ": No space left on device", denied = ": Permission denied", broken = ": Broken pipe";
    const std::string output = "write standard output", longName(4096, 'x');
    // clang-format off
    const std::pair<std::string, std::string> rows[] = {
        {"-h", output + full}, {"-V", output + full}, {"a.kor -o -", output + full}, {"| -h", output + broken},
        {"| a.kor -o -", output + broken}, {"> a.kor -o -", output + ": it is closed"}, {"@secret.kor", "read secret.kor" + denied},
        {"< - -o old", "read standard input: it is closed"}, {". - -o old", "read standard input: Is a directory"},
        {"secret.kor", "read secret.kor" + denied}, {"SECRET.KOR", "read SECRET.KOR" + denied}, {"> a.kor -o old", "write old" + denied},
        {"a.kor -o /dev/full", "write /dev/full" + full}, {longName, "read " + longName + ": its full path cannot be determined"},
        {"< a.kor", "write a.com" + denied}};
    // clang-format on
    const AsNobody nobody;
    const TempDir directory;
    for (const char* const name : {"a.kor", "secret.kor", "old", "long"}) {
        WriteFile(name, " NOP\n");
    }
    ASSERT_EQ(0, std::system("chmod 0 secret.kor; chmod 444 old; chmod 555 ."));
    for (const auto& [words, message] : rows) {
        const char sign = words[1] == ' ' ? words[0] : '\0';
        std::string line = "korv-as " + words.substr(sign == '\0' ? 0 : 2);
        const auto run = [&line, sign] {
            int ends[2] = {};
            EXPECT_TRUE(sign != '|' || pipe(ends) == 0);
            EXPECT_TRUE(sign == '|'   ? close(ends[0]) == 0 && dup2(ends[1], STDOUT_FILENO) >= 0
                        : sign == '<' ? close(STDIN_FILENO) == 0
                        : sign == '.' ? std::freopen(".", "r", stdin) != nullptr  // a directory
                        : sign == '>' ? close(STDOUT_FILENO) == 0
                                      : std::freopen("/dev/full", "w", stdout) != nullptr);
            std::_Exit(RunFrontendOn(line));
        };
        EXPECT_EXIT(run(), testing::ExitedWithCode(2), "korv-as: error: cannot " + message + "\n$") << words;
    }
    EXPECT_EQ("", RunKorvAs({"a.kor", "-o", "long"}));  // which can only be overwritten
    EXPECT_EQ(std::string(1, '\0'), ReadFile("long"));
    EXPECT_EQ(0, std::system("chmod 755 ."));
}

// The size of a pipe is not known in advance, and a device is not searched for in other directories.
TEST(FrontendProcessTest, ReadsPipesAndDevices) {
    const TempDir directory;
    ASSERT_EQ(0, std::system("mkfifo pipe; (echo ' INCLUDE /dev/null'; printf ' NOP\\n%.0s' `seq 5000`) >pipe &"));
    std::string rule;
    EXPECT_EQ("", RunKorvAs({"pipe", "-o", "a", "-M", "-", "-I", "."}, &rule));
    EXPECT_EQ("a: \\\n  pipe \\\n  /dev/null\n\npipe:\n\n/dev/null:\n", rule);
    EXPECT_EQ(std::string(5000, '\0'), ReadFile("a"));
}

// The server reserves standard output for its messages; anything else that is printed goes to standard error.
TEST(FrontendProcessTest, AConnectionKeepsStandardOutputForItself) {
    int input[2], output[2];
    ASSERT_EQ(0, pipe(input) | pipe(output));
    char bytes[9] = {};
    const auto run = [&] {
        dup2(input[0], STDIN_FILENO);
        dup2(output[1], STDOUT_FILENO);
        korv::platform::StandardConnection connection;
        bool isRight = !connection.IsInputWaiting() && write(input[1], "ab", 2) == 2 && connection.IsInputWaiting();
        isRight = isRight && connection.Read(bytes, sizeof bytes) == 2 && bytes == std::string("ab");
        close(STDIN_FILENO);
        isRight = isRight && connection.Read(bytes, sizeof bytes) == 0 && write(STDOUT_FILENO, "stray", 5) == 5;
        std::_Exit(isRight && connection.Write("reply") ? 0 : 1);
    };
    EXPECT_EXIT(run(), testing::ExitedWithCode(0), "^stray$");
    EXPECT_EQ(5, read(output[0], bytes, sizeof bytes));
    EXPECT_EQ("reply", std::string(bytes));
    for (const int end : {input[0], input[1], output[0], output[1]}) {
        close(end);
    }
}

}  // namespace
}  // namespace korv_test
