#include "server/features/actions.h"

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
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

// An editor takes no changes that overlap: of these the first one stays. They occur where a file is
// included twice, which has each of its messages twice, and where two messages propose to change
// one word.
void RemoveOverlaps(lsp::WorkspaceEdit* edit) {
    for (auto& [path, changes] : *edit) {
        const auto start = [](const lsp::TextEdit& change) { return change.range.start; };
        std::ranges::stable_sort(changes, {}, start);
        std::size_t kept = 0;
        for (lsp::TextEdit& change : changes) {
            if (kept == 0 || (changes[kept - 1].range.end <= change.range.start &&
                              changes[kept - 1].range.start < change.range.start)) {
                changes[kept++] = std::move(change);
            }
        }
        changes.resize(kept);
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
    for (const Message& message : snapshot.analysis->messages) {
        if (message.edits.empty()) {
            continue;
        }
        kinds[message.code].push_back(&message);
        const std::int64_t line = message.place.line - 1;
        if (message.place.file == file && line >= range.start.line && line <= range.end.line) {
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
