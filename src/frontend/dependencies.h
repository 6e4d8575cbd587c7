/// The dependencies of a run as rules for make and ninja.
#pragma once

#include <string>

#include "frontend/analysis.h"

namespace korv {

struct Dependencies {
    std::string text;     ///< of the file; empty after a failure
    std::string failure;  ///< why there is none; empty for none
};

/// Rules by which `target`, named as in the Makefile, depends on all files that were read, and each
/// of these on nothing, so that make goes on when one is gone. Fails for a name that make or ninja
/// would take for something else.
[[nodiscard]] Dependencies DependenciesOf(const Analysis& analysis, const std::string& target);

}  // namespace korv
