/// A name in an expression that has no value yet, on its way from the lookup that missed it to the
/// patch that waits for it.
#pragma once

#include <cstdint>
#include <string_view>

namespace korv {

struct CIdentifier;

struct UnresolvedName {
    std::string_view name;
    /// What the lookup has found out, so that nobody looks again.
    std::uint64_t hash = 0;
    CIdentifier* record = nullptr;  ///< null: the table did not know the name
    std::int32_t knownNames = 0;    ///< names in the table then; another number makes null doubtful
};

}  // namespace korv
