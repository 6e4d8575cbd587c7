// The reader. Nearly every line is plain text in one piece, perhaps with strings and a comment.
// Such a line is copied in chunks and converted to upper case in the same step; only a chunk with a
// byte that needs attention is examined more closely. All other lines, such as those with
// continuations or unusual bytes and those at the end of a block, are read byte by byte.

#include "source/source_file.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>
#include <new>

#include "source/char_class.h"
#include "source/line_cleaner.h"

namespace korv {
namespace {

// The part of a line that the next bytes belong to.
enum class Run { plain, string, comment };

// Sixteen bytes that are processed at once. All supported compilers have such vectors.
constexpr std::size_t chunkSize = 16;
using Chunk __attribute__((vector_size(chunkSize))) = std::uint8_t;
using SignedChunk __attribute__((vector_size(chunkSize))) = std::int8_t;
// Processors differ in how calls pass these vectors, but all such calls are within this file.
#pragma GCC diagnostic ignored "-Wpsabi"

Chunk All(char c) {
    return Chunk{} + static_cast<std::uint8_t>(c);
}

// Marks the bytes with values from `first` to `last`. The range is shifted to start at the lowest
// signed number, since vector instructions compare signed numbers.
template <char first, char last>
auto Between(Chunk bytes) {
    constexpr int lowest = -128;
    return reinterpret_cast<SignedChunk>(bytes + All(static_cast<char>(lowest - first))) <
           SignedChunk{} + static_cast<std::int8_t>(lowest + last - first + 1);
}

// Marks the bytes that need attention, and a few control characters that hardly ever occur.
template <Run run>
auto AttentionIn(Chunk bytes) {
    auto attention = Between<'\n', endOfText>(bytes);
    if constexpr (run != Run::comment) {
        attention |= bytes == All('"');
    }
    if constexpr (run == Run::plain) {
        attention |= bytes == All(';');
    }
    return attention;
}

// The index of the first byte that is not 0; the size of a chunk if all bytes are 0.
template <typename Mask>
std::size_t FirstIn(Mask mask) {
#ifdef __SSE2__
    const int bits = __builtin_ia32_pmovmskb128(
        reinterpret_cast<__attribute__((vector_size(chunkSize))) char>(mask));
    return static_cast<std::size_t>(
        std::countr_zero(static_cast<unsigned>(bits) | 1U << chunkSize));
#else
    std::uint64_t halves[2];
    std::memcpy(halves, &mask, chunkSize);
    const std::uint64_t half = halves[0] != 0 ? halves[0] : halves[1];
    const int bits = std::endian::native == std::endian::little ? std::countr_zero(half)
                                                                : std::countl_zero(half);
    return (halves[0] != 0 ? 0 : 8) + static_cast<std::size_t>(bits) / 8;
#endif
}

// Copies the bytes at `from` up to the first one that needs attention, but at most a chunk. Letters
// of plain text are converted to upper case; comments are not copied. Always reads a whole chunk
// and, except in a comment, writes a whole chunk. Result: the number of bytes before the one that
// needs attention.
template <Run run>
std::size_t CopyChunk(const std::uint8_t* from, char* to) {
    Chunk bytes;
    std::memcpy(&bytes, from, chunkSize);
    const std::size_t length = FirstIn(AttentionIn<run>(bytes));
    if constexpr (run == Run::plain) {
        bytes -= reinterpret_cast<Chunk>(Between<'a', 'z'>(bytes)) & All('a' - 'A');
    }
    if constexpr (run != Run::comment) {
        std::memcpy(to, &bytes, chunkSize);
    }
    return length;
}

// Copies chunks from `*next` to `*out` up to a byte that needs attention, and advances both
// pointers. `lastChunk` is the last position at which a whole chunk may be read. False: no byte
// that needs attention was found up to there.
template <Run run>
bool CopyRun(const std::uint8_t** next, char** out, const std::uint8_t* lastChunk) {
    while (*next <= lastChunk) {
        const std::size_t count = CopyChunk<run>(*next, *out);
        *next += count;
        *out += run == Run::comment ? 0 : count;
        if (count != chunkSize) {
            return true;
        }
    }
    return false;
}

// The characters that need attention at the end of a line: blanks, and the backslash of a
// continuation. This is a table for speed, since every line is checked.
constexpr auto isOddEnd = [] {
    std::array<bool, 256> table{};
    for (std::size_t byte = 0; byte < table.size(); ++byte) {
        table[byte] = byte == '\\' || (charClass[byte] & CC_BLANK) != 0;
    }
    return table;
}();

}  // namespace

CSourceFile::CSourceFile(std::string_view name, std::uint32_t maxBufferSize) {
    if (!stream.Open(name)) {
        return;
    }
    constexpr std::uint64_t most = std::numeric_limits<std::uint32_t>::max();
    fileSize = static_cast<std::uint32_t>(std::min(stream.Size(), most));
    bufferSize = stream.HasSize() ? std::min(maxBufferSize, fileSize) : maxBufferSize;
    buffer.reset(new (std::nothrow) std::uint8_t[bufferSize]);
}

CSourceFile CSourceFile::OfText(std::string_view text) {
    CSourceFile file;
    file.fileSize = static_cast<std::uint32_t>(text.size());
    file.isInMemory = true;
    file.TakeBlock(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    return file;
}

Status CSourceFile::OpenStatus() const {
    return buffer != nullptr || isInMemory ? 0
           : stream.IsOpen()               ? MSG_OUT_OF_MEMORY
                                           : MSG_CANNOT_OPEN;
}

// Continues with the `count` bytes at `block`.
void CSourceFile::TakeBlock(const std::uint8_t* block, std::size_t count) {
    readPosition = block;
    endOfData = block + count;
    endOfChunks = block + (count > chunkSize ? count - chunkSize : 0);
}

// Reads the next block. False: there are no more bytes.
bool CSourceFile::ReadBlock() {
    if (isInMemory) {
        return false;
    }
    TakeBlock(buffer.get(), stream.Read(buffer.get(), bufferSize));
    return readPosition != endOfData;
}

Status CSourceFile::ReadLine(char* line, std::uint32_t maxLength, std::uint32_t* bytesOut,
                             std::uint32_t* linesOut) {
    return ReadPlainLine(line, maxLength, bytesOut, linesOut)
               ? 0
               : ReadAnyLine(line, maxLength, bytesOut, linesOut);
}

// Reads the next line in the usual case: the line is in one piece in the buffer and is not
// continued. False: this is not the usual case, and nothing has been read.
inline bool CSourceFile::ReadPlainLine(char* line, std::uint32_t maxLength, std::uint32_t* bytesOut,
                                       std::uint32_t* linesOut) {
    const std::uint8_t* next = readPosition;
    if (next >= endOfChunks) [[unlikely]] {
        return false;
    }
    const std::size_t count = CopyChunk<Run::plain>(next, line);
    next += count;
    char* out = line + count;
    bool hasComment = false;
    if (*next != '\n' && !CopyToLineFeed(&next, &out, maxLength, &hasComment)) {
        return false;
    }
    if (out == line || isOddEnd[static_cast<std::uint8_t>(out[-1])]) [[unlikely]] {
        char* const last = WithoutBlanks(line, out);
        if (last != line && last[-1] == '\\' && !hasComment) {
            return false;
        }
        if (last != line || hasComment) {  // a line that is all blanks keeps them
            out = last;
        }
    }
    *out = '\0';
    const auto length = static_cast<std::size_t>(next + 1 - readPosition);
    if (length > maxLength) [[unlikely]] {
        return false;
    }
    readPosition = next + 1;
    *bytesOut = static_cast<std::uint32_t>(length);
    *linesOut = 1;
    return true;
}

// Copies the rest of a line, up to the line feed; a comment and a final carriage return are
// skipped. Chunks are read and written whole, so this function gives up near the end of the buffer
// and near `maxLength`. False: it has given up there, or at a byte that it does not handle.
bool CSourceFile::CopyToLineFeed(const std::uint8_t** next, char** out, std::uint32_t maxLength,
                                 bool* hasComment) {
    if (maxLength < chunkSize) {
        return false;
    }
    const auto room = std::min(static_cast<std::size_t>(endOfChunks - readPosition),
                               std::size_t{maxLength} - chunkSize);
    const std::uint8_t* const lastChunk = readPosition + room;
    if (!CopyRun<Run::plain>(next, out, lastChunk)) {
        return false;
    }
    while (**next == '"') {  // the string, and the text after it
        for (const Run run : {Run::string, Run::plain}) {
            *(*out)++ = '"';
            ++*next;
            const bool isFound = run == Run::string ? CopyRun<Run::string>(next, out, lastChunk)
                                                    : CopyRun<Run::plain>(next, out, lastChunk);
            if (!isFound || (run == Run::string && **next != '"')) {
                return false;
            }
        }
    }
    if (**next == ';') {
        *hasComment = true;
        if (!CopyRun<Run::comment>(next, out, lastChunk) || isOddEnd[(*next)[-1]]) {
            return false;
        }
    }
    if (**next == '\r' && *next < lastChunk) {
        ++*next;
    }
    return **next == '\n';
}

// Reads the next line, whatever its form.
[[gnu::noinline]] Status CSourceFile::ReadAnyLine(char* line, std::uint32_t maxLength,
                                                  std::uint32_t* bytesOut,
                                                  std::uint32_t* linesOut) {
    *line = '\0';
    if (IsOpen() == 0) {
        return endOfFile;
    }
    LineCleaner cleaner{line};
    bool goesOn = true;
    while (goesOn && (readPosition != endOfData || ReadBlock())) {
        if (cleaner.taken - cleaner.released == maxLength) {
            return MSG_LINE_TOO_LONG;
        }
        goesOn = cleaner.Take(static_cast<char>(*readPosition++));
    }
    cleaner.Finish();
    *bytesOut = cleaner.taken;
    *linesOut = cleaner.lines;
    return cleaner.taken == 0 ? endOfFile : 0;
}

}  // namespace korv
