#include "symbols/name_pool.h"

#include <cstdlib>
#include <cstring>
#include <utility>

#include "platform/platform.h"

namespace korv {

struct CNamePool::Block {
    Block* next;
    alignas(std::max_align_t) char memory[1];  // `blockSize` bytes, or more for a longer name
};

CNamePool::CNamePool(std::FILE* console) : console(console) {
    AddBlock(blockSize);
}

CNamePool::~CNamePool() {
    while (blocks != nullptr) {
        platform::Free(std::exchange(blocks, blocks->next));
    }
}

void CNamePool::AddBlock(std::size_t size) {
    auto* const block = static_cast<Block*>(platform::Allocate(offsetof(Block, memory) + size));
    if (block == nullptr) {
        std::fprintf(console, "Could not allocate more memory.\n");
        std::exit(-1);
    }
    block->next = blocks;
    blocks = block;
    used = 0;
}

const char* CNamePool::Store(std::string_view name) {
    auto* const copy = static_cast<char*>(Take(name.size() + 1, 1));
    std::memcpy(copy, name.data(), name.size());
    copy[name.size()] = '\0';
    return copy;
}

void* CNamePool::Take(std::size_t size, std::size_t alignment) {
    used = (used + alignment - 1) & ~(alignment - 1);
    if (used + size >= blockSize) {
        AddBlock(size < blockSize ? blockSize : size);
    }
    return blocks->memory + std::exchange(used, used + size);
}

}  // namespace korv
