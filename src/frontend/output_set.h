/// Writes either all outputs of a run or none.
#pragma once

#include <string>
#include <vector>

#include "platform/platform.h"

namespace korv {

struct Output {
    std::string name;      ///< "-" for standard output
    std::string contents;  ///< written unchanged
    bool isText = false;   ///< on a terminal, control characters are shown as "\xHH"
};

/// Writes `outputs`; the first one gets its final name last. `inputs` are the regular files that
/// the run has read; none of them is overwritten. Result: empty, or why the outputs were not
/// written. Bytes that were already sent to standard output, a device or a pipe cannot be taken
/// back.
[[nodiscard]] std::string WriteOutputs(const std::vector<Output>& outputs,
                                       const platform::FileSet& inputs);

}  // namespace korv
