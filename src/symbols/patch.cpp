#include "symbols/patch.h"

#include <cstdio>
#include <cstdlib>
#include <new>

#include "platform/platform.h"
#include "symbols/identifier_manager.h"

namespace korv {

CPatchInfoMemBlock* CPatchInfoMemBlock::blocks = nullptr;
CPatchInfoMemBlock* CPatchInfoMemBlock::blocksWithRoom = nullptr;

std::string_view CPatchInfo::Expression() const {
    return expressionString.c_str() == nullptr ? identifier->Name() : expressionString.View();
}

CPatchInfo* CPatchInfoMemBlock::AllocPatchInfo(std::uint32_t position, std::uint32_t flags,
                                               PatchOrigin origin) {
    if (blocksWithRoom == nullptr) {
        MakeBlock();
    }
    CPatchInfoMemBlock* const block = blocksWithRoom;
    const std::uint32_t slot = block->ring[block->head];
    block->head = (block->head + 1) % slotCount;
    if (!block->HasRoom()) {
        blocksWithRoom = block->nextWithRoom;
    }
    return new (&block->records[slot]) CPatchInfo(block, slot, position, flags, origin);
}

void CPatchInfoMemBlock::FreePatchInfo(CPatchInfo* patch) {
    CPatchInfoMemBlock* const block = patch->owner;
    const std::uint32_t slot = patch->slot;
    patch->~CPatchInfo();
    if (!block->HasRoom()) {
        block->nextWithRoom = blocksWithRoom;
        blocksWithRoom = block;
    }
    block->tail = (block->tail + 1) % slotCount;
    block->ring[block->tail] = slot;
}

void CPatchInfoMemBlock::MakeBlock() {
    static bool isReleaseRegistered = false;
    if (!isReleaseRegistered) {
        isReleaseRegistered = true;
        std::atexit(ReleaseBlocks);
    }
    auto* const block = new (std::nothrow) CPatchInfoMemBlock;
    void* const memory =
        block == nullptr ? nullptr : platform::Allocate(slotCount * sizeof(CPatchInfo));
    if (memory == nullptr) {
        delete block;
        std::printf("Could not allocate memory for CPatchInfoMemBlock!\n");
        std::exit(-1);
    }
    block->records = static_cast<CPatchInfo*>(memory);
    for (std::uint32_t i = 0; i < slotCount; ++i) {
        block->ring[i] = i;
    }
    block->nextBlock = blocks;
    blocks = block;
    block->nextWithRoom = blocksWithRoom;
    blocksWithRoom = block;
}

void CPatchInfoMemBlock::ReleaseBlocks() {
    while (blocks != nullptr) {
        CPatchInfoMemBlock* const block = blocks;
        blocks = block->nextBlock;
        platform::Free(block->records);
        delete block;
    }
    blocksWithRoom = nullptr;
}

std::int32_t CPatchInfoMemBlock::BlockCount() {
    std::int32_t count = 0;
    for (const CPatchInfoMemBlock* block = blocks; block != nullptr; block = block->nextBlock) {
        ++count;
    }
    return count;
}

}  // namespace korv
