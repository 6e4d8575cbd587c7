#include "server/features/actions.h"

#include <algorithm>
#include <string>

namespace korv {
namespace {

void AddEdits(const Snapshot& snapshot, const Message& message, lsp::WorkspaceEdit* edit) {
    for (const Edit& each : message.edits) {
        lsp::Location location = snapshot.LocationOf(each.place);
        lsp::TextEdit change{location.range, each.text};
        auto& changes = (*edit)[location.path];
        // A file that is included twice has each of its messages twice.
        const auto isSame = [&change](const lsp::TextEdit& other) {
            return other.range == change.range;
        };
        if (std::ranges::none_of(changes, isSame)) {
            changes.push_back(std::move(change));
        }
    }
}

}  // namespace

lsp::Diagnostic DiagnosticOf(const Snapshot& snapshot, const Message& message) {
    const Analysis& analysis = *snapshot.analysis;
    lsp::Diagnostic diagnostic;
    diagnostic.range = snapshot.RangeOf(message.place);
    diagnostic.isError = message.severity == Severity::error;
    diagnostic.code = message.code;
    diagnostic.message = message.text + (message.detail.empty() ? "" : ": " + message.detail);
    if (!message.note.empty()) {
        diagnostic.message += "\nnote: " + message.note;
    }
    for (const Related& related : message.related) {
        diagnostic.related.push_back({snapshot.LocationOf(related.place), related.text});
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
    const auto& messages = snapshot.analysis->messages;
    for (const Message& message : messages) {
        const auto line = static_cast<std::uint32_t>(std::max(message.place.line, 1) - 1);
        if (message.edits.empty() || message.place.file != file || line < range.start.line ||
            line > range.end.line) {
            continue;
        }
        lsp::CodeAction action;
        action.title = message.note;
        action.diagnostic = DiagnosticOf(snapshot, message);
        action.isPreferred = true;
        AddEdits(snapshot, message, &action.edit);
        lsp::CodeAction all;
        std::size_t count = 0;
        for (const Message& other : messages) {
            if (other.code == message.code && !other.edits.empty()) {
                AddEdits(snapshot, other, &all.edit);
                ++count;
            }
        }
        actions.push_back(std::move(action));
        if (count > 1) {
            all.title = "fix all messages [" + message.code + "] that have a fix";
            actions.push_back(std::move(all));
        }
    }
    return actions;
}

}  // namespace korv
