/// What korv-as and korv-ls need from the operating system besides platform/platform.h.
#pragma once

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "platform/platform.h"

namespace korv::platform {

/// The system's text for an error number, such as "No such file or directory".
[[nodiscard]] std::string ReasonOf(int error);

/// True if the standard stream `stream` was closed when the process was started.
[[nodiscard]] bool IsMissing(std::FILE* stream);

/// The identity of the file that `stream` writes or reads; none if it is not a regular file.
[[nodiscard]] std::optional<FileIdentity> IdentityOf(std::FILE* stream);

/// True if `stream` is a terminal that accepts colour sequences; enables them if necessary.
[[nodiscard]] bool TakesColors(std::FILE* stream);

/// Puts the standard stream `stream` into binary mode: line ends are not converted.
void MakeBinary(std::FILE* stream);

/// A byte connection with another program. Tests have their own implementation.
class Connection {
  public:
    virtual ~Connection() = default;
    /// True if `Read` would return at once, with bytes or with the end of the input.
    [[nodiscard]] virtual bool IsInputWaiting() const = 0;
    /// Reads up to `count` bytes, waiting for the first. Result: their number; 0 at the end of the
    /// input, or on failure.
    [[nodiscard]] virtual std::size_t Read(char* buffer, std::size_t count) = 0;
    /// Writes all of `bytes`. Result: false on failure.
    [[nodiscard]] virtual bool Write(std::string_view bytes) = 0;
};

/// Standard input and output, without the buffers of the library. Once an instance exists,
/// everything else that the process prints on standard output is written to standard error. Only
/// one instance may exist.
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
