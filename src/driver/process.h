/// The process around its one run: hooks, title, and the order of startup and exit.
#pragma once

#include <cstddef>

namespace korv {

/// Runs the whole program. Result: the exit status, 0 also for a run with errors.
int RunProcess(int argumentCount, char** arguments);

/// The hooks. They affect a run only while there is one. See platform/platform.h.
int OnAllocationFailure(std::size_t size);
void OnExit();
int OnConsoleEvent(int event);

}  // namespace korv
