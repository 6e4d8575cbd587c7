/// The listing of the identifiers. Unresolved names are reported in the order of the listing.
#pragma once

#include <cstdint>
#include <span>

#include "platform/platform.h"
#include "symbols/identifier.h"

namespace korv {

class CFileNameRegistry;

/// The number of buckets in the listing. The bucket of a name is computed from a hash that is not
/// used for lookups.
inline constexpr std::uint32_t tableSize = 211;

/// Sorts `records` by bucket, and by name within a bucket. Allocates nothing, since reports are
/// written even if no memory is left.
void SortForListing(std::span<CIdentifier*> records);

/// Writes the listing of the sorted `records`, without the built-in names.
void WriteListing(std::span<CIdentifier* const> records, const CFileNameRegistry& fileNames,
                  platform::OutputFile* file);

/// Writes the flags column of the listing to `text`: six characters and a terminator.
void FlagString(std::uint32_t flags, char* text);

}  // namespace korv
