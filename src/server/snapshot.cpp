#include "server/snapshot.h"

#include <algorithm>
#include <iterator>

#include "frontend/statement_view.h"
#include "source/char_class.h"

namespace korv {
namespace {

// Adds the label at `start`, the beginning of a line. The label need not define its name: the line
// may have been skipped, or the label refused.
void AddLabel(const Analysis& analysis, Place start, PlaceIndex* index) {
    const std::string_view line = analysis.LineOf(start);
    const auto end = std::ranges::find_if_not(line, [](char c) { return HasClass(c, CC_NAME); });
    const std::string label = Raised({line.begin(), end});
    const Name* const name = FindName(analysis, label);
    if (name != nullptr) {
        start.length = static_cast<std::uint32_t>(label.size());
        index->Add({name, start, /*isDefinition=*/true});
    }
}

PlaceIndex IndexOf(const Analysis& analysis) {
    PlaceIndex index;
    for (const Name& name : analysis.names) {
        if (name.definition.IsSomewhere()) {
            index.Add({&name, name.definition, /*isDefinition=*/true});
        }
        for (const Place& use : name.uses) {
            index.Add({&name, use, /*isDefinition=*/false});
        }
    }
    index.statements.resize(analysis.files.size());
    std::vector<std::int32_t> first(analysis.files.size(), noIndex);  // openings, by file
    for (const Statement& statement : analysis.statements) {
        const Opening& opening = analysis.openings[static_cast<std::size_t>(statement.opening)];
        const auto file = static_cast<std::size_t>(opening.file);
        first[file] = first[file] == noIndex ? statement.opening : first[file];
        if (statement.opening == first[file]) {
            index.statements[file].push_back(&statement);
            AddLabel(analysis, {opening.file, statement.line}, &index);
        }
    }
    return index;
}

}  // namespace

const PlaceIndex& Snapshot::Index() const {
    if (index == nullptr) {
        index = std::make_shared<const PlaceIndex>(IndexOf(*analysis));
    }
    return *index;
}

std::int32_t Snapshot::FileOf(std::string_view path) const {
    const auto found = std::ranges::find_if(
        analysis->files, [path](const SourceFile& file) { return file.text->Path() == path; });
    return found == analysis->files.end()
               ? noIndex
               : static_cast<std::int32_t>(found - analysis->files.begin());
}

Place Snapshot::RestOf(std::int32_t file, std::int32_t line, std::uint32_t column) const {
    return {file, line, column, static_cast<std::uint32_t>(Text(file).Line(line).size()) - column};
}

Range Snapshot::RangeOf(const Place& place) const {
    const std::string_view line = analysis->LineOf(place);
    const auto number = static_cast<std::uint32_t>(std::max(place.line, 1) - 1);
    return {{number, UnitsOf(line, place.column, encoding)},
            {number, UnitsOf(line, place.column + place.length, encoding)}};
}

Place Snapshot::PlaceOf(std::int32_t file, Position position) const {
    const auto last = static_cast<std::uint32_t>(Text(file).LineCount());
    const auto line = static_cast<std::int32_t>(std::min(position.line, last)) + 1;
    const std::size_t column = ColumnOf(Text(file).Line(line), position.character, encoding);
    return {file, line, static_cast<std::uint32_t>(column), 0};
}

bool Covers(const Place& wide, const Place& place) {
    return wide.file == place.file && wide.line == place.line && wide.column <= place.column &&
           place.column <= wide.column + wide.length;
}

const NameAt* FindNameAt(const Snapshot& snapshot, const Place& place) {
    const auto& names = snapshot.Index().names;
    const auto next = names.upper_bound(place);
    const bool isFound = next != names.begin() && Covers(std::prev(next)->second.place, place);
    return isFound ? &std::prev(next)->second : nullptr;
}

std::vector<NameAt> OccurrencesOf(const Snapshot& snapshot, const Name* name) {
    std::vector<NameAt> found;
    for (const auto& [key, at] : snapshot.Index().names) {
        if (at.name == name) {
            found.push_back(at);
        }
    }
    return found;
}

const Name* FindName(const Analysis& analysis, std::string_view text) {
    const auto found = std::ranges::lower_bound(analysis.names, text, {}, &Name::text);
    return found != analysis.names.end() && found->text == text ? &*found : nullptr;
}

Statements StatementsIn(const Snapshot& snapshot, std::int32_t file, const Range& range) {
    const Statements all = snapshot.Index().statements[static_cast<std::size_t>(file)];
    // 64 bits, so that adding 1 cannot overflow.
    const auto first = std::int64_t{range.start.line} + 1, last = std::int64_t{range.end.line} + 1;
    const auto begin = std::ranges::lower_bound(
        all, first, {}, [](const Statement* each) { return LastLineOf(*each); });
    const auto end = std::ranges::upper_bound(begin, all.end(), last, {}, &Statement::line);
    return {begin, end};
}

}  // namespace korv
