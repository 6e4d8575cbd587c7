/// The listing of the identifiers, and its order, which the reports at the end of a run have too.
#pragma once

#include <cstdint>
#include <span>

#include "platform/platform.h"
#include "symbols/identifier.h"

namespace korv {

class CFileNameRegistry;

/// Buckets of the listing. The bucket of a name follows from a hash that no lookup uses.
inline constexpr std::uint32_t tableSize = 211;

/// Sorts `records` by bucket, and by name within one. Needs no memory, since reports are made even
/// if there is none left.
void SortForListing(std::span<CIdentifier*> records);

/// Writes the listing of the sorted `records`, except the system's own names.
void WriteListing(std::span<CIdentifier* const> records, const CFileNameRegistry& fileNames,
                  platform::OutputFile* file);

/// Writes the listing's column of flags to `text`: six characters and a terminator.
void FlagString(std::uint32_t flags, char* text);

}  // namespace korv
