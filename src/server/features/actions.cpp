#include <map>
#include <set>
#include <utility>

#include "frontend/message_printer.h"
#include "server/features/features.h"

namespace korv {
namespace {

// The edits of `messages`. Edits overlap if two messages propose to change the same word. An editor
// rejects overlapping edits, so only the first one is kept, also of two that touch.
Json EditOf(const Snapshot& snapshot, const std::vector<const Message*>& messages) {
    std::map<Place, const Edit*> edits;  // keyed by start, without length
    for (const Message* const message : messages) {
        for (const Edit& each : message->edits) {
            const Place& at = each.place;
            edits.try_emplace({at.file, at.line, at.column}, &each);
        }
    }
    Json changes;
    Place last;
    for (const auto& [start, edit] : edits) {
        if (!Covers(last, start)) {
            changes[snapshot.UriOf(start.file)].push_back(
                TextEdit(snapshot.RangeOf(edit->place), edit->text));
            last = edit->place;
        }
    }
    return {{"changes", changes}};
}

Json ActionOf(const Snapshot& snapshot, const std::string& title,
              const std::vector<const Message*>& messages) {
    return {{"title", title}, {"kind", "quickfix"}, {"edit", EditOf(snapshot, messages)}};
}

}  // namespace

Json DiagnosticOf(const Snapshot& snapshot, const Message& message) {
    const auto relatedAt = [&snapshot](const Place& place, std::string_view text) -> Json {
        return {{"location", snapshot.LocationOf(place)}, {"message", text}};
    };
    std::string text = SentenceOf(message);
    if (!message.note.empty()) {
        text += "\nnote: " + message.note;
    }
    Json related;
    for (const Related& each : message.related) {
        related.push_back(relatedAt(each.place, each.text));
    }
    for (std::int32_t opening = message.opening; opening != noIndex;) {
        const Opening& at = snapshot.analysis->openings[static_cast<std::size_t>(opening)];
        if (at.includer != noIndex) {
            related.push_back(relatedAt(at.includedAt, "included from here"));
        }
        opening = at.includer;
    }
    const bool hasPlace = message.place.IsSomewhere();
    Json diagnostic = {{"range", hasPlace ? snapshot.RangeOf(message.place) : Range()},
                       {"severity", message.severity == Severity::error ? 1 : 2},
                       {"source", "korv"},
                       {"code", message.code},
                       {"message", text}};
    if (!related.empty()) {
        diagnostic["relatedInformation"] = std::move(related);
    }
    return diagnostic;
}

Json CodeActions(const Query& query) {
    const Snapshot& snapshot = query.snapshot;
    Json actions = Json::array();
    std::map<std::string_view, std::vector<const Message*>> kinds;  // by code
    std::set<std::string_view> codesHere;
    std::set<std::pair<Place, std::string_view>> seen;
    for (const Message& message : snapshot.analysis->messages) {
        // A file included twice yields each of its messages twice.
        if (message.edits.empty() || !seen.emplace(message.place, message.note).second) {
            continue;
        }
        kinds[message.code].push_back(&message);
        const std::int64_t line = message.place.line - 1;
        if (message.place.file == query.file && line >= query.range.start.line &&
            line <= query.range.end.line) {
            codesHere.insert(message.code);
            actions.push_back(ActionOf(snapshot, message.note, {&message}));
            actions.back()["isPreferred"] = true;
            actions.back()["diagnostics"] = Json::array({DiagnosticOf(snapshot, message)});
        }
    }
    for (const std::string_view code : codesHere) {
        if (kinds[code].size() > 1) {
            const std::string title =
                "fix all messages [" + std::string(code) + "] that have a fix";
            actions.push_back(ActionOf(snapshot, title, kinds[code]));
        }
    }
    return actions;
}

}  // namespace korv
