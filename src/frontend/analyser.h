/// Runs the assembler once and builds an `Analysis` from what it reports.
#pragma once

#include "frontend/analysis.h"
#include "frontend/options.h"

namespace korv {

class FileStore;

/// Selects the optional parts of an analysis; files, openings, messages and the image are always
/// included. A part that is not wanted costs nothing.
struct Wanted {
    bool statements = false;  ///< and blocks
    bool names = false;
    // Each of these requires `statements` and `names` too.
    bool useCounts = false;  ///< how often each name is used
    bool uses = false;       ///< also the place of each use, and where each file is included
};

/// Assembles `options.source`. All files are read through `store`; the texts in the analysis
/// outlive the store. A process may have only one run at a time.
[[nodiscard]] Analysis Analyse(const Options& options, FileStore* store, const Wanted& wanted);

}  // namespace korv
