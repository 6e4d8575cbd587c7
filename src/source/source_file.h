/// One source file as logical lines: read in large blocks, cleaned in the same pass that cuts the
/// lines.
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
    /// bytes. A file without a size, such as a pipe, gets a buffer of just that size.
    CSourceFile(std::string_view name, std::uint32_t maxBufferSize);
    /// A file that holds `text`, which is not owned: it has been read by other means.
    [[nodiscard]] static CSourceFile OfText(std::string_view text);

    /// The least that a line needs room for, however short the longest may be.
    static constexpr std::size_t leastRoom = 32;

    /// Fills `line`, which has room for `maxLength` + 1 characters and for `leastRoom`, with the
    /// next logical line as terminated text: letters outside double quotes in upper case; comment,
    /// carriage returns and trailing blanks gone; physical lines that end in a backslash joined. A
    /// line of only blanks keeps them. Result: 0, `endOfFile`, or MSG_LINE_TOO_LONG when the line
    /// takes more than `maxLength` bytes of the file. `bytesOut` receives the bytes taken from the
    /// file and `linesOut` the line feeds among them, unless it is too long.
    [[nodiscard]] Status ReadLine(char* line, std::uint32_t maxLength, std::uint32_t* bytesOut,
                                  std::uint32_t* linesOut);

    /// Size of the file in bytes when it was opened; 0 when it is not open or has no size.
    [[nodiscard]] std::uint32_t FileSize() const { return fileSize; }
    /// 1 when both the file and its buffer are there, else 0.
    [[nodiscard]] std::int32_t IsOpen() const { return OpenStatus() == 0 ? 1 : 0; }
    /// The file itself: which one it is, and whether a read has failed.
    [[nodiscard]] const platform::InputFile& Stream() const { return stream; }
    /// MSG_CANNOT_OPEN; MSG_OUT_OF_MEMORY for its buffer; else 0.
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
    // A chunk that starts before this is there whole, and a further byte.
    const std::uint8_t* endOfChunks = nullptr;
    std::uint32_t fileSize = 0;
    bool isInMemory = false;  // all of it is there, and neither stream nor buffer
};

}  // namespace korv
