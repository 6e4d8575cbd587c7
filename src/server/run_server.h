/// The program korv-ls: the language server over standard input and output.
#pragma once

namespace korv {

/// Runs the whole program. Result: the exit status.
int RunServer(int argumentCount, char** arguments);

}  // namespace korv
