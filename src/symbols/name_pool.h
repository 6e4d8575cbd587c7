/// Storage for the texts of names.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string_view>

namespace korv {

/// Blocks of 4096 bytes, filled from front to back and released as a whole: a text never moves. The
/// pool does not look for equal texts.
class CNamePool {
  public:
    /// Makes the first block. `console`, not owned, hears of a failed allocation, here and later;
    /// it ends the process.
    explicit CNamePool(std::FILE* console);
    ~CNamePool();
    CNamePool(const CNamePool&) = delete;
    CNamePool& operator=(const CNamePool&) = delete;

    /// Result: a terminated copy of `name`, valid as long as the pool.
    const char* Store(std::string_view name);

  private:
    struct Block;
    void AddBlock(std::size_t size);

    std::FILE* console;
    Block* blocks = nullptr;  // owned; the newest first, which is the current one
    std::size_t used = 0;     // bytes used in it
};

}  // namespace korv
