#include "driver/process.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string_view>

#include "driver/assembler.h"
#include "driver/command_line.h"
#include "platform/platform.h"

namespace korv {
namespace {

// The run in progress, null at all other times. Only the hooks use it. Atomic, since a console
// event may occur at any moment.
std::atomic<CAssembler*> theAssembler = nullptr;
// A console event has occurred, perhaps before the run.
std::atomic<bool> hasEventCome = false;

constexpr const char* title = "Brelloc Korv v" KORV_VERSION " *FAST*";

struct Event {
    int number;
    std::string_view text;
};
constexpr Event events[] = {
    {platform::EVENT_CTRL_C, "Break received! Aborting program...\n"},
    {platform::EVENT_CTRL_BREAK, "Break received! Aborting program...\n"},
    {platform::EVENT_CLOSE, "Close received! Aborting program...\n"},
    {platform::EVENT_LOGOFF, "Logoff received! Aborting program...\n"},
    {platform::EVENT_SHUTDOWN, "Shutdown received! Aborting program...\n"},
};

// Runs the assembler and returns the result of the run.
std::int32_t RunAssembler(const CommandLine& commandLine) {
    CAssembler assembler(stdout);
    theAssembler = &assembler;
    if (hasEventCome) {
        assembler.flags.Set(RF_ABORT);
    }
    assembler.SetFileBufferSize(commandLine.fileBufferRequest);
    assembler.SetLineBufferSize(commandLine.lineBufferRequest);
    const std::int32_t result = assembler.RunFromCommandLine(
        commandLine.sourceArgument, commandLine.targetArgument, commandLine.flagString);
    // The object is about to be destroyed, so no hook may use it any more.
    theAssembler = nullptr;
    platform::AwaitConsoleHandler();
    return result;
}

}  // namespace

int RunProcess(int argumentCount, char** arguments) {
    platform::OpenStandardStreams();
    const platform::AllocationFailureHook previousHook =
        platform::SetAllocationFailureHook(OnAllocationFailure);
    std::FILE* const previousStream = platform::SetMemoryFailureStream(stdout);
    [[maybe_unused]] static const int registration = std::atexit(OnExit);  // once per process
    platform::SetConsoleTitle(title);
    std::puts(title);
    const CommandLine commandLine = ParseCommandLine(argumentCount, arguments);
    std::int32_t exitValue = 0;
    hasEventCome = false;
    platform::SetConsoleHandler(OnConsoleEvent);
    if (commandLine.helpWanted) {
        PrintHelp();
    } else {
        exitValue = RunAssembler(commandLine);
        if (commandLine.waitWanted) {
            std::printf("Press a key to continue...\r");
            platform::WaitForKey();
        }
        std::fputs("                          \r", stdout);  // wipes the meter or the prompt
    }
    platform::SetConsoleHandler(nullptr);
    platform::SetAllocationFailureHook(previousHook);
    platform::SetMemoryFailureStream(previousStream);
    return exitValue;
}

int OnAllocationFailure(std::size_t size) {
    std::printf("[ERROR!] Failed to allocate %zu bytes.\n", size);
    if (CAssembler* const assembler = theAssembler) {
        assembler->StatusDump(nullptr);
        assembler->flags.Set(RF_ABORT);
    }
    return 0;
}

void OnExit() {
    if (CAssembler* const assembler = theAssembler) {
        assembler->StatusDump(nullptr);
    }
}

int OnConsoleEvent(int event) {
    const auto* const row = std::ranges::find(events, event, &Event::number);
    if (row == std::end(events)) {
        return 0;
    }
    hasEventCome = true;
    CAssembler* const assembler = theAssembler;
    // Once the run has decided whether to write a target, it can no longer be aborted.
    if (assembler == nullptr || (assembler->flags.Set(RF_ABORT) & RF_SETTLED) == 0) {
        platform::WriteFromHandler(row->text);
    }
    return 1;
}

}  // namespace korv
