#include "symbols/name_index.h"

#include <cstdlib>

#include "platform/platform.h"

namespace korv {

CNameIndex::~CNameIndex() {
    if (entries != firstEntries.data()) {
        platform::Free(entries);
    }
}

void CNameIndex::Grow() {
    const std::uint32_t places = (mask + 1) * 4;
    void* const grown =
        platform::AllocateZeroed((std::size_t{places} + longestProbe) * sizeof(Entry));
    if (grown == nullptr) {
        std::exit(-1);
    }
    Entry* const old = std::exchange(entries, static_cast<Entry*>(grown));
    const Entry* const oldEnd = old + mask + 1 + longestProbe;
    left += places / 2 - (mask + 1) / 2;
    mask = places - 1;
    for (const Entry* entry = old; entry != oldEnd; ++entry) {
        if (entry->record != nullptr && !PlaceNear(*entry)) {
            AddToOverflow(*entry);
        }
    }
    if (old != firstEntries.data()) {
        platform::Free(old);
    }
    for (auto at = overflow.begin(); at != overflow.end();) {
        at = PlaceNear({at->second, at->first.hash}) ? overflow.erase(at) : std::next(at);
    }
}

void CNameIndex::AddToOverflow(Entry entry) {
    overflow.emplace(HashedName(entry.record->Name(), entry.hash), entry.record);
}

CIdentifier* CNameIndex::FindInOverflow(const HashedName& name) const {
    const auto found = overflow.find(name);
    return found == overflow.end() ? nullptr : found->second;
}

}  // namespace korv
