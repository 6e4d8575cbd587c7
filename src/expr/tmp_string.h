/// Text that outlives its statement: handles of strings in blocks of 16384 bytes, which are filled
/// from front to back. A string needs no separate allocation and never moves. A block counts its
/// live references. It is freed when it is full and the last of them has been released. All handles
/// of the process share one pool.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "diagnostics/message_numbers.h"

namespace korv {

struct CtmpStringBlock {
    std::int32_t refCount = 0;  ///< handles with a reference on this block
    char* data = nullptr;       ///< owned
    std::size_t used = 0;       ///< bytes handed out; only grows
    std::size_t size = 0;  ///< bytes of `data`: 16384, more for a string that is longer than that
    CtmpStringBlock* next = nullptr;      ///< the next older block
    CtmpStringBlock* previous = nullptr;  ///< the next newer block
    std::int32_t isFull = 0;              ///< 1 once a request did not fit
};

/// The pool, which alone changes the state of its blocks. Process-wide: all runs share it, in one
/// thread.
class CtmpStringManager {
  public:
    /// Takes `count` bytes from the current block or from a new one. Returns that block, with one
    /// more reference, in `block`. Result: the bytes. Ends the process when there is no memory for
    /// a block.
    static char* Alloc(std::size_t count, CtmpStringBlock** block);

    /// Drops a reference on `block`.
    static void Release(CtmpStringBlock* block);

    /// Frees every block, whatever its count. All handles must have been destroyed before.
    static void ReleaseAll();

    /// Writes the number of blocks and a line for each, the newest first. Result: 0, or `noStream`.
    static Status DumpStatus(std::FILE* stream);

  private:
    static void MakeBlock(std::size_t size);
    static void FreeBlock(CtmpStringBlock* block);

    static constexpr std::size_t blockSize = 16384;

    inline static CtmpStringBlock* head = nullptr;     // the newest block
    inline static CtmpStringBlock* current = nullptr;  // the block that takes new strings
    inline static std::int32_t blockCount = 0;
};

class CtmpString {
  public:
    CtmpString() = default;
    CtmpString(const CtmpString&) = delete;
    CtmpString& operator=(const CtmpString&) = delete;
    ~CtmpString() { Release(); }

    /// Copies `source` into the pool, terminated. Does nothing if it has no data. The handle must
    /// be empty.
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

    /// The terminated text, valid as long as the handle holds its reference; null for an empty
    /// handle.
    [[nodiscard]] const char* c_str() const { return text; }
    [[nodiscard]] std::string_view View() const { return {text, length}; }

  private:
    char* text = nullptr;
    std::size_t length = 0;
    CtmpStringBlock* block = nullptr;
};

}  // namespace korv
