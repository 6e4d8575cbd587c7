// The reader. Nearly every line is plain text in one piece, perhaps with strings and with a
// comment: it is copied by the chunk, raised to upper case on the way, and only looked at more
// closely where a chunk holds a byte that needs attention. All other lines, with continuations,
// with odd bytes, at the end of a block, go byte by byte.
//
// The hard idea is the last significant character, which decides where trailing blanks begin and
// whether the line goes on. It is not kept up to date per byte but found when it is asked for, by
// walking back over blanks from the end of what has been stored. After a continuation it is the
// place of the backslash, and the backslash stands there until something overwrites it: hence an
// empty line after a continuation continues the line again.

#include "source/source_file.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <new>

#include "source/char_class.h"

namespace korv {
namespace {

constexpr char endOfText = 0x1A;  // ends a text file on some old systems; here it is nothing

// What the bytes ahead belong to.
enum class Run { plain, string, comment };

// Sixteen bytes that are worked at once; vectors of this kind are common to the compilers we build
// with.
constexpr std::size_t chunkSize = 16;
using Chunk __attribute__((vector_size(chunkSize))) = std::uint8_t;
using SignedChunk __attribute__((vector_size(chunkSize))) = std::int8_t;
// How a call passes them differs between targets; these calls all stay in this file.
#pragma GCC diagnostic ignored "-Wpsabi"

Chunk All(char c) {
    return Chunk{} + static_cast<std::uint8_t>(c);
}

// The bytes from `first` to `last`. Moved to the lowest of the signed numbers, which are what
// machines compare.
template <char first, char last>
auto Between(Chunk bytes) {
    constexpr int lowest = -128;
    return reinterpret_cast<SignedChunk>(bytes + All(static_cast<char>(lowest - first))) <
           SignedChunk{} + static_cast<std::int8_t>(lowest + last - first + 1);
}

// The bytes that need attention, and with them a few control characters that hardly ever occur.
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

// Index of the first byte that is not 0; the size of a chunk for none.
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

// The bytes at `from` up to the first one that needs attention, at most a chunk: copies them, with
// the letters raised in plain text; of a comment nothing is wanted. A whole chunk is read, and
// written. Result: their number.
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

// Copies chunks from `*next` to `*out`, both moved on, up to a byte that needs attention. False:
// there is none before `lastChunk`, after which no whole chunk is left.
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

// The same question and the same change for one byte.
bool NeedsAttention(std::uint8_t byte, Run run) {
    return byte == '\n' || byte == '\r' || byte == endOfText ||
           (byte == '"' && run != Run::comment) || (byte == ';' && run == Run::plain);
}

// The end of the text from `start` to `end` without the blanks at its end.
char* WithoutBlanks(char* start, char* end) {
    while (end != start && HasClass(end[-1], CC_BLANK)) {
        --end;
    }
    return end;
}

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

CSourceFile::CSourceFile(std::string_view contents)
    : fileSize(static_cast<std::uint32_t>(contents.size())), isInMemory(true) {
    TakeBlock(reinterpret_cast<const std::uint8_t*>(contents.data()), contents.size());
}

Status CSourceFile::OpenStatus() const {
    return buffer != nullptr || isInMemory ? 0
           : stream.IsOpen()               ? MSG_OUT_OF_MEMORY
                                           : MSG_CANNOT_OPEN;
}

// The next `count` bytes are at `block`. Result: whether there are any.
bool CSourceFile::TakeBlock(const std::uint8_t* block, std::size_t count) {
    readPosition = block;
    endOfData = block + count;
    endOfChunks = block + (count > chunkSize ? count - chunkSize : 0);
    return count != 0;
}

Status CSourceFile::ReadLine(char* line, std::uint32_t maxLength, std::uint32_t* bytesOut,
                             std::uint32_t* linesOut) {
    return ReadPlainLine(line, maxLength, bytesOut, linesOut)
               ? 0
               : ReadAnyLine(line, maxLength, bytesOut, linesOut);
}

// Reads the next line if it is the usual case: in one piece in the buffer and without a
// continuation. False: it is another case, and nothing has been read.
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
    if (out == line || HasClass(out[-1], CC_BLANK | CC_BACKSLASH)) [[unlikely]] {
        char* const last = WithoutBlanks(line, out);
        if (last != line && last[-1] == '\\' && !hasComment) {
            return false;
        }
        if (last != line || hasComment) {  // a line of only blanks keeps them
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

// Goes on with a line whose first chunk does not end it: strings, a comment, the carriage return of
// its end. A chunk is read and written whole, so the end of the buffer and of the longest line are
// not its business. False: it comes near them, or there is something else.
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
    while (**next == '"') {  // the string, and what follows it
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
        if (!CopyRun<Run::comment>(next, out, lastChunk) ||
            HasClass(static_cast<char>((*next)[-1]), CC_BLANK | CC_BACKSLASH)) {
            return false;
        }
    }
    if (**next == '\r' && *next < lastChunk) {
        ++*next;
    }
    return **next == '\n';
}

// Reads the next line, whatever it is.
Status CSourceFile::ReadAnyLine(char* line, std::uint32_t maxLength, std::uint32_t* bytesOut,
                                std::uint32_t* linesOut) {
    char* out = line;                 // where the next character goes
    char* segment = line;             // start of the line, or of what follows the last continuation
    char* lastSignificant = nullptr;  // what it was at `segment`
    char* commentStart = nullptr;
    std::uint32_t total = 0;     // bytes taken from the file
    std::uint32_t released = 0;  // those of them that do not count against maxLength any more
    std::uint32_t lines = 0;
    Status result = 0;
    Run run = Run::plain;
    const auto findLastSignificant = [&] {
        char* const end = WithoutBlanks(segment, out);
        return end == segment ? lastSignificant : end - 1;
    };

    *line = '\0';
    if (IsOpen() == 0) {
        return endOfFile;
    }
    for (;;) {
        if (readPosition == endOfData &&
            (isInMemory || !TakeBlock(buffer.get(), stream.Read(buffer.get(), bufferSize)))) {
            result = total == 0 ? endOfFile : 0;
            break;
        }
        const std::uint8_t* const start = readPosition;
        const std::uint8_t* const end =
            start + std::min<std::size_t>(static_cast<std::size_t>(endOfData - start),
                                          maxLength + released - total);
        const std::uint8_t* next = start;
        while (next != end && !NeedsAttention(*next, run)) {
            *out++ =
                run == Run::plain ? Raised(static_cast<char>(*next)) : static_cast<char>(*next);
            ++next;
        }
        total += static_cast<std::uint32_t>(next - start);
        readPosition = next;
        if (next == end) {
            if (next == endOfData) {
                continue;
            }
            return MSG_LINE_TOO_LONG;
        }

        const char c = static_cast<char>(*readPosition++);
        ++total;
        if (c == '\n') {
            ++lines;
            char* const last = findLastSignificant();
            if (last == nullptr || *last != '\\') {
                break;
            }
            released += static_cast<std::uint32_t>(out - last);
            lastSignificant = segment = out = last;
        } else if (c != '\r' && c != endOfText) {
            if (c == '"') {
                run = run == Run::string ? Run::plain : Run::string;
            } else if (c == ';') {
                char* const last = findLastSignificant();
                commentStart = last == nullptr ? line : last + 1;
                run = Run::comment;
            }
            *out++ = c;
        }
    }

    *bytesOut = total;
    *linesOut = lines;
    *out = '\0';
    if (char* const last = findLastSignificant(); last != nullptr) {
        last[1] = '\0';
    }
    if (commentStart != nullptr) {
        *commentStart = '\0';
    }
    return result;
}

}  // namespace korv
