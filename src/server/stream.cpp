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

// Reads what there is of the input. False: it has ended.
bool MessageStream::Fill() {
    std::array<char, 65536> block;
    const std::size_t count = channel->Read(block.data(), block.size());
    isAtEnd = count == 0;
    if (taken > input.size() / 2) {
        input.erase(0, taken);
        taken = 0;
    }
    input.append(block.data(), count);
    return !isAtEnd;
}

void MessageStream::TakeField(std::string_view line) {
    constexpr std::string_view name = "Content-Length:";
    if (!std::ranges::equal(line.substr(0, name.size()), name, {}, Raised, Raised)) {
        return;  // Content-Type, whose only encoding is UTF-8
    }
    const std::string_view digits = WithoutLeadingBlanks(line.substr(name.size()));
    std::size_t value = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, value);
    if (error == std::errc::invalid_argument || !WithoutLeadingBlanks({stop, end}).empty()) {
        Fail("Content-Length is not a number");
    } else if (error != std::errc() || value > longestMessage) {
        Fail("a message is longer than 64 MiB");
    } else {
        length = value;
    }
}

// Takes the header of the next message, as soon as it is whole. False: it is not.
bool MessageStream::TakeHeader() {
    constexpr std::size_t longestHeader = 4096;
    constexpr std::string_view lineEnd = "\r\n";
    while (!isAtEnd) {
        const std::string_view rest = std::string_view(input).substr(taken);
        const std::size_t end = rest.find(lineEnd);
        if (end == std::string_view::npos || end > longestHeader) {
            if (rest.size() > longestHeader) {
                Fail("the input is not in messages with a Content-Length");
            }
            return false;
        }
        taken += end + lineEnd.size();
        if (end != 0) {
            TakeField(rest.substr(0, end));
        } else if (length) {
            return true;
        } else {
            Fail("a message has no Content-Length");
        }
    }
    return false;
}

std::optional<std::string> MessageStream::Read(Wait wait) {
    for (;;) {
        if (isAtEnd) {
            return std::nullopt;
        }
        if (hasHeader || (hasHeader = TakeHeader())) {
            if (input.size() - taken >= *length) {
                std::string message = input.substr(taken, *length);
                taken += *length;
                length.reset();
                hasHeader = false;
                return message;
            }
        }
        if (isAtEnd || (wait == Wait::no && !channel->IsInputWaiting()) || !Fill()) {
            return std::nullopt;
        }
    }
}

void MessageStream::Write(std::string_view message) {
    std::string header = "Content-Length: " + std::to_string(message.size()) + "\r\n\r\n";
    // In one piece: a client that reads by the block gets whole messages.
    if (!channel->Write(header.append(message))) {
        isAtEnd = true;
    }
}

}  // namespace korv
