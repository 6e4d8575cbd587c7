#include "server/snapshot.h"

#include <algorithm>
#include <tuple>

namespace korv {

bool Covers(const Place& wide, const Place& place) {
    return wide.file == place.file && wide.line == place.line && wide.column <= place.column &&
           place.column <= wide.column + wide.length;
}

std::vector<Place> DistinctPlaces(const Name& name) {
    std::vector<Place> places;
    for (const NameUse& use : name.uses) {
        places.push_back(use.place);
    }
    const auto key = [](const Place& place) {
        return std::tuple(place.file, place.line, place.column);
    };
    std::ranges::sort(places, {}, key);
    const auto rest = std::ranges::unique(places);
    places.erase(rest.begin(), rest.end());
    return places;
}

std::int32_t Snapshot::FileOf(std::string_view path) const {
    const auto found = std::ranges::find_if(analysis->files, [path](const SourceFile& file) {
        return file.text != nullptr && file.text->Path() == path;
    });
    return found == analysis->files.end()
               ? noIndex
               : static_cast<std::int32_t>(found - analysis->files.begin());
}

Range Snapshot::RangeOf(const Place& place) const {
    const std::string_view line = Line(place.file, place.line);
    const auto number = static_cast<std::uint32_t>(std::max(place.line, 1) - 1);
    return {{number, UnitsOf(line, place.column, encoding)},
            {number, UnitsOf(line, place.column + place.length, encoding)}};
}

Place Snapshot::PlaceOf(std::int32_t file, Position position) const {
    const auto line = static_cast<std::int32_t>(position.line) + 1;
    const std::size_t column = ColumnOf(Line(file, line), position.character, encoding);
    return {file, line, static_cast<std::uint32_t>(column), 0};
}

std::optional<NameAt> FindNameAt(const Snapshot& snapshot, const Place& place) {
    const auto& names = snapshot.analysis->names;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto number = static_cast<std::int32_t>(i);
        if (Covers(names[i].definition, place)) {
            return NameAt{number, names[i].definition, true};
        }
        for (const NameUse& use : names[i].uses) {
            if (Covers(use.place, place)) {
                return NameAt{number, use.place, false};
            }
        }
    }
    return std::nullopt;
}

std::vector<const Statement*> StatementsOf(const Snapshot& snapshot, std::int32_t file) {
    std::vector<const Statement*> found;
    const auto& openings = snapshot.analysis->openings;
    const auto opening = std::ranges::find(openings, file, &Opening::file) - openings.begin();
    for (const Statement& statement : snapshot.analysis->statements) {
        if (statement.opening == opening) {
            found.push_back(&statement);
        }
    }
    return found;
}

const Statement* FindStatementAt(const Snapshot& snapshot, std::int32_t file, std::int32_t line) {
    for (const Statement* const statement : StatementsOf(snapshot, file)) {
        if (line >= statement->line &&
            line < statement->line + static_cast<std::int32_t>(statement->lineCount)) {
            return statement;
        }
    }
    return nullptr;
}

}  // namespace korv
