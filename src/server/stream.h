/// The base protocol: messages with a header that has their length, over a stream of bytes. Only
/// this class reads the input and writes the output of the server.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace korv {

/// Bytes from the client and to it. Tests have one of their own.
class Channel {
  public:
    virtual ~Channel() = default;
    /// Whether `Read` has a result at once.
    [[nodiscard]] virtual bool IsInputWaiting() = 0;
    /// Reads up to `count` bytes, at least one. Result: their number; 0 at the end.
    [[nodiscard]] virtual std::size_t Read(char* buffer, std::size_t count) = 0;
    /// False: the client is gone.
    [[nodiscard]] virtual bool Write(std::string_view bytes) = 0;
};

class MessageStream {
  public:
    /// In bytes. No editor sends a longer message.
    static constexpr std::size_t longestMessage = 64 * 1024 * 1024;

    /// `channel` is not owned.
    explicit MessageStream(Channel* channel) : channel(channel) {}

    enum class Wait { no, yes };
    /// The next message, without its header. None: the input has ended, or without `Wait::yes` it
    /// is not whole yet.
    [[nodiscard]] std::optional<std::string> Read(Wait wait);
    /// After that no message can be read or written.
    [[nodiscard]] bool IsAtEnd() const { return isAtEnd; }
    /// Why the input cannot be understood; empty: it can.
    [[nodiscard]] const std::string& Failure() const { return failure; }

    void Write(std::string_view message);

  private:
    bool Fill();
    bool TakeHeader();
    void TakeField(std::string_view line);
    void Fail(std::string_view sentence);

    Channel* channel;
    std::string input;                  // read, and not yet taken
    std::size_t taken = 0;              // bytes of `input` that are no longer needed
    std::optional<std::size_t> length;  // of the message, once its header has told it
    bool hasHeader = false;             // that header has been taken
    bool isAtEnd = false;
    std::string failure;
};

}  // namespace korv
