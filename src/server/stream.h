/// The base protocol: messages over a connection, each preceded by a header with its length. Only
/// this class reads the input and writes the output of the server.
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
    /// The next message, without its header. None if the input has ended or is malformed, or, with
    /// `Wait::no`, if the message has not arrived completely.
    [[nodiscard]] std::optional<std::string> Read(Wait wait);
    /// The reason why the input cannot be split into messages; empty if it can.
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
