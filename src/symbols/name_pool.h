/// Memory for the texts of names, and for other data with the same lifetime.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string_view>

namespace korv {

/// Blocks of 4096 or more bytes, filled from front to back and released together; nothing in them
/// moves. Equal texts are not shared.
class CNamePool {
  public:
    /// Creates the first block. If an allocation fails, here or later, the failure is reported to
    /// `console` and the process ends. `console` is not owned.
    explicit CNamePool(std::FILE* console);
    ~CNamePool();
    CNamePool(const CNamePool&) = delete;
    CNamePool& operator=(const CNamePool&) = delete;

    /// Returns a null-terminated copy of `name`, valid as long as the pool exists.
    const char* Store(std::string_view name);
    /// Returns `size` bytes of memory, valid as long as the pool exists. `alignment` is a power of
    /// 2.
    void* Take(std::size_t size, std::size_t alignment);

  private:
    struct Block;
    void AddBlock(std::size_t size);

    static constexpr std::size_t blockSize = 4096;

    std::FILE* console;
    Block* blocks = nullptr;  // owned; the first is the newest and the current one
    std::size_t used = 0;     // bytes used in the current block
};

}  // namespace korv
