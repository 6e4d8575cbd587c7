#include "server/snapshot.h"

#include <algorithm>
#include <iterator>

#include "frontend/statement_view.h"
#include "source/char_class.h"

namespace korv {
namespace {

void AddStatements(const Analysis& analysis, PlaceIndex* index) {
    index->statements.resize(analysis.files.size());
    std::vector<std::int32_t> first(analysis.files.size(), noIndex);  // opening, by file
    for (const Statement& statement : analysis.statements) {
        const Opening& opening = analysis.openings[static_cast<std::size_t>(statement.opening)];
        const auto file = static_cast<std::size_t>(opening.file);
        first[file] = first[file] == noIndex ? statement.opening : first[file];
        if (statement.opening == first[file]) {
            index->statements[file].push_back(&statement);
        }
    }
}

// The labels at the start of lines, since a name has one definition only: there may be others,
// which are skipped or refused.
void AddLabels(const Analysis& analysis, PlaceIndex* index) {
    for (std::size_t i = 0; i < analysis.files.size(); ++i) {
        const StoredText& text = *analysis.files[i].text;
        for (const Statement* const statement : index->statements[i]) {
            std::string_view label = text.Line(statement->line);
            const auto end =
                std::ranges::find_if_not(label, [](char c) { return HasClass(c, CC_NAME); });
            label = {label.begin(), end};
            if (label.empty() || FindKeyword(Raised(label)) != nullptr) {
                continue;
            }
            if (const Name* const name = FindName(analysis, Raised(label))) {
                index->Add({static_cast<std::int32_t>(name - analysis.names.data()),
                            {static_cast<std::int32_t>(i), statement->line, 0,
                             static_cast<std::uint32_t>(label.size())},
                            /*isDefinition=*/true});
            }
        }
    }
}

PlaceIndex IndexOf(const Analysis& analysis) {
    PlaceIndex index;
    AddStatements(analysis, &index);
    for (std::size_t i = 0; i < analysis.names.size(); ++i) {
        const auto number = static_cast<std::int32_t>(i);
        if (analysis.names[i].definition.IsSomewhere()) {
            index.Add({number, analysis.names[i].definition, /*isDefinition=*/true});
        }
        for (const NameUse& use : analysis.names[i].uses) {
            index.Add({number, use.place, /*isDefinition=*/false});
        }
    }
    AddLabels(analysis, &index);
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

Range Snapshot::RangeOf(const Place& place) const {
    const std::string_view line = Line(place.file, place.line);
    const auto number = static_cast<std::uint32_t>(std::max(place.line, 1) - 1);
    return {{number, UnitsOf(line, place.column, encoding)},
            {number, UnitsOf(line, place.column + place.length, encoding)}};
}

Place Snapshot::PlaceOf(std::int32_t file, Position position) const {
    const auto last = static_cast<std::uint32_t>(File(file).text->LineCount());
    const auto line = static_cast<std::int32_t>(std::min(position.line, last)) + 1;
    const std::size_t column = ColumnOf(Line(file, line), position.character, encoding);
    return {file, line, static_cast<std::uint32_t>(column), 0};
}

bool Covers(const Place& wide, const Place& place) {
    return wide.file == place.file && wide.line == place.line && wide.column <= place.column &&
           place.column <= wide.column + wide.length;
}

std::optional<NameAt> FindNameAt(const Snapshot& snapshot, const Place& place) {
    const auto& names = snapshot.Index().names;
    const auto next = names.upper_bound({place.file, place.line, place.column});
    if (next == names.begin() || !Covers(std::prev(next)->second.place, place)) {
        return std::nullopt;
    }
    return std::prev(next)->second;
}

std::vector<NameAt> OccurrencesOf(const Snapshot& snapshot, std::int32_t name) {
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
    // Wide enough for the largest number of a client and 1.
    const auto first = std::int64_t{range.start.line} + 1, last = std::int64_t{range.end.line} + 1;
    const auto begin = std::ranges::lower_bound(
        all, first, {}, [](const Statement* each) { return LastLineOf(*each); });
    const auto end = std::ranges::upper_bound(begin, all.end(), last, {}, &Statement::line);
    return {begin, end};
}

const Statement* FindStatementAt(const Snapshot& snapshot, std::int32_t file, std::int32_t line) {
    const auto number = static_cast<std::uint32_t>(line - 1);
    const Statements here = StatementsIn(snapshot, file, {{number, 0}, {number, 0}});
    return here.empty() ? nullptr : here.front();
}

}  // namespace korv
