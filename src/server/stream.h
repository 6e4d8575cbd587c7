/// The base protocol: messages, each after a header with its length, over a connection. Only this
/// class reads the input and writes the output of the server.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "frontend/platform/platform.h"

namespace korv {

class MessageStream {
  public:
    /// In bytes. No editor sends a longer message.
    static constexpr std::size_t longestMessage = 64 * 1024 * 1024;

    /// `connection` is not owned.
    explicit MessageStream(platform::Connection* connection) : connection(connection) {}

    enum class Wait { no, yes };
    /// The next message, without its header. None: the input has ended, or with `Wait::no` the
    /// message has not arrived completely.
    [[nodiscard]] std::optional<std::string> Read(Wait wait);
    /// Why the input cannot be divided into messages; empty if it can.
    [[nodiscard]] const std::string& Failure() const { return failure; }

    void Write(std::string_view message);

  private:
    void Fill();
    bool TakeHeader();
    void TakeField(std::string_view line);
    void Fail(std::string_view sentence);

    platform::Connection* connection;
    std::string input;                  // read so far
    std::size_t taken = 0;              // bytes of `input` that are no longer needed
    std::optional<std::size_t> length;  // of the message whose header has been read
    bool isAtEnd = false;               // nothing more is read
    std::string failure;
};

}  // namespace korv
