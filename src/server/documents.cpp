#include "server/documents.h"

#include <algorithm>
#include <utility>

#include "server/uri.h"

namespace korv {
namespace {

std::optional<std::int64_t> VersionOf(const Json& document) {
    const auto* const version = Find<std::int64_t>(document, "/version");
    return version == nullptr ? std::nullopt : std::optional(*version);
}

// `text` after a change that the client has sent.
std::string Changed(const StoredText& text, const Json& change, PositionEncoding encoding) {
    const auto& newText = Get<std::string>(change, "/text");
    if (!change.contains("range")) {
        return newText;
    }
    const auto range = FindRange(change, "/range");
    if (!range) {
        throw Missing("/range");
    }
    const auto offsetOf = [&](const Position& at) {
        const auto line = static_cast<std::int32_t>(at.line) + 1;
        return text.LineStart(line) + ColumnOf(text.Line(line), at.character, encoding);
    };
    const std::size_t start = offsetOf(range->start);
    const std::size_t end = std::max(start, offsetOf(range->end));
    return std::string(text.Bytes()).replace(start, end - start, newText);
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

void Documents::Open(const std::string& path, const Json& document) {
    documents[path] = {
        Get<std::string>(document, "/uri"), VersionOf(document),
        std::make_shared<const StoredText>(path, Get<std::string>(document, "/text"))};
}

bool Documents::Change(const std::string& path, const Json& parameters, PositionEncoding encoding) {
    const auto& changes = Get<Json::array_t>(parameters, "/contentChanges");
    const auto found = documents.find(path);
    if (found == documents.end()) {
        return false;
    }
    auto text = found->second.text;
    for (const Json& change : changes) {
        text = std::make_shared<const StoredText>(path, Changed(*text, change, encoding));
    }
    found->second.text = std::move(text);
    found->second.version = VersionOf(parameters.at("textDocument"));
    return true;
}

}  // namespace korv
