/// The program korv-as, for builds and editors.
#pragma once

namespace korv {

/// All that the program does. Result: the exit status, see options.h.
int RunFrontend(int argumentCount, char** arguments);

}  // namespace korv
