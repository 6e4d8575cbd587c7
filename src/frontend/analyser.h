/// Runs the assembler once and makes an `Analysis` of what it reports.
#pragma once

#include "frontend/analysis.h"
#include "frontend/options.h"

namespace korv {

class FileStore;

/// What an analysis holds besides files, openings, messages and image. What nobody wants costs
/// nothing.
struct Wanted {
    bool statements = false;  ///< and blocks
    bool names = false;
    // With one of these the names and the statements must be wanted too.
    bool useCounts = false;  ///< how often each name is used
    bool uses = false;       ///< the same and where; also where each file is included
};

/// Assembles `options.source`. All files are read through `store`; the texts that the analysis
/// holds stay valid without it. There is one run at a time in a process.
[[nodiscard]] Analysis Analyse(const Options& options, FileStore* store, const Wanted& wanted);

}  // namespace korv
