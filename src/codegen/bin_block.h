/// The growing buffer into which the whole run assembles. It has offsets in the target and no
/// addresses: the location counter is a separate number, which its users move. Neither is computed
/// from the other.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

#include "diagnostics/message_numbers.h"
#include "platform/platform.h"

namespace korv {

class BinBlock {
  public:
    /// A buffer of `initialSize` bytes, filled with 0xFF. A failed allocation, here and in every
    /// other operation, is reported to `stream`, which is not owned, and ends the process.
    BinBlock(std::uint32_t initialSize, std::FILE* stream);
    ~BinBlock();
    BinBlock(const BinBlock&) = delete;
    BinBlock& operator=(const BinBlock&) = delete;

    /// Appends take the low bits of a value, unchecked. Result: the offset of the first byte.
    // Inlined by force: 0.6 % of the instructions of a run, and as much again in EmitByte.
    [[gnu::always_inline]] std::uint32_t PutByte(std::int32_t value) {
        if (position >= size) [[unlikely]] {
            return GrowAndPutByte(value);
        }
        data[position] = static_cast<std::uint8_t>(value);
        return position++;
    }
    /// Low byte first.
    std::uint32_t PutWord(std::int32_t value) {
        const std::uint32_t start = position;
        if (start + 1 >= size) [[unlikely]] {
            return GrowAndPutWord(value);
        }
        position = start + 2;
        std::uint8_t* const to = data + start;
        to[0] = static_cast<std::uint8_t>(value);
        to[1] = static_cast<std::uint8_t>(value >> 8);
        return start;
    }
    std::uint32_t PutBytes(std::span<const std::uint8_t> bytes);
    /// Appends `count` zero bytes, like that many calls of `PutByte`.
    std::uint32_t PutZeros(std::uint32_t count);

    /// Overwrite, without moving `Position`. Result: `at`. If all bits of `at` are set, a byte is
    /// not written; a word must not be put there.
    std::uint32_t PutByteAt(std::int32_t value, std::uint32_t at);
    std::uint32_t PutWordAt(std::int32_t value, std::uint32_t at);

    /// Number of bytes appended so far.
    [[nodiscard]] std::uint32_t Position() const { return position; }
    /// The byte at `offset`, 0xFF after the last one.
    [[nodiscard]] std::uint8_t At(std::uint32_t offset) const {
        return offset < position ? data[offset] : 0xFF;
    }

    /// All bytes, until the next is appended.
    [[nodiscard]] std::span<const std::uint8_t> Bytes() const { return {data, position}; }

    /// Writes all bytes to `file`, which remembers whether that has failed.
    void WriteTo(platform::OutputFile* file) const { file->Write(data, position); }
    /// Prints the lines of the status dump. Result: 0, or `noStream`.
    Status DumpStatus(std::FILE* stream) const;

  private:
    // Single bytes grow the buffer in small steps, everything else in larger ones.
    static constexpr std::uint32_t byteStep = 4096;
    static constexpr std::uint32_t wordStep = 16384;

    // Tries to grow in one allocation by as many steps of `step` as it takes until `offset`, which
    // is outside, is inside the buffer. A failure is not reported: the single steps follow, and
    // their report shows how far the memory went.
    void GrowAtOnce(std::uint32_t step, std::uint64_t offset);
    // Grows in steps of `step` until `offset` is inside the buffer.
    void GrowBy(std::uint32_t step, std::uint64_t offset);
    // The same if it is not inside yet.
    void Reserve(std::uint32_t step, std::uint64_t offset) {
        if (offset >= size) {
            GrowBy(step, offset);
        }
    }
    // The rare case of an append is a call at its end, so that the usual case has none.
    std::uint32_t GrowAndPutByte(std::int32_t value);
    std::uint32_t GrowAndPutWord(std::int32_t value);

    std::uint8_t* data;  // owned
    std::uint32_t size;  // bytes allocated
    std::uint32_t position = 0;
    std::FILE* stream;
};

}  // namespace korv
