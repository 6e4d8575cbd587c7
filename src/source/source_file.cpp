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
#include <limits>

#include "diagnostics/message_numbers.h"
#include "source/char_class.h"

namespace korv {
namespace {

// What is stored for a byte; 0 for the bytes that need attention.
using RunTable = std::array<std::uint8_t, 256>;

constexpr RunTable MakeRunTable(bool isFolding, std::string_view attention) {
    RunTable table{};
    for (unsigned c = 1; c < table.size(); ++c) {
        const bool isLower = (charClass[c] & CC_LOWER) != 0;
        table[c] = static_cast<std::uint8_t>(isFolding && isLower ? c - 32 : c);
    }
    for (const char c : attention) {
        table[static_cast<std::uint8_t>(c)] = 0;
    }
    return table;
}

constexpr char endOfText = 0x1A;  // ends a text file on some old systems; here it is nothing
constexpr RunTable plainRun = MakeRunTable(true, "\n\r\x1A\";");
constexpr RunTable stringRun = MakeRunTable(false, "\n\r\x1A\"");
constexpr RunTable commentRun = MakeRunTable(false, "\n\r\x1A");

}  // namespace

CSourceFile::CSourceFile(std::string_view name, std::uint32_t maxBufferSize) {
    if (!stream.Open(name)) {
        return;
    }
    constexpr std::uint64_t most = std::numeric_limits<std::uint32_t>::max();
    fileSize = static_cast<std::uint32_t>(std::min(stream.Size(), most));
    const std::uint32_t wanted =
        stream.HasSize() ? std::min(maxBufferSize, fileSize) : maxBufferSize;
    buffer = static_cast<std::uint8_t*>(platform::Allocate(wanted));
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
    endOfData = buffer + stream.Read(buffer, bufferSize);
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
    const std::uint8_t* run = plainRun.data();
    const auto findLastSignificant = [&] {
        char* end = out;
        while (end != segment && HasClass(end[-1], CC_BLANK)) {
            --end;
        }
        return end == segment ? lastSignificant : end - 1;
    };

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
        while (next != end && run[*next] != 0) {
            *out++ = static_cast<char>(run[*next++]);
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
            if (last == nullptr || *last != '\\') {
                break;
            }
            used -= static_cast<std::uint32_t>(out - last);
            lastSignificant = segment = out = last;
        } else if (c == '\r' || c == endOfText) {
            continue;
        } else {
            if (c == '"') {
                inString = !inString;
                run = inString ? stringRun.data() : plainRun.data();
            } else if (c == ';') {
                char* const last = findLastSignificant();
                commentStart = last == nullptr ? line : last + 1;
                run = commentRun.data();
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
