#include "symbols/name_index.h"

#include <utility>

#include "platform/platform.h"

namespace korv {

CNameIndex::~CNameIndex() {
    if (entries != &freeEntry) {
        platform::Free(entries);
    }
}

bool CNameIndex::MakeRoomFor(std::uint32_t records) {
    const std::uint32_t places = mask + 1;
    if (records <= places / 2) {
        return true;
    }
    const std::uint32_t grownPlaces = entries == &freeEntry ? 256 : places * 2;
    const std::size_t bytes = (std::size_t{grownPlaces} + longestProbe) * sizeof(Entry);
    auto* const grown = static_cast<Entry*>(platform::AllocateZeroed(bytes));
    if (grown == nullptr) {
        return false;
    }
    Entry* const old = std::exchange(entries, grown);
    mask = grownPlaces - 1;
    if (old != &freeEntry) {
        for (const Entry* entry = old; entry != old + places + longestProbe; ++entry) {
            if (entry->record != nullptr) {
                Insert(entry->record, entry->hash);
            }
        }
        platform::Free(old);
    }
    std::erase_if(overflow, [this](const auto& name) {
        return InsertNearPlace(name.second, name.first.hash);
    });
    return true;
}

void CNameIndex::Insert(CIdentifier* record, std::uint64_t hash) {
    if (!InsertNearPlace(record, hash)) {
        overflow.emplace(HashedName(record->Name(), hash), record);
    }
}

// False: everything near its place is taken.
bool CNameIndex::InsertNearPlace(CIdentifier* record, std::uint64_t hash) {
    Entry* entry = PlaceOf(hash);
    for (int i = 0; i < longestProbe; ++i, ++entry) {
        if (entry->record == nullptr) {
            *entry = {record, hash};
            return true;
        }
        if (entry->hash == hash) {
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
