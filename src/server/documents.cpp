#include "server/documents.h"

#include <utility>

namespace korv {

void Documents::Open(const std::string& path, Document document) {
    documents[path] = std::move(document);
}

bool Documents::Change(const std::string& path, std::optional<std::int64_t> version,
                       const std::vector<lsp::ContentChange>& changes, PositionEncoding encoding) {
    const auto found = documents.find(path);
    if (found == documents.end()) {
        return false;
    }
    Document& document = found->second;
    for (const lsp::ContentChange& change : changes) {
        if (change.range) {
            Replace(&document.bytes, *change.range, change.text, encoding);
        } else {
            document.bytes = change.text;
        }
    }
    document.version = version;
    document.text = nullptr;
    return true;
}

const Documents::Document* Documents::Find(const std::string& path) const {
    const auto found = documents.find(path);
    return found == documents.end() ? nullptr : &found->second;
}

Documents::Text Documents::TextOf(const std::string& path) {
    const auto found = documents.find(path);
    if (found == documents.end()) {
        return nullptr;
    }
    Document& document = found->second;
    if (document.text == nullptr) {
        document.text = std::make_shared<const StoredText>(path, document.bytes);
    }
    return document.text;
}

std::vector<std::string> Documents::Paths() const {
    std::vector<std::string> paths;
    for (const auto& document : documents) {
        paths.push_back(document.first);
    }
    return paths;
}

}  // namespace korv
