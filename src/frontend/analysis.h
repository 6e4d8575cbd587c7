/// The result of one run as plain data. Everything that is printed, listed, exported or shown in an
/// editor is computed from it. It contains no pointers into the assembler, so it is still valid
/// after the run. Only warnings about outputs are added to it later.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frontend/stored_text.h"
#include "frontend/warnings.h"

namespace korv {

struct Keyword;

/// An index that means "no element", for every vector of an `Analysis`.
inline constexpr std::int32_t noIndex = -1;

/// A part of a physical line: the position of something in the source.
struct Place {
    std::int32_t file = noIndex;  ///< index in `Analysis::files`; `noIndex`: no place at all
    std::int32_t line = 0;        ///< from 1
    std::uint32_t column = 0;     ///< in bytes, from 0
    std::uint32_t length = 0;     ///< in bytes; not past the end of the line

    [[nodiscard]] bool IsSomewhere() const { return file != noIndex; }
    auto operator<=>(const Place&) const = default;  ///< by file, line and column
};

/// A file that was read. It has one record, however often it is included.
struct SourceFile {
    std::shared_ptr<const StoredText> text;
    std::string name;       ///< relative to the directory of the run, if that is shorter
    bool isBinary = false;  ///< only BINCLUDE has read it
    bool isStandardInput = false;
};

/// One reading of a source file: the main file has one, and each INCLUDE adds one.
struct Opening {
    std::int32_t file = noIndex;      ///< index in `files`
    std::int32_t includer = noIndex;  ///< index in `openings`; `noIndex` for the main file
    Place includedAt;                 ///< the INCLUDE; nowhere for the main file
};

/// The name of a file in an INCLUDE or BINCLUDE, and the file that was read for it.
struct FileUse {
    Place place;
    std::int32_t file = noIndex;  ///< index in `files`
};

enum class StatementKind : std::uint8_t {
    blank,        ///< nothing, or only a comment
    label,        ///< only a label
    instruction,  ///< a processor instruction
    data,         ///< DB, DW, DM, BINCLUDE
    space,        ///< DS
    directive,    ///< emits no bytes
    unknown,      ///< its mnemonic is not in the vocabulary
};

/// A logical line. Statements are in the order of assembly; an INCLUDE precedes the lines of its
/// file.
struct Statement {
    std::int32_t opening = noIndex;  ///< index in `openings`
    std::int32_t line = 0;           ///< first physical line, from 1
    std::uint32_t lineCount = 1;     ///< physical lines
    std::uint32_t address = 0;       ///< of its first byte; for ORG, the new address
    std::uint32_t offset = 0;        ///< of its first byte in the image, without the load header
    std::uint32_t count = 0;         ///< number of its bytes
    StatementKind kind = StatementKind::blank;
    bool isSkipped = false;            ///< not assembled, because of a condition
    const Keyword* keyword = nullptr;  ///< row in the vocabulary, static; null: unknown
};

enum class NameKind : std::uint8_t {
    label,
    constant,     ///< defined by EQU
    commandLine,  ///< defined by -D
    internal,     ///< predefined: version identifiers
    undefined,    ///< used, but not defined
};

struct Name {
    std::string text;
    NameKind kind = NameKind::undefined;
    bool hasValue = false;  ///< also false for an EQU that was never resolved
    std::int32_t value = 0;
    bool isUsed = false;  ///< an expression has read the value
    Place definition;     ///< the name in its definition; nowhere if there is none
    std::int32_t opening = noIndex;
    std::size_t useCount = 0;  ///< with `Wanted::useCounts` or `Wanted::uses` only
    std::vector<Place> uses;   ///< in the order of the source; with `Wanted::uses` only
};

enum class Severity : std::uint8_t { error, warning };

/// A change to the source text, proposed by a note.
struct Edit {
    Place place;  ///< the text to replace; its length is 0 for an insertion
    std::string text;
};

struct Related {
    Place place;
    std::string text;
};

struct Message {
    Severity severity = Severity::error;
    std::int32_t number = 0;         ///< row of MESSAGE_TABLE; 0 for the front end's own messages
    std::optional<Warning> warning;  ///< only if -W can select the message
    std::string code;                ///< "X16", or a name; empty if there is none
    Place place;
    std::int32_t opening = noIndex;  ///< index in `openings`; `noIndex` if there is no place
    std::string text;
    std::string detail;            ///< what is at fault, quoted if it is source text; or empty
    std::string note;              ///< what to do about it, or empty
    std::vector<Related> related;  ///< places that an editor links to
    std::vector<Edit> edits;       ///< the changes that `note` proposes
};

/// A part of the image with consecutive addresses, all of them below 64 KiB.
struct Block {
    std::uint32_t address = 0;
    std::uint32_t offset = 0;  ///< in the image, without the load header
    std::uint32_t count = 0;   ///< bytes
    Place place;               ///< of its first statement
    std::int32_t opening = noIndex;
};

/// The header of a .bin: 0xFE, then three words, low byte first.
struct LoadHeader {
    std::uint32_t start = 0;  ///< load address
    std::uint32_t end = 0;    ///< address of the last byte
    std::uint32_t exec = 0;   ///< address where execution begins
};

/// The result of one run.
struct Analysis {
    std::vector<SourceFile> files;      ///< the files that were read, the main file first
    std::vector<Opening> openings;      ///< in the order of opening
    std::vector<FileUse> fileUses;      ///< in the order of the source
    std::vector<Statement> statements;  ///< with `Wanted::statements` only
    std::vector<Message> messages;      ///< in the order in which they are printed
    std::vector<Name> names;            ///< sorted by text; with `Wanted::names` only
    std::vector<Block> blocks;  ///< in the order of the source; with `Wanted::statements` only
    std::vector<std::uint8_t> image;  ///< without a load header
    LoadHeader header;                ///< for a .bin
    std::uint64_t errorCount = 0;     ///< all errors, including those beyond the limit
    std::uint64_t warningCount = 0;
    std::uint64_t errorLimit = 0;  ///< after that many errors, no message is kept; 0: no limit
    std::string failure;  ///< why there is no result, for example because the source cannot be read

    /// File name and line for display, as in "sub/a.kor:12".
    [[nodiscard]] std::string LineName(const Place& place) const {
        return files[static_cast<std::size_t>(place.file)].name + ":" + std::to_string(place.line);
    }
    [[nodiscard]] std::string_view LineOf(const Place& place) const {
        return files[static_cast<std::size_t>(place.file)].text->Line(place.line);
    }
};

}  // namespace korv
