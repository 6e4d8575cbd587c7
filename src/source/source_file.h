/// Reads one source file as logical lines. The file is read in large blocks; one pass splits it
/// into lines and cleans them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "diagnostics/message_numbers.h"
#include "platform/platform.h"

namespace korv {

class CSourceFile {
  public:
    /// Opens the file `name`, exactly as spelled, with a read buffer of at most `maxBufferSize`
    /// bytes. A file without a size, such as a pipe, gets a buffer of `maxBufferSize` bytes.
    CSourceFile(std::string_view name, std::uint32_t maxBufferSize);
    /// Creates a source file from `text`, the contents of a file that has already been read. `text`
    /// is not owned.
    [[nodiscard]] static CSourceFile OfText(std::string_view text);

    /// The minimum size of a line buffer, even if the longest line allowed is shorter.
    static constexpr std::size_t leastRoom = 32;

    /// Reads the next logical line into `line` as null-terminated text. There must be room for
    /// `maxLength` + 1 characters, and for at least `leastRoom`. Letters outside double quotes are
    /// converted to upper case; the comment, carriage returns and trailing blanks are removed;
    /// physical lines that end in a backslash are joined. A line that is all blanks keeps them.
    /// Result: 0, `endOfFile`, or MSG_LINE_TOO_LONG if the line has more than `maxLength` bytes in
    /// the file, not counting the backslashes that join lines and the blanks after them. Unless the
    /// line is too long, `bytesOut` receives the number of bytes read from the file, and `linesOut`
    /// the number of line feeds among them.
    [[nodiscard]] Status ReadLine(char* line, std::uint32_t maxLength, std::uint32_t* bytesOut,
                                  std::uint32_t* linesOut);

    /// Size of the file in bytes when it was opened; 0 if it is not open or has no size.
    [[nodiscard]] std::uint32_t FileSize() const { return fileSize; }
    /// 1 if the file can be read, else 0.
    [[nodiscard]] std::int32_t IsOpen() const { return OpenStatus() == 0 ? 1 : 0; }
    /// The file itself, to identify it and to detect read failures.
    [[nodiscard]] const platform::InputFile& Stream() const { return stream; }
    /// 0, MSG_OUT_OF_MEMORY if there is no memory for the read buffer, or MSG_CANNOT_OPEN.
    [[nodiscard]] Status OpenStatus() const;

  private:
    CSourceFile() = default;
    bool ReadPlainLine(char* line, std::uint32_t maxLength, std::uint32_t* bytesOut,
                       std::uint32_t* linesOut);
    bool CopyToLineFeed(const std::uint8_t** next, char** out, std::uint32_t maxLength,
                        bool* hasComment);
    Status ReadAnyLine(char* line, std::uint32_t maxLength, std::uint32_t* bytesOut,
                       std::uint32_t* linesOut);
    bool ReadBlock();
    void TakeBlock(const std::uint8_t* block, std::size_t count);

    platform::InputFile stream;
    std::unique_ptr<std::uint8_t[]> buffer;
    std::uint32_t bufferSize = 0;  // bytes
    const std::uint8_t* readPosition = nullptr;
    const std::uint8_t* endOfData = nullptr;
    // A chunk that starts before this position is wholly in the buffer, and so is the byte after
    // it.
    const std::uint8_t* endOfChunks = nullptr;
    std::uint32_t fileSize = 0;
    bool isInMemory = false;  // the whole text is in memory; there is no stream and no buffer
};

}  // namespace korv
