#include "server/documents.h"

#include <algorithm>
#include <utility>

#include "server/uri.h"

namespace korv {
namespace {

// The offset of a position in `text`. A position beyond the end of its line, or of the text, counts
// as that end. The text is not split into lines: each change would require a new split.
std::size_t OffsetOf(std::string_view text, const Position& at, PositionEncoding encoding) {
    std::size_t start = 0;
    for (std::uint32_t line = 0; line < at.line; ++line) {
        const std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos) {
            return text.size();
        }
        start = end + 1;
    }
    std::string_view line = text.substr(start, text.find('\n', start) - start);
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    return start + ColumnOf(line, at.character, encoding);
}

// Applies one of the changes in a notification.
void Apply(const Json& change, PositionEncoding encoding, std::string* text) {
    const auto& newText = Get<std::string>(change, "/text");
    if (At(change, "/range").is_null()) {
        *text = newText;
        return;
    }
    const auto range = FindRange(change, "/range");
    if (!range) {
        throw RequestError{};  // not shown: a notification has no reply
    }
    const std::size_t start = OffsetOf(*text, range->start, encoding);
    const std::size_t end = std::max(start, OffsetOf(*text, range->end, encoding));
    text->replace(start, end - start, newText);
}

}  // namespace

const Document* Documents::Find(const std::string& path) const {
    const auto found = documents.find(path);
    return found == documents.end() ? nullptr : &found->second;
}

std::string Documents::UriOf(const std::string& path) const {
    const Document* const document = Find(path);
    return document == nullptr ? UriOfPath(path) : document->uri;
}

void Documents::AddTo(FileStore* store) {
    for (auto& [path, document] : documents) {
        if (document.text == nullptr) {
            document.text = std::make_shared<const StoredText>(path, document.bytes);
        }
        store->SetText(document.text);
    }
}

void Documents::Open(const std::string& path, const Json& document) {
    documents[path] = {Get<std::string>(document, "/uri"), At(document, "/version"),
                       Get<std::string>(document, "/text"), nullptr};
}

void Documents::Change(const std::string& path, const Json& parameters) {
    const auto& changes = Get<Json::array_t>(parameters, "/contentChanges");
    const auto found = documents.find(path);
    if (found == documents.end()) {
        return;
    }
    Document& document = found->second;
    std::string bytes = document.bytes;  // a malformed change cancels all of them
    for (const Json& change : changes) {
        Apply(change, encoding, &bytes);
    }
    document.bytes = std::move(bytes);
    document.text = nullptr;
    document.version = At(parameters, "/textDocument/version");
}

}  // namespace korv
