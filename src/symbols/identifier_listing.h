/// The listing of the identifiers, and the order that it shares with the reports at the end of a
/// run.
#pragma once

#include <cstdint>

#include "symbols/identifier.h"

namespace korv {

class CFileNameRegistry;
namespace platform {
class OutputFile;
}

/// Buckets of the listing. A name belongs to one by a hash that no lookup uses.
inline constexpr std::uint32_t tableSize = 211;

/// Links the records of `chain` anew, bucket by bucket and by name within one. Needs no memory:
/// reports are made even if there is none left. Result: the first record.
[[nodiscard]] CIdentifier* SortForListing(CIdentifier* chain);

/// Writes the listing of the sorted `chain`, without the system's own names.
void WriteListing(const CIdentifier* chain, const CFileNameRegistry& fileNames,
                  platform::OutputFile* file);

/// Writes the listing's column of flags to `text`: six characters and a terminator.
void FlagString(std::uint32_t flags, char* text);

}  // namespace korv
