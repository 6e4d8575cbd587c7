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
    if (FindKeyword(name) != nullptr) {
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
    const auto& names = snapshot.analysis->names;
    const auto found = std::ranges::lower_bound(names, name, {}, &Name::text);
    return found != names.end() && found->text == name ? name + " exists already" : "";
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
    const Name& name = NameOf(snapshot, *at);
    if (includesDefinition && name.definition.IsSomewhere()) {
        locations.push_back(snapshot.LocationOf(name.definition));
    }
    for (const Place& use : DistinctPlaces(name)) {
        locations.push_back(snapshot.LocationOf(use));
    }
    return locations;
}

std::vector<lsp::DocumentHighlight> HighlightsAt(const Snapshot& snapshot, const Place& place) {
    std::vector<lsp::DocumentHighlight> highlights;
    const auto at = FindNameAt(snapshot, place);
    if (!at) {
        return highlights;
    }
    const Name& name = NameOf(snapshot, *at);
    if (name.definition.file == place.file) {
        highlights.push_back({snapshot.RangeOf(name.definition), lsp::HighlightKind::write});
    }
    for (const Place& use : DistinctPlaces(name)) {
        if (use.file == place.file) {
            highlights.push_back({snapshot.RangeOf(use), lsp::HighlightKind::read});
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
    const std::string_view line = snapshot.Line(at->place.file, at->place.line);
    return lsp::PreparedRename{snapshot.RangeOf(at->place),
                               std::string(line.substr(at->place.column, at->place.length))};
}

std::variant<lsp::WorkspaceEdit, lsp::Refusal> Rename(const Snapshot& snapshot, const Place& place,
                                                      const std::string& newName) {
    auto prepared = PrepareRename(snapshot, place);
    if (auto* const refusal = std::get_if<lsp::Refusal>(&prepared)) {
        return *refusal;
    }
    const auto at = FindNameAt(snapshot, place);
    const Name& name = NameOf(snapshot, *at);
    std::string raised(newName);
    std::ranges::transform(raised, raised.begin(), [](char c) { return Raised(c); });
    if (raised != name.text) {  // another spelling of the same name is always possible
        if (std::string reason = ReasonAgainst(snapshot, raised); !reason.empty()) {
            return lsp::Refusal{std::move(reason)};
        }
    }
    lsp::WorkspaceEdit edit;
    const auto add = [&](const Place& where) {
        lsp::Location location = snapshot.LocationOf(where);
        edit[location.path].push_back({location.range, newName});
    };
    if (name.definition.IsSomewhere()) {
        add(name.definition);
    }
    std::ranges::for_each(DistinctPlaces(name), add);
    return edit;
}

std::vector<lsp::DocumentLink> LinksIn(const Snapshot& snapshot, std::int32_t file) {
    std::vector<lsp::DocumentLink> links;
    for (const FileUse& use : snapshot.analysis->fileUses) {
        if (use.place.file == file) {
            links.push_back({snapshot.RangeOf(use.place), snapshot.File(use.file).text->Path()});
        }
    }
    return links;
}

}  // namespace korv
