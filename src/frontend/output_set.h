/// The outputs of a run, which leaves all of them or none.
#pragma once

#include <string>
#include <vector>

#include "platform/platform.h"

namespace korv {

struct Output {
    std::string name;      ///< "-" for standard output
    std::string contents;  ///< bytes as they are
    bool isText = false;   ///< a terminal gets "\xHH" for control characters
};

/// Writes `outputs`, of which the first gets its name last. `inputs` are the regular files that the
/// run has read; none of them is written over. Result: empty; or why nothing was written, but to
/// standard output, a device or a pipe.
[[nodiscard]] std::string WriteOutputs(const std::vector<Output>& outputs,
                                       const platform::FileSet& inputs);

}  // namespace korv
