/// The process around a run: hooks, title, and the order of startup and exit.
#pragma once

#include <cstddef>

namespace korv {

/// Runs the whole program. Result: the exit status, which is 0 even for a run with errors.
int RunProcess(int argumentCount, char** arguments);

/// The hooks of the process (see platform/platform.h). They act on the run in progress; a console
/// event just before a run also aborts it.
int OnAllocationFailure(std::size_t size);
void OnExit();
int OnConsoleEvent(int event);

}  // namespace korv
