#include "symbols/name_pool.h"

#include <cstdlib>
#include <cstring>
#include <utility>

#include "platform/platform.h"

namespace korv {

namespace {
constexpr std::size_t blockSize = 4096;
}

struct CNamePool::Block {
    Block* next;
    char text[1];  // `blockSize` bytes, more for a name that is longer
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
    auto* const block = static_cast<Block*>(platform::Allocate(offsetof(Block, text) + size));
    if (block == nullptr) {
        std::fprintf(console, "Could not allocate more memory.\n");
        std::exit(-1);
    }
    block->next = blocks;
    blocks = block;
    used = 0;
}

const char* CNamePool::Store(std::string_view name) {
    const std::size_t size = name.size() + 1;
    if (used + size >= blockSize) {
        AddBlock(size < blockSize ? blockSize : size);
    }
    char* const copy = blocks->text + used;
    std::memcpy(copy, name.data(), name.size());
    copy[name.size()] = '\0';
    used += size;
    return copy;
}

}  // namespace korv
