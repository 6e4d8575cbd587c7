/// The dependencies of a run as rules for make and ninja.
#pragma once

#include <string>

#include "frontend/analysis.h"

namespace korv {

struct Dependencies {
    std::string text;     ///< the contents of the file; empty after a failure
    std::string failure;  ///< why there is no text; else empty
};

/// A rule that makes `target` depend on all files that were read, and an empty rule for each of
/// these files, so that make continues if one has been deleted. `target` must be spelled as in the
/// Makefile. Fails for a name that make or ninja would misread.
[[nodiscard]] Dependencies DependenciesOf(const Analysis& analysis, const std::string& target);

}  // namespace korv
