#include "server/run_server.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "frontend/options.h"
#include "frontend/output_set.h"
#include "frontend/platform/platform.h"
#include "server/server.h"

namespace korv {
namespace {

constexpr int statusWrongUse = 2;

constexpr const char* help =
    "Usage: korv-ls [--stdio]\n"
    "Serves an editor with the Language Server Protocol on standard input and output:\n"
    "Z80 sources are assembled as they are typed. It writes no file.\n"
    "\n"
    "      --stdio    accepted and ignored: there is no other connection\n"
    "  -h, --help     print this help\n"
    "  -V, --version  print the version\n"
    "\n"
    "Exit status: 0 ended by the editor; 1 the connection broke; 2 wrong use.\n";

// The size of a text is limited, so a failed allocation means that the machine is out of memory.
// The editor restarts the server.
int OnAllocationFailure(std::size_t) {
    std::fputs("korv-ls: error: out of memory\n", stderr);
    std::_Exit(1);
}

int Serve() {
    platform::SetAllocationFailureHook(OnAllocationFailure);
    platform::StandardConnection connection;
    Server server(&connection, KORV_VERSION);
    const int status = server.Run();
    if (!server.Failure().empty()) {
        std::fprintf(stderr, "korv-ls: error: %s\n", server.Failure().c_str());
    }
    return status;
}

int Print(const char* text) {
    return WriteOutputs({{standardStream, text}}, {}).empty() ? 0 : statusWrongUse;
}

}  // namespace

int RunServer(int argumentCount, char** arguments) {
    platform::OpenStandardStreams();
    for (int i = 1; i < argumentCount; ++i) {
        const std::string_view word = arguments[i];
        if (word == "-h" || word == "--help") {
            return Print(help);
        }
        if (word == "-V" || word == "--version") {
            return Print("korv-ls " KORV_VERSION "\n");
        }
        if (word != "--stdio") {
            std::fprintf(stderr, "korv-ls: error: unknown option '%s'; --help lists them\n",
                         arguments[i]);
            return statusWrongUse;
        }
    }
    return Serve();
}

}  // namespace korv
