// The reader. Every byte of the file is looked at once, here: runs of bytes that need no attention
// are copied through a table that folds their case, and only the few that do leave the loop: line
// feed, quote, semicolon, and the bytes that are dropped.
//
// The hard idea is the last significant character, which decides where trailing blanks begin and
// whether the line goes on. It is not kept up to date per byte but found when it is asked for, by
// walking back over blanks from the end of what has been stored. After a continuation it is the
// place of the backslash, and the backslash stands there until something overwrites it: hence an
// empty line behind a continuation continues the line again.

#include "source/source_file.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

#include "diagnostics/message_numbers.h"
#include "source/char_class.h"

namespace korv {
namespace {

constexpr char endOfText = 0x1A;  // ends a text file on some old systems; here it is nothing

// What the bytes ahead belong to.
enum class Run { plain, string, comment };

constexpr std::size_t chunkSize = 16;
static_assert(chunkSize == readSlack);
using Chunk __attribute__((vector_size(chunkSize))) = std::uint8_t;

Chunk All(char c) {
    return Chunk{} + static_cast<std::uint8_t>(c);
}

// Copies the bytes at `from` up to the first one that needs attention, at most a chunk; of plain
// text with its letters raised. A whole chunk is read and written in any case. Result: the number
// of bytes that count.
template <Run run>
std::size_t CopyRun(const std::uint8_t* from, char* to) {
    Chunk bytes;
    std::memcpy(&bytes, from, chunkSize);
    auto attention = (bytes == All('\n')) | (bytes == All('\r')) | (bytes == All(endOfText));
    if constexpr (run != Run::comment) {
        attention |= bytes == All('"');
    }
    if constexpr (run == Run::plain) {
        attention |= bytes == All(';');
        const Chunk isLower = reinterpret_cast<Chunk>(bytes - All('a') < All('z' - 'a' + 1));
        bytes -= isLower & All('a' - 'A');
    }
    std::memcpy(to, &bytes, chunkSize);
    std::uint64_t halves[2];
    std::memcpy(halves, &attention, chunkSize);
    const auto firstIn = [](std::uint64_t half) {
        const int bits = std::endian::native == std::endian::little ? std::countr_zero(half)
                                                                    : std::countl_zero(half);
        return static_cast<std::size_t>(bits) / 8;
    };
    return halves[0] != 0 ? firstIn(halves[0]) : 8 + firstIn(halves[1]);
}

}  // namespace

CSourceFile::CSourceFile(std::string_view name, std::uint32_t maxBufferSize) {
    if (!stream.Open(name)) {
        return;
    }
    constexpr std::uint64_t most = std::numeric_limits<std::uint32_t>::max();
    fileSize = static_cast<std::uint32_t>(std::min(stream.Size(), most));
    const std::uint32_t wanted =
        stream.HasSize() ? std::min(maxBufferSize, fileSize) : maxBufferSize;
    buffer = static_cast<std::uint8_t*>(platform::Allocate(std::size_t{wanted} + readSlack));
    if (buffer != nullptr) {
        bufferSize = wanted;
    }
}

CSourceFile::~CSourceFile() {
    platform::Free(buffer);
}

std::int32_t CSourceFile::OpenStatus() const {
    if (!stream.IsOpen()) {
        return MSG_CANNOT_OPEN;
    }
    return buffer == nullptr ? MSG_OUT_OF_MEMORY : 0;
}

bool CSourceFile::Fill() {
    readPosition = buffer;
    const std::size_t count = stream.Read(buffer, bufferSize);
    endOfData = buffer + count;
    std::memset(buffer + count, '\n', readSlack);  // stops a run at the end of the data
    return readPosition != endOfData;
}

std::int32_t CSourceFile::ReadLine(char* line, std::uint32_t maxLength, std::uint32_t* bytesOut,
                                   std::uint32_t* linesOut) {
    char* out = line;                 // where the next character goes
    char* segment = line;             // start of the line, or of what follows the last continuation
    char* lastSignificant = nullptr;  // what it was at `segment`
    char* commentStart = nullptr;
    bool inString = false;
    std::uint32_t used = 0;  // bytes charged against maxLength
    std::uint32_t total = 0;
    std::uint32_t lines = 0;
    std::int32_t result = 0;
    Run run = Run::plain;
    const auto findLastSignificant = [&] {
        char* end = out;
        while (end != segment && HasClass(end[-1], CC_BLANK)) {
            --end;
        }
        return end == segment ? lastSignificant : end - 1;
    };

    if (readPosition != endOfData) {
        // Most lines are plain text in one piece: they end here.
        const std::uint8_t* next = readPosition;
        const std::uint8_t* const end =
            next + std::min(static_cast<std::size_t>(endOfData - next), std::size_t{maxLength});
        std::size_t count = 0;
        do {
            count = CopyRun<Run::plain>(next, out);
            next += count;
            out += count;
        } while (count == chunkSize && next < end);
        if (next < end && *next == '\n') {
            char* last = out;
            while (last != line && HasClass(last[-1], CC_BLANK)) {
                --last;
            }
            if (last == line) {
                last = out;  // only blanks: they stay
            }
            if (last == line || last[-1] != '\\') {
                *last = '\0';
                *bytesOut = static_cast<std::uint32_t>(next + 1 - readPosition);
                *linesOut = 1;
                readPosition = next + 1;
                return 0;
            }
        }
        out = line;
    }
    *line = '\0';
    if (IsOpen() == 0) {
        return -1;
    }
    for (;;) {
        if (readPosition == endOfData && !Fill()) {
            result = total == 0 ? -1 : 0;
            break;
        }
        const std::uint8_t* const start = readPosition;
        const std::uint8_t* const end =
            start +
            std::min<std::size_t>(static_cast<std::size_t>(endOfData - start), maxLength - used);
        const std::uint8_t* next = start;
        for (std::size_t count = chunkSize; count == chunkSize && next != end;) {
            count = run == Run::plain    ? CopyRun<Run::plain>(next, out)
                    : run == Run::string ? CopyRun<Run::string>(next, out)
                                         : CopyRun<Run::comment>(next, out);
            count = std::min(count, static_cast<std::size_t>(end - next));
            next += count;
            out += count;
        }
        const auto length = static_cast<std::uint32_t>(next - start);
        used += length;
        total += length;
        readPosition = next;
        if (next == end) {
            if (next == endOfData) {
                continue;
            }
            return MSG_LINE_TOO_LONG;
        }

        const char c = static_cast<char>(*readPosition++);
        ++used;
        ++total;
        if (c == '\n') {
            ++lines;
            char* const last = findLastSignificant();
            // Where nothing was stored behind a continuation, its backslash still stands.
            const bool isStanding = last != nullptr && out == last;
            if (!isStanding && (last == nullptr || *last != '\\')) {
                break;
            }
            used -= static_cast<std::uint32_t>(out - last);
            lastSignificant = segment = out = last;
        } else if (c == '\r' || c == endOfText) {
            continue;
        } else {
            if (c == '"') {
                inString = !inString;
                run = inString ? Run::string : Run::plain;
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
