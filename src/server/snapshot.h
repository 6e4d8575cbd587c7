/// One state of a program in the editor: the analysis of its texts at that moment. Features are
/// functions of it; it is never changed, only replaced.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "frontend/analysis.h"
#include "server/protocol.h"
#include "server/text_position.h"

namespace korv {

struct Snapshot {
    std::shared_ptr<const Analysis> analysis;  ///< with statements, names and uses
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
    /// A place as the client counts.
    [[nodiscard]] Range RangeOf(const Place& place) const;
    [[nodiscard]] lsp::Location LocationOf(const Place& place) const {
        return {File(place.file).text->Path(), RangeOf(place)};
    }
    /// A position of the client as a place without length.
    [[nodiscard]] Place PlaceOf(std::int32_t file, Position position) const;
};

/// Whether `place` is in `wide`, or at one of its ends: a cursor after a word is on it.
[[nodiscard]] bool Covers(const Place& wide, const Place& place);

/// Where `name` is used, each place once: a file that is included twice uses a name twice.
[[nodiscard]] std::vector<Place> DistinctPlaces(const Name& name);

/// The name at `place`, its index in `analysis.names`, and where exactly.
struct NameAt {
    std::int32_t name = noIndex;
    Place place;
    bool isDefinition = false;
};
[[nodiscard]] std::optional<NameAt> FindNameAt(const Snapshot& snapshot, const Place& place);

/// The statements of `file`, where it was included first: each line once.
[[nodiscard]] std::vector<const Statement*> StatementsOf(const Snapshot& snapshot,
                                                         std::int32_t file);

/// The statement that was assembled from physical line `line` of `file`, where that was included
/// first; null for none.
[[nodiscard]] const Statement* FindStatementAt(const Snapshot& snapshot, std::int32_t file,
                                               std::int32_t line);

}  // namespace korv
