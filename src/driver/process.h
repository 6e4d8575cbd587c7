/// The process around the one run: hooks, title, and the order of start and end.
#pragma once

#include <cstddef>

namespace korv {

/// All that the program does. Result: the exit status, 0 also for a run with errors.
int RunProcess(int argumentCount, char** arguments);

/// Writes the title line, terminated, into `buffer` and gives it back; null, and nothing is
/// written, when its length exceeds `capacity`.
char* MakeTitle(char* buffer, std::size_t capacity);

/// The hooks; they reach a run only while there is one. See platform/platform.h.
int OnAllocationFailure(std::size_t size);
void OnExit();
int OnConsoleEvent(int event);

}  // namespace korv
