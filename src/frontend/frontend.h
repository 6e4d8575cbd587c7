/// The program korv-as, for builds and editors.
#pragma once

namespace korv {

/// Runs the whole program. Result: the exit status; see options.h.
int RunFrontend(int argumentCount, char** arguments);

}  // namespace korv
