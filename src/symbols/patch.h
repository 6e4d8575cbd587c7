/// A value that is not known yet: its position in the image, the text to evaluate, and how to check
/// and write the value.
#pragma once

#include <cstdint>
#include <new>
#include <string_view>

#include "diagnostics/source_place.h"
#include "expr/tmp_string.h"
#include "symbols/identifier.h"

namespace korv {

class CPatchInfoMemBlock;

/// Bits of `CPatchInfo::flags`.
inline constexpr std::uint32_t PF_EQU = 0x002;       ///< defines an identifier, writes nothing
inline constexpr std::uint32_t PF_8BIT = 0x008;      ///< one byte at `position`
inline constexpr std::uint32_t PF_16BIT = 0x010;     ///< a word at `position`, low byte first
inline constexpr std::uint32_t PF_RELATIVE = 0x100;  ///< the byte is a distance from `address`
inline constexpr std::uint32_t PF_SIGNED = 0x400;    ///< the range check is signed
inline constexpr std::uint32_t PF_NAME = 0x1000;     ///< the text is just a name, or "(name)"

/// `position` of a patch that writes nothing.
inline constexpr std::uint32_t noPosition = 0xFFFFFFFF;

/// A patch, in a slot of a `CPatchInfoMemBlock`. `AllocPatchInfo` creates it; `FreePatchInfo`
/// releases its strings and frees it. Until it is processed, the chain of exactly one identifier
/// owns it.
struct CPatchInfo {
    CPatchInfoMemBlock* const owner;  ///< the block that holds the record
    const std::uint16_t slot;         ///< index in `owner`
    const std::uint16_t flags;        ///< PF_* bits
    const std::uint32_t position;     ///< offset of the bytes to overwrite in the image
    // The place of the reference, for late messages.
    const std::uint32_t address;  ///< location counter at the start of its statement
    const std::int32_t file;
    const std::int32_t line;
    const std::uint32_t offset;         ///< of the text in its cleaned line
    CPatchInfo* next = nullptr;         ///< next patch of the identifier's chain
    CIdentifier* identifier = nullptr;  ///< the owner of the chain; not owned
    CPatchInfo* parent = nullptr;  ///< while an EQU is resolved: the patch that released this one
    CtmpString expression{};       ///< empty: the text is the name of `identifier`
    CtmpString name{};             ///< PF_EQU: the identifier that the value defines; else empty

    /// The text to evaluate again, null-terminated.
    [[nodiscard]] std::string_view Text() const {
        return expression.c_str() == nullptr ? identifier->Name() : expression.View();
    }
    /// The place of that text in the source.
    [[nodiscard]] SourcePlace Place() const {
        return {file, line, offset, static_cast<std::uint32_t>(Text().size())};
    }
};

/// Records for 256 patches, at most 255 of which are in use at a time. A ring holds the free slots;
/// freed slots are reused in the order in which they were freed. The blocks belong to the process
/// and live until it ends.
class CPatchInfoMemBlock {
  public:
    static constexpr std::uint32_t slotCount = 256;

    /// Creates a patch without texts. Ends the process if there is no memory for another block.
    static CPatchInfo* AllocPatchInfo(std::uint32_t position, std::uint32_t flags,
                                      std::uint32_t address, const SourcePlace& place) {
        if (blocksWithRoom == nullptr) [[unlikely]] {
            MakeBlock();
        }
        CPatchInfoMemBlock* const block = blocksWithRoom;
        const std::uint32_t slot = block->ring[block->head];
        block->head = (block->head + 1) % slotCount;
        if (!block->HasRoom()) [[unlikely]] {
            blocksWithRoom = block->nextWithRoom;
        }
        return new (&block->records[slot]) CPatchInfo{block,
                                                      static_cast<std::uint16_t>(slot),
                                                      static_cast<std::uint16_t>(flags),
                                                      position,
                                                      address,
                                                      place.file,
                                                      place.line,
                                                      place.offset};
    }

    /// Releases the strings of `patch` and frees its slot.
    static void FreePatchInfo(CPatchInfo* patch) {
        CPatchInfoMemBlock* const block = patch->owner;
        const std::uint32_t slot = patch->slot;
        patch->~CPatchInfo();
        if (!block->HasRoom()) [[unlikely]] {
            block->nextWithRoom = blocksWithRoom;
            blocksWithRoom = block;
        }
        block->tail = (block->tail + 1) % slotCount;
        block->ring[block->tail] = slot;
    }

  private:
    CPatchInfoMemBlock() = default;
    [[nodiscard]] bool HasRoom() const { return head != tail; }
    static void MakeBlock();
    static void ReleaseBlocks();

    std::uint32_t head = 0;  // ring index of the next free slot; equal to `tail` if no slot is free
    std::uint32_t tail = slotCount - 1;          // ring index of the slot freed last
    std::uint32_t ring[slotCount];               // free slots
    CPatchInfo* records = nullptr;               // owned, raw memory for `slotCount` records
    CPatchInfoMemBlock* nextBlock = nullptr;     // all blocks
    CPatchInfoMemBlock* nextWithRoom = nullptr;  // blocks with a free slot

    inline static CPatchInfoMemBlock* blocks = nullptr;
    inline static CPatchInfoMemBlock* blocksWithRoom = nullptr;
};

}  // namespace korv
