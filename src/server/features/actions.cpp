#include "server/features/actions.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "frontend/message_printer.h"

namespace korv {
namespace {

void AddEdits(const Snapshot& snapshot, const Message& message, lsp::WorkspaceEdit* edit) {
    for (const Edit& each : message.edits) {
        lsp::Location location = snapshot.LocationOf(each.place);
        (*edit)[location.path].push_back({location.range, each.text});
    }
}

// An editor takes no changes that overlap: of these the first one stays. They occur where two
// messages propose to change one word.
void RemoveOverlaps(lsp::WorkspaceEdit* edit) {
    for (auto& [path, changes] : *edit) {
        const auto start = [](const lsp::TextEdit& change) { return change.range.start; };
        std::ranges::stable_sort(changes, {}, start);
        std::vector<lsp::TextEdit> kept;
        for (lsp::TextEdit& change : changes) {
            if (kept.empty() || (kept.back().range.end <= change.range.start &&
                                 kept.back().range.start < change.range.start)) {
                kept.push_back(std::move(change));
            }
        }
        changes = std::move(kept);
    }
}

}  // namespace

lsp::Diagnostic DiagnosticOf(const Snapshot& snapshot, const Message& message) {
    const Analysis& analysis = *snapshot.analysis;
    lsp::Diagnostic diagnostic;
    if (message.place.IsSomewhere()) {
        diagnostic.range = snapshot.RangeOf(message.place);
    }
    diagnostic.isError = message.severity == Severity::error;
    diagnostic.code = message.code;
    diagnostic.message = SentenceOf(message);
    if (!message.note.empty()) {
        diagnostic.message += "\nnote: " + message.note;
    }
    for (const Related& related : message.related) {
        if (related.place.IsSomewhere()) {
            diagnostic.related.push_back({snapshot.LocationOf(related.place), related.text});
        } else {
            diagnostic.message += "\nnote: " + related.text;
        }
    }
    for (std::int32_t opening = message.opening; opening != noIndex;) {
        const Opening& at = analysis.openings[static_cast<std::size_t>(opening)];
        if (at.includer != noIndex) {
            diagnostic.related.push_back(
                {snapshot.LocationOf(at.includedAt), "included from here"});
        }
        opening = at.includer;
    }
    return diagnostic;
}

std::vector<lsp::CodeAction> ActionsIn(const Snapshot& snapshot, std::int32_t file,
                                       const Range& range) {
    std::vector<lsp::CodeAction> actions;
    std::map<std::string_view, std::vector<const Message*>> kinds;  // by code
    std::set<std::tuple<std::int32_t, std::int32_t, std::uint32_t, std::string_view>> seen;
    for (const Message& message : snapshot.analysis->messages) {
        const Place& at = message.place;
        // A file that is included twice has each of its messages twice.
        if (message.edits.empty() ||
            !seen.emplace(at.file, at.line, at.column, message.note).second) {
            continue;
        }
        kinds[message.code].push_back(&message);
        const std::int64_t line = at.line - 1;
        if (at.file == file && line >= range.start.line && line <= range.end.line) {
            lsp::CodeAction action;
            action.title = message.note;
            action.diagnostic = DiagnosticOf(snapshot, message);
            action.isPreferred = true;
            AddEdits(snapshot, message, &action.edit);
            RemoveOverlaps(&action.edit);
            actions.push_back(std::move(action));
        }
    }
    for (const auto& [code, messages] : kinds) {
        const auto isHere = [code](const lsp::CodeAction& action) {
            return action.diagnostic && action.diagnostic->code == code;
        };
        if (messages.size() > 1 && std::ranges::any_of(actions, isHere)) {
            lsp::CodeAction all;
            all.title = "fix all messages [" + std::string(code) + "] that have a fix";
            for (const Message* const message : messages) {
                AddEdits(snapshot, *message, &all.edit);
            }
            RemoveOverlaps(&all.edit);
            actions.push_back(std::move(all));
        }
    }
    return actions;
}

}  // namespace korv
