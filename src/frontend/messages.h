/// The messages of a run on standard error: the shape that editors read, with the line and a caret.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frontend/source_text.h"

namespace korv {

enum class Severity : std::uint8_t { error, warning };

/// Where a message points: a part of a logical line.
struct MessagePlace {
    std::int32_t file = 0;   ///< 0: no place at all
    std::int32_t line = 0;   ///< its first physical line
    std::size_t offset = 0;  ///< its start in the cleaned line
    std::size_t length = 1;
    std::optional<LogicalLine::Place> exact = {};  ///< of what the cleaned line has no more
};

struct Message {
    Severity severity = Severity::error;
    MessagePlace place;
    std::string text;
    std::string detail;  ///< what of the source is concerned, or empty
    std::string code;    ///< "X16", or the name of a warning
    std::string note;    ///< what to do about it, or empty
};

class Messages {
  public:
    /// Prints to `stream`, not owned; nothing after `maxErrors` errors, 0 for no limit.
    Messages(std::FILE* stream, bool isColored, std::uint64_t maxErrors);

    /// File `number` lies at the full path `path`; it was included at `place`, whose file is 0 for
    /// the main file.
    void AddFile(std::int32_t number, const std::string& path, const MessagePlace& place);
    /// The main file is standard input.
    void SetStandardInput() { isStandardInput = true; }

    /// A full path as a person would type it where the run was started.
    [[nodiscard]] std::string TypedName(const std::string& path) const;
    /// The name of file `number` as a person would type it where the run was started.
    [[nodiscard]] const std::string& NameOf(std::int32_t number) const;

    void Print(const Message& message);
    /// Prints how many there were, if there were any.
    void PrintCounts() const;

    [[nodiscard]] std::uint64_t Errors() const { return errors; }
    /// Whether a further error would be printed.
    [[nodiscard]] bool IsOpen() const { return maxErrors == 0 || errors < maxErrors; }

    SourceTexts texts;

  private:
    struct File {
        std::string name;
        MessagePlace includedAt;
        bool isIntroduced = false;  // where it is included has been said
    };
    void PrintIncluded(std::int32_t number);

    std::FILE* stream;
    bool isColored;
    std::uint64_t maxErrors;
    std::uint64_t errors = 0;
    std::uint64_t warnings = 0;
    bool isStandardInput = false;
    std::string startDirectory;
    std::vector<File> files{1};  // by their numbers
};

/// What cannot be blamed on a line: "korv-as: error: ...".
void PrintFailure(std::string_view text);

}  // namespace korv
