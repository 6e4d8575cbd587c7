/// What korv-as and korv-ls need of the operating system besides platform/platform.h.
#pragma once

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace korv::platform {

/// The system's words for an error number, as "No such file or directory".
[[nodiscard]] std::string ReasonOf(int error);

/// Whether `stream`, a standard stream, was not there when the process was started.
[[nodiscard]] bool IsMissing(std::FILE* stream);

/// The identity of the file that `stream` goes to or comes from; none if it is no regular file.
[[nodiscard]] std::optional<FileIdentity> IdentityOf(std::FILE* stream);

/// Whether `stream` goes to a terminal that takes the sequences for colours; lets it, if need be.
[[nodiscard]] bool TakesColors(std::FILE* stream);

/// From here on `stream`, a standard stream, is one of bytes, whose line ends nobody changes.
void MakeBinary(std::FILE* stream);

/// A connection with another program, as bytes. Tests have one of their own.
class Connection {
  public:
    virtual ~Connection() = default;
    /// Whether a `Read` has a result at once: bytes, or the end of the input.
    [[nodiscard]] virtual bool IsInputWaiting() const = 0;
    /// Reads up to `count` bytes, waiting for the first. Result: their number; 0 at the end of the
    /// input, and when it fails.
    [[nodiscard]] virtual std::size_t Read(char* buffer, std::size_t count) = 0;
    /// Writes all of `bytes`. False: that fails.
    [[nodiscard]] virtual bool Write(std::string_view bytes) = 0;
};

/// Standard input and output, without the buffers of the library. From its construction on,
/// whatever else the process prints on standard output is written to standard error. One at a time.
class StandardConnection : public Connection {
  public:
    StandardConnection();
    [[nodiscard]] bool IsInputWaiting() const override;
    [[nodiscard]] std::size_t Read(char* buffer, std::size_t count) override;
    [[nodiscard]] bool Write(std::string_view bytes) override;

  private:
    FileHandle output;
};

}  // namespace korv::platform
