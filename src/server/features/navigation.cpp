#include <algorithm>
#include <map>
#include <utility>

#include "expr/number.h"
#include "frontend/statement_view.h"
#include "server/features/features.h"
#include "source/char_class.h"

namespace korv {
namespace {

// All occurrences of the name that the query is about.
std::vector<NameAt> Occurrences(const Query& query) {
    const NameAt* const at = FindNameAt(query.snapshot, query.place);
    return at != nullptr ? OccurrencesOf(query.snapshot, at->name) : std::vector<NameAt>();
}

// The name at the place of the query. Throws the reason if the name cannot be renamed.
const NameAt& RenamedAt(const Query& query) {
    const NameAt* const at = FindNameAt(query.snapshot, query.place);
    if (at == nullptr) {
        throw RequestError{.message = "there is no name here"};
    }
    const Name& name = *at->name;
    if (name.kind == NameKind::internal) {
        throw RequestError{.message = name.text + " is a name of the assembler"};
    }
    if (name.kind == NameKind::commandLine) {
        throw RequestError{.message = name.text + " is defined by -D"};
    }
    for (const NameAt& each : OccurrencesOf(query.snapshot, at->name)) {
        if (Raised(query.snapshot.TextAt(each.place)) != name.text) {
            throw RequestError{.message = name.text + " is continued on the next line at " +
                                          query.snapshot.analysis->LineName(each.place)};
        }
    }
    return *at;
}

// The reason why `name`, in upper case, cannot be the name of a label; empty if it can.
std::string ReasonAgainst(const Snapshot& snapshot, const std::string& name) {
    constexpr std::size_t longestName = 256;
    std::int32_t value = 0;
    if (name.empty() || !HasClass(name.front(), CC_NAME_START) ||
        !std::ranges::all_of(name, [](char c) { return HasClass(c, CC_NAME); })) {
        return "a name consists of letters, digits, ?, @ and _";
    }
    if (name.size() > longestName) {
        return "a name has at most 256 characters";
    }
    if (FindKeyword(name) != nullptr || name == "MACROS_OFF" || name == "MACROS_ON") {
        return name + " is a reserved word";
    }
    if (ClassOf(name).kind != KIND_VALUE) {
        return name + " is a register or a condition";
    }
    if (FindWord(name).code != 0) {
        return name + " is an operator";
    }
    if (ReadNumber(name, &value) != notANumber) {
        return name + " reads as a number";
    }
    return FindName(*snapshot.analysis, name) != nullptr ? name + " exists already" : "";
}

}  // namespace

Json Definition(const Query& query) {
    const Snapshot& snapshot = query.snapshot;
    for (const FileUse& use : snapshot.analysis->fileUses) {
        if (Covers(use.place, query.place)) {
            return Json::array({{{"uri", snapshot.UriOf(use.file)}, {"range", Range()}}});
        }
    }
    const NameAt* const at = FindNameAt(snapshot, query.place);
    const bool isDefined = at != nullptr && at->name->definition.IsSomewhere();
    return isDefined ? Json::array({snapshot.LocationOf(at->name->definition)}) : Json::array();
}

Json References(const Query& query) {
    const bool withDefinitions = Get(query.parameters, "/context/includeDeclaration", true);
    Json locations = Json::array();
    for (const NameAt& each : Occurrences(query)) {
        if (!each.isDefinition || withDefinitions) {
            locations.push_back(query.snapshot.LocationOf(each.place));
        }
    }
    return locations;
}

Json Highlights(const Query& query) {
    constexpr int readKind = 2, writeKind = 3;  // as numbered in the protocol
    Json highlights = Json::array();
    for (const NameAt& each : Occurrences(query)) {
        if (each.place.file == query.file) {
            highlights.push_back({{"range", query.snapshot.RangeOf(each.place)},
                                  {"kind", each.isDefinition ? writeKind : readKind}});
        }
    }
    return highlights;
}

Json PrepareRename(const Query& query) {
    const Place at = RenamedAt(query).place;
    return {{"range", query.snapshot.RangeOf(at)}, {"placeholder", query.snapshot.TextAt(at)}};
}

Json Rename(const Query& query) {
    const auto& newName = Get<std::string>(query.parameters, "/newName");
    const NameAt& at = RenamedAt(query);
    const std::string raised = Raised(newName);
    if (raised != at.name->text) {  // a change of case is always possible
        if (std::string reason = ReasonAgainst(query.snapshot, raised); !reason.empty()) {
            throw RequestError{.message = std::move(reason)};
        }
    }
    Json changes;
    for (const NameAt& each : OccurrencesOf(query.snapshot, at.name)) {
        changes[query.snapshot.UriOf(each.place.file)].push_back(
            TextEdit(query.snapshot.RangeOf(each.place), newName));
    }
    return {{"changes", changes}};
}

Json Links(const Query& query) {
    std::map<Place, std::int32_t> files;  // a file included twice has each link twice
    for (const FileUse& use : query.snapshot.analysis->fileUses) {
        if (use.place.file == query.file) {
            files[use.place] = use.file;
        }
    }
    Json links = Json::array();
    for (const auto& [place, file] : files) {
        links.push_back(
            {{"range", query.snapshot.RangeOf(place)}, {"target", query.snapshot.UriOf(file)}});
    }
    return links;
}

}  // namespace korv
