#include "server/stream.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "source/char_class.h"

namespace korv {

void MessageStream::Fail(std::string_view sentence) {
    failure = sentence;
    isAtEnd = true;
}

// Reads the input that has arrived, or waits for some.
void MessageStream::Fill() {
    std::array<char, 65536> block;
    const std::size_t count = connection->Read(block.data(), block.size());
    isAtEnd = count == 0;
    input.erase(0, taken);
    taken = 0;
    input.append(block.data(), count);
}

void MessageStream::TakeField(std::string_view line) {
    constexpr std::string_view name = "Content-Length:";
    if (!std::ranges::equal(line.substr(0, name.size()), name, {}, Raised, Raised)) {
        return;  // Content-Type: UTF-8 is the only encoding
    }
    const std::string_view digits = WithoutLeadingBlanks(line.substr(name.size()));
    std::size_t value = SIZE_MAX;  // unchanged if the number is even larger
    const char* const end = digits.data() + digits.size();
    const char* const stop = std::from_chars(digits.data(), end, value).ptr;
    if (stop == digits.data() || !WithoutLeadingBlanks({stop, end}).empty()) {
        Fail("Content-Length is not a number");
    } else if (value > longestMessage) {
        Fail("a message is longer than 64 MiB");
    } else {
        length = value;
    }
}

// Reads the header of the next message. Result: false if it is malformed or incomplete.
bool MessageStream::TakeHeader() {
    constexpr std::size_t longestHeader = 4096;
    constexpr std::string_view lineEnd = "\r\n";
    const std::string_view rest = std::string_view(input).substr(taken);
    const std::size_t size = rest.find("\r\n\r\n");
    if (std::min(size, rest.size()) > longestHeader) {
        Fail("the input is not in messages with a Content-Length");
    }
    if (size == std::string_view::npos) {
        return false;
    }
    std::string_view header = rest.substr(0, size + lineEnd.size());
    while (!header.empty()) {
        const std::size_t end = header.find(lineEnd);
        TakeField(header.substr(0, end));
        header.remove_prefix(end + lineEnd.size());
    }
    if (!length && !isAtEnd) {
        Fail("a message has no Content-Length");
    }
    taken += size + 2 * lineEnd.size();
    return !isAtEnd;
}

std::optional<std::string> MessageStream::Read(Wait wait) {
    while (!isAtEnd) {
        if ((length || TakeHeader()) && input.size() - taken >= *length) {
            std::string message = input.substr(taken, *length);
            taken += *length;
            length.reset();
            return message;
        }
        if (isAtEnd || (wait == Wait::no && !connection->IsInputWaiting())) {
            break;
        }
        Fill();
    }
    return std::nullopt;
}

void MessageStream::Write(std::string_view message) {
    std::string header = "Content-Length: " + std::to_string(message.size()) + "\r\n\r\n";
    // In one piece, so that a client that reads in blocks receives whole messages.
    isAtEnd |= !connection->Write(header.append(message));
}

}  // namespace korv
