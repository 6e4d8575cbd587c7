/// One state of a program in the editor: the analysis of its texts at that moment. Features are
/// functions of a snapshot. A snapshot is never changed, only replaced.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "frontend/analysis.h"
#include "server/protocol.h"

namespace korv {

/// An occurrence of a name. A place has only one, even if its file is included twice.
struct NameAt {
    const Name* name = nullptr;  ///< one of `Analysis::names`
    Place place;
    bool isDefinition = false;  ///< a label or EQU, even if it is skipped or repeated
};

/// An index of statements and names by place.
struct PlaceIndex {
    /// For each file, the statements from the first time it was opened, in line order.
    std::vector<std::vector<const Statement*>> statements;
    /// The occurrences of names, keyed by place without length.
    std::map<Place, NameAt> names;

    /// Adds an occurrence, unless its place already has one.
    void Add(const NameAt& name) {
        names.try_emplace({name.place.file, name.place.line, name.place.column}, name);
    }
};

struct Snapshot {
    std::shared_ptr<const Analysis> analysis;  ///< with statements, names and uses
    std::vector<std::string> uris;             ///< of the files; see `Documents::UriOf`
    PositionEncoding encoding = PositionEncoding::utf16;

    /// Index in `analysis->files` of the file at the full path `path`; `noIndex` if the program did
    /// not read it.
    [[nodiscard]] std::int32_t FileOf(std::string_view path) const;
    [[nodiscard]] const StoredText& Text(std::int32_t file) const {
        return *analysis->files[static_cast<std::size_t>(file)].text;
    }
    [[nodiscard]] std::string_view TextAt(const Place& place) const {
        return analysis->LineOf(place).substr(place.column, place.length);
    }
    [[nodiscard]] const std::string& UriOf(std::int32_t file) const {
        return uris[static_cast<std::size_t>(file)];
    }
    /// The rest of a line, from `column`.
    [[nodiscard]] Place RestOf(std::int32_t file, std::int32_t line, std::uint32_t column) const;
    /// The range of `place` as the client counts it. `place.IsSomewhere()` must be true.
    [[nodiscard]] Range RangeOf(const Place& place) const;
    [[nodiscard]] Json LocationOf(const Place& place) const {
        return {{"uri", UriOf(place.file)}, {"range", RangeOf(place)}};
    }
    /// The place of the client's `position`, with length 0.
    [[nodiscard]] Place PlaceOf(std::int32_t file, Position position) const;
    /// The index, built when it is first needed. Publishing messages does not need it.
    [[nodiscard]] const PlaceIndex& Index() const;

    mutable std::shared_ptr<const PlaceIndex> index;  ///< only for `Index`
};

/// True if `place` is inside `wide` or at one of its ends: a cursor right after a word is on it.
[[nodiscard]] bool Covers(const Place& wide, const Place& place);

/// The name at `place`, whose length must be 0; null if there is none.
[[nodiscard]] const NameAt* FindNameAt(const Snapshot& snapshot, const Place& place);

/// All occurrences of `name`, in order.
[[nodiscard]] std::vector<NameAt> OccurrencesOf(const Snapshot& snapshot, const Name* name);

/// The name with the spelling `text`, in upper case; null if there is none.
[[nodiscard]] const Name* FindName(const Analysis& analysis, std::string_view text);

/// The last physical line of a statement.
[[nodiscard]] inline std::int32_t LastLineOf(const Statement& statement) {
    return statement.line + static_cast<std::int32_t>(statement.lineCount) - 1;
}

using Statements = std::span<const Statement* const>;

/// The statements in the lines of `range` in `file`, each once even if the file is included twice.
/// The first one may begin before the range.
[[nodiscard]] Statements StatementsIn(const Snapshot& snapshot, std::int32_t file,
                                      const Range& range);

}  // namespace korv
