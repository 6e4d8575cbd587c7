/// Finds the record of a name. A name is looked up for every label and for every name in an
/// expression, so this is a hash table that stores the whole hash with each record.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <string_view>
#include <utility>

#include "symbols/identifier.h"
#include "symbols/name_pool.h"

namespace korv {

/// The bytes at `from` as a number, in the byte order of the machine; used only for hashing and
/// comparing.
template <typename Word>
[[nodiscard]] constexpr Word LoadWord(const char* from) {
    std::array<char, sizeof(Word)> bytes{};
    std::copy_n(from, sizeof(Word), bytes.begin());
    return std::bit_cast<Word>(bytes);
}

/// The `size` bytes at `text`, 0 to 8, as one number. Four bytes or more take two loads, which may
/// overlap. Each byte of the text is a byte of the number, so no other text of the same length has
/// the same number.
[[nodiscard]] constexpr std::uint64_t TailOf(const char* text, std::size_t size) {
    if (size >= 4) {
        return static_cast<std::uint64_t>(LoadWord<std::uint32_t>(text)) << 32 |
               LoadWord<std::uint32_t>(text + size - 4);
    }
    const auto byteAt = [text](std::size_t i) {
        return std::uint64_t{LoadWord<std::uint8_t>(text + i)};
    };
    return size == 0 ? 0 : byteAt(0) << 16 | byteAt(size / 2) << 8 | byteAt(size - 1);
}

/// The hash of a name, computed from pieces of up to 8 bytes. It is unrelated to the buckets of the
/// listing.
///
/// Two names of the same length, up to 8, never have the same hash: their tails differ, and each
/// further step can be undone. (The length is the same for both, an odd factor has an inverse
/// modulo 2 to the 64, and the shift with exclusive or can also be inverted.) `CNameIndex` relies
/// on this and does not compare the texts of such names; comparing them would cost 3 % of all
/// instructions.
[[nodiscard]] constexpr std::uint64_t HashOf(std::string_view name) {
    constexpr std::uint64_t multiplier =
        0x9E3779B97F4A7C15;  // 2 to the 64, divided by the golden ratio; odd
    const char* next = name.data();
    std::size_t left = name.size();
    std::uint64_t hash = left;
    for (; left > 8; left -= 8, next += 8) {
        hash = (hash ^ LoadWord<std::uint64_t>(next)) * multiplier;
        hash ^= hash >> 32;
    }
    hash = (hash ^ TailOf(next, left)) * multiplier;
    return hash ^ hash >> 32;
}

/// Whether the text at `other` equals `text`, which has more than 8 characters. Compares 8 at a
/// time: a call to `memcmp` would cost more than the comparison.
[[nodiscard]] inline bool EqualTexts(const char* other, std::string_view text) {
    const auto differAt = [&](std::size_t i) {
        return LoadWord<std::uint64_t>(other + i) != LoadWord<std::uint64_t>(text.data() + i);
    };
    for (std::size_t i = 0; i + 8 < text.size(); i += 8) {
        if (differAt(i)) {
            return false;
        }
    }
    return !differAt(text.size() - 8);
}

/// A name with its hash, which is needed again to enter a name that was not found. Plain text
/// converts to a hashed name.
struct HashedName {
    constexpr HashedName() = default;
    constexpr HashedName(std::string_view text, std::uint64_t hash) : text(text), hash(hash) {}
    constexpr HashedName(std::string_view text) : HashedName(text, HashOf(text)) {}

    /// Any order will do; this one is quick to compare.
    friend bool operator<(const HashedName& a, const HashedName& b) {
        return a.hash != b.hash ? a.hash < b.hash
               : a.text.size() != b.text.size()
                   ? a.text.size() < b.text.size()
                   : std::memcmp(a.text.data(), b.text.data(), a.text.size()) < 0;
    }

    std::string_view text;
    std::uint64_t hash = 0;
};

/// Lets a container allocate its memory from a pool. All names of a source may be in the container,
/// and each would otherwise cost a call to the general allocator.
template <typename T>
struct PoolAllocator {
    using value_type = T;

    explicit PoolAllocator(CNamePool* pool) : pool(pool) {}
    template <typename Other>
    explicit PoolAllocator(const PoolAllocator<Other>& other) : pool(other.pool) {}
    T* allocate(std::size_t count) {
        return static_cast<T*>(pool->Take(count * sizeof(T), alignof(T)));
    }
    void deallocate(T*, std::size_t) {}  // the pool is released as a whole
    friend bool operator==(const PoolAllocator&, const PoolAllocator&) = default;

    CNamePool* pool;
};

/// A hash table with open addressing, at most half full; nothing is ever removed. The hash is quick
/// and not secret, so a malicious source can give all its names the same place. Therefore, a name
/// is stored in one of the `longestProbe` entries starting at its place. If these are all taken,
/// the name is kept in a sorted tree. No choice of names makes a lookup slower than a search in
/// that tree, and ordinary names hardly ever need it. A secret seed would also help, but then two
/// runs would not take the same steps.
class CNameIndex {
  public:
    /// Creates an empty index. The tree allocates its memory from `pool`, which is not owned.
    explicit CNameIndex(CNamePool* pool)
        : overflow(PoolAllocator<std::pair<const HashedName, CIdentifier*>>(pool)) {}
    ~CNameIndex();
    CNameIndex(const CNameIndex&) = delete;
    CNameIndex& operator=(const CNameIndex&) = delete;

    /// The record of `name`, or null.
    [[nodiscard]] CIdentifier* Find(const HashedName& name) const {
        const Entry* entry = PlaceOf(name.hash);
        for (int i = 0; i < longestProbe; ++i, ++entry) {
            if (entry->record == nullptr) {
                return nullptr;
            }
            if (entry->hash == name.hash && IsName(*entry->record, name.text)) {
                return entry->record;
            }
        }
        return FindInOverflow(name);
    }

    /// Enters `record`, which is not owned. Its name must have the given hash and must not be in
    /// the index yet.
    void Insert(CIdentifier* record, std::uint64_t hash) {
        if (left == 0) [[unlikely]] {
            Grow();
        }
        --left;
        if (!PlaceNear({record, hash})) [[unlikely]] {
            AddToOverflow({record, hash});
        }
    }

  private:
    static constexpr int longestProbe = 16;

    // An entry without a record is free.
    struct Entry {
        CIdentifier* record = nullptr;
        std::uint64_t hash = 0;
    };
    [[nodiscard]] Entry* PlaceOf(std::uint64_t hash) const {
        return &entries[static_cast<std::uint32_t>(hash) & mask];
    }
    // Whether `record` is named `text`, if the hashes are equal. See `HashOf` for short names.
    [[nodiscard]] static bool IsName(const CIdentifier& record, std::string_view text) {
        return record.nameLength == text.size() &&
               (text.size() <= 8 || EqualTexts(record.name, text));
    }
    [[nodiscard]] CIdentifier* FindInOverflow(const HashedName& name) const;
    void Grow();
    // Stores `entry` near its place. False: there is no room.
    bool PlaceNear(Entry entry) {
        Entry* at = PlaceOf(entry.hash);
        for (int i = 0; i < longestProbe; ++i, ++at) {
            if (at->record == nullptr) {
                *at = entry;
                return true;
            }
        }
        return false;
    }
    void AddToOverflow(Entry entry);

    static constexpr std::uint32_t firstPlaces = 128;

    // There are `longestProbe` more entries than places. The first array is part of the index, so a
    // run with few names allocates no array.
    std::array<Entry, firstPlaces + longestProbe> firstEntries{};
    Entry* entries = firstEntries.data();  // owned unless it is `firstEntries`
    std::uint32_t mask = firstPlaces - 1;  // the number of places, a power of 2, less 1
    std::uint32_t left = firstPlaces / 2;  // places to fill before the table grows
    // Names for which there was no room: all entries near their place were taken.
    std::map<HashedName, CIdentifier*, std::less<>,
             PoolAllocator<std::pair<const HashedName, CIdentifier*>>>
        overflow;
};

}  // namespace korv
