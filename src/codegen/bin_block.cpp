#include "codegen/bin_block.h"

#include <algorithm>
#include <cassert>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

namespace korv {

BinBlock::BinBlock(std::uint32_t initialSize, std::FILE* stream)
    : data(static_cast<std::uint8_t*>(platform::Allocate(initialSize))),
      size(initialSize),
      stream(stream) {
    if (data == nullptr) {
        std::fprintf(stream, "Could not allocate memory for BinBlock.\n");
        std::exit(-1);
    }
    std::memset(data, 0xFF, size);
}

BinBlock::~BinBlock() {
    platform::Free(data);
}

void BinBlock::GrowAtOnce(std::uint32_t step, std::uint64_t offset) {
    const std::uint64_t wanted = (offset - size) / step + 1;
    const std::uint64_t possible = (std::numeric_limits<std::uint32_t>::max() - size) / step;
    const auto grownSize = static_cast<std::uint32_t>(size + std::min(wanted, possible) * step);
    if (void* const grown = platform::TryReallocate(data, grownSize); grown != nullptr) {
        data = static_cast<std::uint8_t*>(grown);
        size = grownSize;
    }
}

void BinBlock::GrowBy(std::uint32_t step, std::uint64_t offset) {
    if (offset >= static_cast<std::uint64_t>(size) + step) {
        GrowAtOnce(step, offset);
    }
    while (offset >= size) {
        const bool hasRoom = size <= std::numeric_limits<std::uint32_t>::max() - step;
        void* const grown = hasRoom ? platform::Reallocate(data, size + step) : nullptr;
        if (grown == nullptr) {
            const bool isByte = step == byteStep;  // for words, the size is printed as signed
            std::fprintf(stream, "Could not allocate more memory! (Size=%lld)\n",
                         isByte ? static_cast<long long>(size) : static_cast<std::int32_t>(size));
            std::exit(-1);
        }
        data = static_cast<std::uint8_t*>(grown);
        size += step;
    }
}

std::uint32_t BinBlock::GrowAndPutByte(std::int32_t value) {
    GrowBy(byteStep, position);
    return PutByte(value);
}

std::uint32_t BinBlock::GrowAndPutWord(std::int32_t value) {
    GrowBy(wordStep, static_cast<std::uint64_t>(position) + 1);
    return PutWord(value);
}

std::uint32_t BinBlock::PutBytes(std::span<const std::uint8_t> bytes) {
    const std::uint64_t end = static_cast<std::uint64_t>(position) + bytes.size();
    Reserve(wordStep, end);
    std::memcpy(data + position, bytes.data(), bytes.size());
    return std::exchange(position, static_cast<std::uint32_t>(end));
}

std::uint32_t BinBlock::PutZeros(std::uint32_t count) {
    const std::uint32_t start = position;
    if (const std::uint64_t end = static_cast<std::uint64_t>(position) + count; end > size) {
        GrowAtOnce(byteStep, end - 1);
    }
    while (count > 0) {
        Reserve(byteStep, position);
        const std::uint32_t fitting = std::min(count, size - position);
        std::memset(data + position, 0, fitting);
        position += fitting;
        count -= fitting;
    }
    return start;
}

std::uint32_t BinBlock::PutByteAt(std::int32_t value, std::uint32_t at) {
    if (at != std::numeric_limits<std::uint32_t>::max()) {
        Reserve(byteStep, at);
        data[at] = static_cast<std::uint8_t>(value);
    }
    return at;
}

std::uint32_t BinBlock::PutWordAt(std::int32_t value, std::uint32_t at) {
    assert(at != std::numeric_limits<std::uint32_t>::max());
    Reserve(wordStep, static_cast<std::uint64_t>(at) + 1);
    std::uint8_t* const to = data + at;
    to[0] = static_cast<std::uint8_t>(value);
    to[1] = static_cast<std::uint8_t>(value >> 8);
    return at;
}

Status BinBlock::DumpStatus(std::FILE* output) const {
    if (output == nullptr) {
        return noStream;
    }
    std::fprintf(output, "   Block size: %5u.\n   Position:   %5u,\n", size, position);
    return 0;
}

}  // namespace korv
