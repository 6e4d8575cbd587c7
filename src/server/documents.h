/// The documents that are open in the editor. Their texts are used instead of the files on disk.
#pragma once

#include <map>
#include <string>

#include "frontend/file_store.h"
#include "server/protocol.h"

namespace korv {

struct Document {
    std::string uri;  ///< as the client spells it
    Json version;     ///< null if the client sends none
    std::string bytes;
    FileStore::Text text;  ///< created from `bytes` when it is needed
};

class Documents {
  public:
    /// Sets the unit in which the client counts characters, in changes and everywhere else.
    void SetEncoding(PositionEncoding newEncoding) { encoding = newEncoding; }
    [[nodiscard]] PositionEncoding Encoding() const { return encoding; }

    /// All open documents, by full path.
    [[nodiscard]] const std::map<std::string, Document>& All() const { return documents; }
    /// The document at `path`; null if it is not open. Here and below, `path` is a full path.
    [[nodiscard]] const Document* Find(const std::string& path) const;
    /// The URI of the file at `path`, in the client's spelling if the document is open.
    [[nodiscard]] std::string UriOf(const std::string& path) const;
    /// Adds the texts of all documents to `store`, creating any that do not exist yet.
    void AddTo(FileStore* store);

    /// `document` is the "textDocument" of the notification. Replaces a document that is already
    /// open.
    void Open(const std::string& path, const Json& document);
    /// `parameters` are those of the notification. A change to a document that is not open is
    /// ignored.
    void Change(const std::string& path, const Json& parameters);
    void Close(const std::string& path) { documents.erase(path); }

  private:
    PositionEncoding encoding = PositionEncoding::utf16;
    std::map<std::string, Document> documents;
};

}  // namespace korv
