/// The record of a name: a label, an EQU identifier, a reserved word, a version identifier, or a
/// name that has only been used.
#pragma once

#include <cstdint>
#include <string_view>

namespace korv {

struct CPatchInfo;

/// Bits of `CIdentifier::flags`.
inline constexpr std::uint32_t IDF_LABEL = 0x001;  ///< defined as a label
inline constexpr std::uint32_t IDF_EQU = 0x002;    ///< defined by EQU
inline constexpr std::uint32_t IDF_USED = 0x004;   ///< an expression has read the value
inline constexpr std::uint32_t IDF_8BIT = 0x008;  ///< width, for the listing; nothing sets this one
inline constexpr std::uint32_t IDF_16BIT = 0x010;     ///< width
inline constexpr std::uint32_t IDF_32BIT = 0x020;     ///< width; nothing sets this one
inline constexpr std::uint32_t IDF_RESOLVED = 0x040;  ///< `value` is known
inline constexpr std::uint32_t IDF_INTERNAL = 0x200;  ///< built in; left out of the listing
inline constexpr std::uint32_t IDF_RESERVED = 0x800;  ///< may not be defined by a source line

/// The flags with which a name is defined or reserved. A name that has only been used has no flags.
inline constexpr std::uint32_t IDS_LABEL = IDF_LABEL | IDF_16BIT | IDF_RESOLVED;
inline constexpr std::uint32_t IDS_EQU = IDF_EQU | IDF_16BIT | IDF_RESOLVED;
inline constexpr std::uint32_t IDS_EQU_WAITING = IDF_EQU | IDF_16BIT;
inline constexpr std::uint32_t IDS_RESERVED_WORD = IDF_RESERVED | IDF_INTERNAL;
inline constexpr std::uint32_t IDS_SYSTEM = IDF_RESERVED | IDF_INTERNAL | IDF_RESOLVED;

struct CIdentifier {
    std::uint32_t bucket = 0;  ///< for the order of the listing; set by `SortForListing`
    std::uint32_t flags = 0;
    const char* name = nullptr;  ///< in the name pool or constant; never moves
    std::uint32_t nameLength = 0;
    std::int32_t line = 0;          ///< of the definition; 0 if there is none
    std::int32_t file = 0;          ///< of the definition; 0 if there is none
    std::int32_t value = 0;         ///< meaningful with IDF_RESOLVED; -1 for an EQU that waits
    CPatchInfo* patches = nullptr;  ///< owned; the patches that wait for this name, newest first
    void* macro = nullptr;          ///< body of a macro; always null, as no command records one

    [[nodiscard]] std::string_view Name() const { return {name, nameLength}; }
};

}  // namespace korv
