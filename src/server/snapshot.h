/// One state of a program in the editor: the analysis of its texts at that moment. Features are
/// functions of it; it is never changed, only replaced.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "frontend/analysis.h"
#include "server/protocol.h"

namespace korv {

/// A name at a place. A file that is included twice has each of its names there once.
struct NameAt {
    std::int32_t name = noIndex;  ///< index in `Analysis::names`
    Place place;
    bool isDefinition = false;  ///< a label or EQU, also a skipped one or a second one
};

/// Where to look for what is at a place.
struct PlaceIndex {
    /// By file: the statements of its first opening, in the order of the lines.
    std::vector<std::vector<const Statement*>> statements;
    /// By file, line and column.
    std::map<std::tuple<std::int32_t, std::int32_t, std::uint32_t>, NameAt> names;

    /// Adds a name, unless there is one at its place already.
    void Add(const NameAt& name) {
        names.try_emplace({name.place.file, name.place.line, name.place.column}, name);
    }
};

struct Snapshot {
    std::shared_ptr<const Analysis> analysis;  ///< with statements, names and uses
    std::vector<std::string> uris;             ///< of its files, as the client knows them
    PositionEncoding encoding = PositionEncoding::utf16;

    /// Index in `analysis->files` of the file at the full path `path`; `noIndex` if the program did
    /// not read it.
    [[nodiscard]] std::int32_t FileOf(std::string_view path) const;
    [[nodiscard]] const SourceFile& File(std::int32_t file) const {
        return analysis->files[static_cast<std::size_t>(file)];
    }
    [[nodiscard]] std::string_view Line(std::int32_t file, std::int32_t line) const {
        return File(file).text->Line(line);
    }
    [[nodiscard]] const std::string& UriOf(std::int32_t file) const {
        return uris[static_cast<std::size_t>(file)];
    }
    /// A place, which is somewhere, as the client counts.
    [[nodiscard]] Range RangeOf(const Place& place) const;
    [[nodiscard]] Json LocationOf(const Place& place) const {
        return {{"uri", UriOf(place.file)}, {"range", RangeOf(place)}};
    }
    /// A position of the client as a place without length.
    [[nodiscard]] Place PlaceOf(std::int32_t file, Position position) const;
    /// Made at the first question: publishing messages needs none.
    [[nodiscard]] const PlaceIndex& Index() const;

    mutable std::shared_ptr<const PlaceIndex> index;  ///< for `Index` alone
};

/// Whether `place` is in `wide`, or at one of its ends: a cursor after a word is on it.
[[nodiscard]] bool Covers(const Place& wide, const Place& place);

/// The name at `place`.
[[nodiscard]] std::optional<NameAt> FindNameAt(const Snapshot& snapshot, const Place& place);

/// All places of the name at index `name`, in their order.
[[nodiscard]] std::vector<NameAt> OccurrencesOf(const Snapshot& snapshot, std::int32_t name);

/// The name `text`, which is in capitals; null for none.
[[nodiscard]] const Name* FindName(const Analysis& analysis, std::string_view text);

/// The last physical line of a statement.
[[nodiscard]] inline std::int32_t LastLineOf(const Statement& statement) {
    return statement.line + static_cast<std::int32_t>(statement.lineCount) - 1;
}

using Statements = std::span<const Statement* const>;

/// The statements that begin in lines `range` of `file`, each line once; also one that begins
/// before and ends there.
[[nodiscard]] Statements StatementsIn(const Snapshot& snapshot, std::int32_t file,
                                      const Range& range);

/// The statement that was assembled from physical line `line` of `file`; null for none.
[[nodiscard]] const Statement* FindStatementAt(const Snapshot& snapshot, std::int32_t file,
                                               std::int32_t line);

}  // namespace korv
