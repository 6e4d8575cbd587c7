#include "symbols/name_index.h"

#include <cstdlib>
#include <utility>

#include "platform/platform.h"

namespace korv {

CNameIndex::~CNameIndex() {
    if (entries != &freeEntry) {
        platform::Free(entries);
    }
}

void CNameIndex::Insert(CIdentifier* record, std::uint64_t hash) {
    if (++count > (mask + 1) / 2) {
        Grow();
    }
    Place({record, hash});
}

void CNameIndex::Grow() {
    const bool isFirst = entries == &freeEntry;
    const std::uint32_t places = isFirst ? 256 : (mask + 1) * 2;
    void* const grown =
        platform::AllocateZeroed((std::size_t{places} + longestProbe) * sizeof(Entry));
    if (grown == nullptr) {
        std::exit(-1);
    }
    Entry* const old = std::exchange(entries, static_cast<Entry*>(grown));
    Entry* const oldEnd = isFirst ? old : old + mask + 1 + longestProbe;
    mask = places - 1;
    for (const Entry* entry = old; entry != oldEnd; ++entry) {
        if (entry->record != nullptr) {
            Place(*entry);
        }
    }
    if (!isFirst) {
        platform::Free(old);
    }
    std::erase_if(overflow, [this](const auto& entry) {
        return PlaceNear({entry.second, entry.first.hash});
    });
}

void CNameIndex::Place(const Entry& entry) {
    if (!PlaceNear(entry)) {
        overflow.emplace(HashedName(entry.record->Name(), entry.hash), entry.record);
    }
}

// False: there is no room near its place.
bool CNameIndex::PlaceNear(const Entry& entry) {
    Entry* at = PlaceOf(entry.hash);
    for (int i = 0; i < longestProbe; ++i, ++at) {
        if (at->record == nullptr) {
            *at = entry;
            return true;
        }
        if (at->hash == entry.hash) {
            return false;
        }
    }
    return false;
}

CIdentifier* CNameIndex::FindInOverflow(const HashedName& name) const {
    const auto found = overflow.find(name);
    return found == overflow.end() ? nullptr : found->second;
}

}  // namespace korv
