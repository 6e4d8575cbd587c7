#include "symbols/name_index.h"

#include <cstring>

#include "platform/platform.h"

namespace korv {

CNameIndex::~CNameIndex() {
    if (entries != &freeEntry) {
        platform::Free(entries);
    }
}

bool CNameIndex::MakeRoom() {
    if (count < (mask + 1) / 2) {
        return true;
    }
    const std::uint32_t oldSize = mask + 1;
    const std::uint32_t size = entries == &freeEntry ? 512 : oldSize * 2;
    auto* const grown = static_cast<Entry*>(platform::Allocate(size * sizeof(Entry)));
    if (grown == nullptr) {
        return false;
    }
    std::memset(grown, 0, size * sizeof(Entry));
    Entry* const old = entries;
    entries = grown;
    mask = size - 1;
    count = 0;
    for (std::uint32_t i = 0; i < oldSize; ++i) {
        if (old[i].record != nullptr) {
            Insert(old[i].record, old[i].hash);
        }
    }
    if (old != &freeEntry) {
        platform::Free(old);
    }
    return true;
}

void CNameIndex::Insert(CIdentifier* record, std::uint64_t hash) {
    auto at = static_cast<std::uint32_t>(hash);
    while (entries[at & mask].record != nullptr) {
        ++at;
    }
    entries[at & mask] = {record, hash};
    ++count;
}

}  // namespace korv
