#include "expr/tmp_string.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "platform/platform.h"

namespace korv {

void CtmpStringManager::MakeBlock(std::size_t size) {
    auto* const block = new (std::nothrow) CtmpStringBlock;
    char* const data = block == nullptr ? nullptr : static_cast<char*>(platform::Allocate(size));
    if (data == nullptr) {
        delete block;
        platform::PrintMemoryFailure("Could not allocate memory for CtmpStringBlock!");
        std::exit(-1);
    }
    block->data = data;
    block->size = size;
    block->next = head;
    if (head != nullptr) {
        head->previous = block;
    }
    head = current = block;
    ++blockCount;
}

void CtmpStringManager::FreeBlock(CtmpStringBlock* block) {
    if (block->next != nullptr) {
        block->next->previous = block->previous;
    }
    (block->previous == nullptr ? head : block->previous->next) = block->next;
    if (current == block) {
        current = head;
    }
    --blockCount;
    platform::Free(block->data);
    delete block;
}

char* CtmpStringManager::Alloc(std::size_t count, CtmpStringBlock** block) {
    if (head == nullptr) {
        MakeBlock(blockSize);
    }
    if (current->used + count > current->size) {
        current->isFull = 1;
        MakeBlock(std::max(blockSize, count));
        // A string longer than a block gets a separate block, which holds nothing else.
        current->isFull = count > blockSize ? 1 : 0;
    }
    char* const text = current->data + current->used;
    current->used += count;
    ++current->refCount;
    *block = current;
    return text;
}

void CtmpStringManager::Release(CtmpStringBlock* block) {
    if (--block->refCount == 0 && block->isFull != 0) {
        FreeBlock(block);
    }
}

void CtmpStringManager::ReleaseAll() {
    while (head != nullptr) {
        FreeBlock(head);
    }
}

Status CtmpStringManager::DumpStatus(std::FILE* stream) {
    if (stream == nullptr) {
        return noStream;
    }
    std::fprintf(stream, "   Block Count: %5d.\n", blockCount);
    for (const CtmpStringBlock* block = head; block != nullptr; block = block->next) {
        std::fprintf(stream, "     Size: %5zu, Reference count: %5d, IsFull: %d.\n", block->size,
                     block->refCount, block->isFull);
    }
    return 0;
}

void CtmpString::Assign(std::string_view source) {
    if (source.data() == nullptr) {
        return;
    }
    text = CtmpStringManager::Alloc(source.size() + 1, &block);
    length = source.size();
    std::memcpy(text, source.data(), length);
    text[length] = '\0';
}

}  // namespace korv
