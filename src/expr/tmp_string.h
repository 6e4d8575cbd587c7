/// Text that outlives its statement. A handle refers to a string in a block of 16384 bytes. Blocks
/// are filled from front to back; a string needs no separate allocation and never moves. A block
/// counts the handles that refer to it, and is freed when it is full and the last reference has
/// been released. All handles of the process share one pool.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "diagnostics/message_numbers.h"

namespace korv {

struct CtmpStringBlock {
    std::int32_t refCount = 0;            ///< handles that refer to this block
    char* data = nullptr;                 ///< owned
    std::size_t used = 0;                 ///< bytes handed out; only grows
    std::size_t size = 0;                 ///< bytes of `data`: 16384, or more for a longer string
    CtmpStringBlock* next = nullptr;      ///< the next older block
    CtmpStringBlock* previous = nullptr;  ///< the next newer block
    std::int32_t isFull = 0;              ///< 1 once the block takes no more strings
};

/// The pool. Nothing else changes the state of its blocks. All runs of the process share it, so
/// they must be in one thread.
class CtmpStringManager {
  public:
    /// Allocates `count` bytes in the current block or in a new one. Adds a reference to that block
    /// and stores the block in `block`. Result: the bytes. Ends the process if there is no memory
    /// for a block.
    static char* Alloc(std::size_t count, CtmpStringBlock** block);

    /// Drops a reference to `block`.
    static void Release(CtmpStringBlock* block);

    /// Frees every block, whatever its count. All handles must already have been destroyed.
    static void ReleaseAll();

    /// Writes the number of blocks and a line for each, the newest first. Result: 0, or `noStream`.
    static Status DumpStatus(std::FILE* stream);

  private:
    static void MakeBlock(std::size_t size);
    static void FreeBlock(CtmpStringBlock* block);

    static constexpr std::size_t blockSize = 16384;

    inline static CtmpStringBlock* head = nullptr;     // the newest block
    inline static CtmpStringBlock* current = nullptr;  // the block for new strings
    inline static std::int32_t blockCount = 0;
};

class CtmpString {
  public:
    CtmpString() = default;
    CtmpString(const CtmpString&) = delete;
    CtmpString& operator=(const CtmpString&) = delete;
    ~CtmpString() { Release(); }

    /// Copies `source` into the pool and null-terminates it. Does nothing if `source` has no data.
    /// The handle must be empty.
    void Assign(std::string_view source);

    /// Drops the reference; the handle is empty afterwards.
    void Release() {
        if (block != nullptr) {
            CtmpStringManager::Release(block);
            block = nullptr;
            text = nullptr;
            length = 0;
        }
    }

    /// The null-terminated text, valid as long as the handle holds its reference; null for an empty
    /// handle.
    [[nodiscard]] const char* c_str() const { return text; }
    [[nodiscard]] std::string_view View() const { return {text, length}; }

  private:
    char* text = nullptr;
    std::size_t length = 0;
    CtmpStringBlock* block = nullptr;
};

}  // namespace korv
