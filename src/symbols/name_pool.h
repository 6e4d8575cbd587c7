/// Memory for the texts of names, and for other data with the same lifetime.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string_view>

namespace korv {

/// Blocks of 4096 bytes, filled from front to back and released together; nothing in them moves.
/// Equal texts are not shared.
class CNamePool {
  public:
    /// Makes the first block. A failed allocation, here and later, is reported to `console`, which
    /// is not owned, and ends the process.
    explicit CNamePool(std::FILE* console);
    ~CNamePool();
    CNamePool(const CNamePool&) = delete;
    CNamePool& operator=(const CNamePool&) = delete;

    /// Result: a terminated copy of `name`, valid as long as the pool.
    const char* Store(std::string_view name);
    /// Memory of `size` bytes, valid as long as the pool. `alignment` is a power of 2.
    void* Take(std::size_t size, std::size_t alignment);

  private:
    struct Block;
    void AddBlock(std::size_t size);

    static constexpr std::size_t blockSize = 4096;

    std::FILE* console;
    Block* blocks = nullptr;  // owned; the newest first; that is the current one
    std::size_t used = 0;     // bytes used in the current block
};

}  // namespace korv
