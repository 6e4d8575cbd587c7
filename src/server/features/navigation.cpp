#include "server/features/navigation.h"

#include <algorithm>

#include "expr/number.h"
#include "expr/registers.h"
#include "expr/token.h"
#include "frontend/statement_view.h"
#include "source/char_class.h"

namespace korv {
namespace {

const Name& NameOf(const Snapshot& snapshot, const NameAt& at) {
    return snapshot.analysis->names[static_cast<std::size_t>(at.name)];
}

// The INCLUDE or BINCLUDE whose file name is at `place`; null for none.
const FileUse* FileUseAt(const Snapshot& snapshot, const Place& place) {
    const auto& uses = snapshot.analysis->fileUses;
    const auto found = std::ranges::find_if(
        uses, [&place](const FileUse& use) { return Covers(use.place, place); });
    return found == uses.end() ? nullptr : &*found;
}

std::string_view TextAt(const Snapshot& snapshot, const Place& place) {
    return snapshot.Line(place.file, place.line).substr(place.column, place.length);
}

// Why `name`, in capitals, cannot be the name of a label; empty: it can.
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

std::vector<lsp::Location> DefinitionAt(const Snapshot& snapshot, const Place& place) {
    if (const FileUse* const use = FileUseAt(snapshot, place)) {
        return {{snapshot.File(use->file).text->Path(), {}}};
    }
    const auto at = FindNameAt(snapshot, place);
    if (!at || !NameOf(snapshot, *at).definition.IsSomewhere()) {
        return {};
    }
    return {snapshot.LocationOf(NameOf(snapshot, *at).definition)};
}

std::vector<lsp::Location> ReferencesAt(const Snapshot& snapshot, const Place& place,
                                        bool includesDefinition) {
    std::vector<lsp::Location> locations;
    const auto at = FindNameAt(snapshot, place);
    if (!at) {
        return locations;
    }
    for (const NameAt& each : OccurrencesOf(snapshot, at->name)) {
        if (includesDefinition || !each.isDefinition) {
            locations.push_back(snapshot.LocationOf(each.place));
        }
    }
    return locations;
}

std::vector<lsp::DocumentHighlight> HighlightsAt(const Snapshot& snapshot, const Place& place) {
    std::vector<lsp::DocumentHighlight> highlights;
    const auto at = FindNameAt(snapshot, place);
    if (!at) {
        return highlights;
    }
    for (const NameAt& each : OccurrencesOf(snapshot, at->name)) {
        if (each.place.file == place.file) {
            highlights.push_back({snapshot.RangeOf(each.place), each.isDefinition
                                                                    ? lsp::HighlightKind::write
                                                                    : lsp::HighlightKind::read});
        }
    }
    return highlights;
}

std::variant<lsp::PreparedRename, lsp::Refusal> PrepareRename(const Snapshot& snapshot,
                                                              const Place& place) {
    const auto at = FindNameAt(snapshot, place);
    if (!at) {
        return lsp::Refusal{"there is no name here"};
    }
    const Name& name = NameOf(snapshot, *at);
    if (name.kind == NameKind::internal) {
        return lsp::Refusal{name.text + " is a name of the assembler"};
    }
    if (name.kind == NameKind::commandLine) {
        return lsp::Refusal{name.text + " is defined by -D"};
    }
    for (const NameAt& each : OccurrencesOf(snapshot, at->name)) {
        if (Raised(TextAt(snapshot, each.place)) != name.text) {
            return lsp::Refusal{name.text + " is continued on the next line at " +
                                snapshot.analysis->LineName(each.place)};
        }
    }
    return lsp::PreparedRename{snapshot.RangeOf(at->place),
                               std::string(TextAt(snapshot, at->place))};
}

std::variant<lsp::WorkspaceEdit, lsp::Refusal> Rename(const Snapshot& snapshot, const Place& place,
                                                      const std::string& newName) {
    auto prepared = PrepareRename(snapshot, place);
    if (auto* const refusal = std::get_if<lsp::Refusal>(&prepared)) {
        return std::move(*refusal);
    }
    const auto at = FindNameAt(snapshot, place);
    const std::string raised = Raised(newName);
    if (raised != NameOf(snapshot, *at).text) {  // another spelling is always possible
        if (std::string reason = ReasonAgainst(snapshot, raised); !reason.empty()) {
            return lsp::Refusal{std::move(reason)};
        }
    }
    lsp::WorkspaceEdit edit;
    for (const NameAt& each : OccurrencesOf(snapshot, at->name)) {
        lsp::Location location = snapshot.LocationOf(each.place);
        edit[location.path].push_back({location.range, newName});
    }
    return edit;
}

std::vector<lsp::DocumentLink> LinksIn(const Snapshot& snapshot, std::int32_t file) {
    std::vector<lsp::DocumentLink> links;
    for (const FileUse& use : snapshot.analysis->fileUses) {
        if (use.place.file == file) {
            links.push_back({snapshot.RangeOf(use.place), snapshot.File(use.file).text->Path()});
        }
    }
    // A file that is included twice has each of them twice.
    const auto start = [](const lsp::DocumentLink& link) { return link.range.start; };
    std::ranges::stable_sort(links, {}, start);
    const auto rest = std::ranges::unique(links, {}, start);
    links.erase(rest.begin(), rest.end());
    return links;
}

}  // namespace korv
