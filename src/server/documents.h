/// The documents that are open in the editor. Their texts take the place of what is on the disk.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "frontend/stored_text.h"
#include "server/request.h"
#include "server/text_position.h"

namespace korv {

class Documents {
  public:
    using Text = std::shared_ptr<const StoredText>;
    struct Document {
        std::string uri;  ///< as the client spells it
        std::optional<std::int64_t> version;
        Text text;  ///< as last handed out; null after a change
        std::string bytes;
    };

    /// `path` is full, here and below; a document that is open already is replaced.
    void Open(const std::string& path, Document document);
    /// False: it is not open.
    bool Change(const std::string& path, std::optional<std::int64_t> version,
                const std::vector<lsp::ContentChange>& changes, PositionEncoding encoding);
    void Close(const std::string& path) { documents.erase(path); }

    /// Null if it is not open.
    [[nodiscard]] const Document* Find(const std::string& path) const;
    /// The text of a document, made once after each change; null if it is not open.
    [[nodiscard]] Text TextOf(const std::string& path);
    /// All paths, in order.
    [[nodiscard]] std::vector<std::string> Paths() const;

  private:
    std::map<std::string, Document> documents;  // by path
};

}  // namespace korv
