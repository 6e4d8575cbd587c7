#include "symbols/patch.h"

#include <cstdlib>
#include <numeric>

#include "platform/platform.h"

namespace korv {

void CPatchInfoMemBlock::MakeBlock() {
    [[maybe_unused]] static const int registered = std::atexit(ReleaseBlocks);
    auto* const block = new (std::nothrow) CPatchInfoMemBlock;
    void* const memory =
        block == nullptr ? nullptr : platform::Allocate(slotCount * sizeof(CPatchInfo));
    if (memory == nullptr) {
        delete block;
        platform::PrintMemoryFailure("Could not allocate memory for CPatchInfoMemBlock!");
        std::exit(-1);
    }
    block->records = static_cast<CPatchInfo*>(memory);
    std::iota(block->ring, block->ring + slotCount, 0U);
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

}  // namespace korv
