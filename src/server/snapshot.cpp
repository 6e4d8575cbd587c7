#include "server/snapshot.h"

#include <algorithm>
#include <string>
#include <tuple>

#include "frontend/statement_view.h"
#include "source/char_class.h"

namespace korv {
namespace {

auto KeyOf(const Place& place) {
    return std::tuple(place.file, place.line, place.column);
}

std::int32_t LastLineOf(const Statement* statement) {
    return statement->line + static_cast<std::int32_t>(statement->lineCount) - 1;
}

void AddStatements(const Analysis& analysis, PlaceIndex* index) {
    std::vector<bool> isFirst;  // by opening
    std::vector<bool> isOpened(analysis.files.size());
    for (const Opening& opening : analysis.openings) {
        const auto file = static_cast<std::size_t>(opening.file);
        isFirst.push_back(!isOpened[file]);
        isOpened[file] = true;
    }
    index->statements.resize(analysis.files.size());
    for (const Statement& statement : analysis.statements) {
        const auto opening = static_cast<std::size_t>(statement.opening);
        if (isFirst[opening]) {
            const auto file = static_cast<std::size_t>(analysis.openings[opening].file);
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
                index->names.push_back({static_cast<std::int32_t>(name - analysis.names.data()),
                                        {static_cast<std::int32_t>(i), statement->line, 0,
                                         static_cast<std::uint32_t>(label.size())},
                                        true});
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
            index.names.push_back({number, analysis.names[i].definition, true});
        }
        for (const NameUse& use : analysis.names[i].uses) {
            index.names.push_back({number, use.place, false});
        }
    }
    AddLabels(analysis, &index);
    const auto key = [](const NameAt& at) { return KeyOf(at.place); };
    std::ranges::stable_sort(index.names, {}, key);
    const auto rest = std::ranges::unique(index.names, {}, key);
    index.names.erase(rest.begin(), rest.end());
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
    const auto next = std::ranges::upper_bound(names, KeyOf(place), {},
                                               [](const NameAt& at) { return KeyOf(at.place); });
    if (next == names.begin() || !Covers(std::prev(next)->place, place)) {
        return std::nullopt;
    }
    return *std::prev(next);
}

std::vector<NameAt> OccurrencesOf(const Snapshot& snapshot, std::int32_t name) {
    std::vector<NameAt> found;
    std::ranges::copy_if(snapshot.Index().names, std::back_inserter(found),
                         [name](const NameAt& at) { return at.name == name; });
    return found;
}

const Name* FindName(const Analysis& analysis, std::string_view text) {
    const auto found = std::ranges::lower_bound(analysis.names, text, {}, &Name::text);
    return found != analysis.names.end() && found->text == text ? &*found : nullptr;
}

Statements StatementsOf(const Snapshot& snapshot, std::int32_t file) {
    return snapshot.Index().statements[static_cast<std::size_t>(file)];
}

Statements StatementsIn(const Snapshot& snapshot, std::int32_t file, const Range& range) {
    const Statements all = StatementsOf(snapshot, file);
    // Wide enough for the largest number of a client and 1.
    const auto first = std::int64_t{range.start.line} + 1, last = std::int64_t{range.end.line} + 1;
    const auto begin = std::ranges::lower_bound(all, first, {}, LastLineOf);
    const auto end = std::ranges::upper_bound(begin, all.end(), last, {}, &Statement::line);
    return {begin, end};
}

const Statement* FindStatementAt(const Snapshot& snapshot, std::int32_t file, std::int32_t line) {
    const Statements all = StatementsOf(snapshot, file);
    const auto found = std::ranges::lower_bound(all, line, {}, LastLineOf);
    return found != all.end() && (*found)->line <= line ? *found : nullptr;
}

}  // namespace korv
