/// The documents that are open in the editor. Their texts take the place of what is on the disk.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "frontend/stored_text.h"
#include "server/protocol.h"

namespace korv {

struct Document {
    std::string uri;  ///< as the client spells it
    std::optional<std::int64_t> version;
    std::string bytes;
    std::shared_ptr<const StoredText> text;  ///< made from `bytes` when it is asked for
};

class Documents {
  public:
    /// By full path.
    [[nodiscard]] const std::map<std::string, Document>& All() const { return documents; }
    /// `path` is full, here and below. Null if it is not open.
    [[nodiscard]] const Document* Find(const std::string& path) const;
    /// The text of a document, made once after each row of changes; null if it is not open.
    [[nodiscard]] std::shared_ptr<const StoredText> TextOf(const std::string& path);
    /// The URI by which the client knows the file.
    [[nodiscard]] std::string UriOf(const std::string& path) const;

    /// `document` is the part of the notification. Replaces a document that is open already.
    void Open(const std::string& path, const Json& document);
    /// `parameters` come with the notification. False: the document is not open.
    bool Change(const std::string& path, const Json& parameters, PositionEncoding encoding);
    void Close(const std::string& path) { documents.erase(path); }

  private:
    std::map<std::string, Document> documents;
};

}  // namespace korv
