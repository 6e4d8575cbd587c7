/// The buffer that holds the image of the run; it grows as needed. Its positions are offsets in the
/// image, not addresses: callers keep the location counter separately, and neither is computed from
/// the other.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

#include "diagnostics/message_numbers.h"
#include "platform/platform.h"

namespace korv {

class BinBlock {
  public:
    /// Creates a buffer of `initialSize` bytes, filled with 0xFF. If an allocation fails, here or
    /// in any other operation, the failure is reported to `stream` and the process ends. `stream`
    /// is not owned.
    BinBlock(std::uint32_t initialSize, std::FILE* stream);
    ~BinBlock();
    BinBlock(const BinBlock&) = delete;
    BinBlock& operator=(const BinBlock&) = delete;

    /// These append the low bits of a value, unchecked. Result: the offset of the first byte.
    // Forced inlining saves 0.6 % of the instructions of a run here, and as much again in EmitByte.
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
    /// Appends `count` zero bytes, as that many calls to `PutByte` would.
    std::uint32_t PutZeros(std::uint32_t count);

    /// These overwrite bytes and leave `Position` unchanged. Result: `at`. If all bits of `at` are
    /// set, `PutByteAt` writes nothing, and `PutWordAt` must not be called.
    std::uint32_t PutByteAt(std::int32_t value, std::uint32_t at);
    std::uint32_t PutWordAt(std::int32_t value, std::uint32_t at);

    /// Number of bytes appended so far.
    [[nodiscard]] std::uint32_t Position() const { return position; }
    /// The byte at `offset`; 0xFF after the last byte.
    [[nodiscard]] std::uint8_t At(std::uint32_t offset) const {
        return offset < position ? data[offset] : 0xFF;
    }

    /// All bytes; valid until another byte is appended.
    [[nodiscard]] std::span<const std::uint8_t> Bytes() const { return {data, position}; }

    /// Writes all bytes to `file`, which records any failure.
    void WriteTo(platform::OutputFile* file) const { file->Write(data, position); }
    /// Prints its part of the status dump. Result: 0, or `noStream`.
    Status DumpStatus(std::FILE* stream) const;

  private:
    // Single bytes and zeros grow the buffer in small steps; words and blocks of bytes, in larger
    // ones.
    static constexpr std::uint32_t byteStep = 4096;
    static constexpr std::uint32_t wordStep = 16384;

    // Tries to grow in one allocation, by as many steps of `step` bytes as are needed to include
    // `offset`, which is outside the buffer. A failure is not reported: the caller then grows the
    // buffer in single steps, so that the failure message shows the size that was reached.
    void GrowAtOnce(std::uint32_t step, std::uint64_t offset);
    // Grows in steps of `step` bytes until `offset` is inside the buffer.
    void GrowBy(std::uint32_t step, std::uint64_t offset);
    // Like `GrowBy`, but does nothing if `offset` is already inside.
    void Reserve(std::uint32_t step, std::uint64_t offset) {
        if (offset >= size) {
            GrowBy(step, offset);
        }
    }
    // An append rarely has to grow the buffer. When it does, it makes a tail call, so that the
    // usual case contains no call.
    std::uint32_t GrowAndPutByte(std::int32_t value);
    std::uint32_t GrowAndPutWord(std::int32_t value);

    std::uint8_t* data;  // owned
    std::uint32_t size;  // bytes allocated
    std::uint32_t position = 0;
    std::FILE* stream;
};

}  // namespace korv
