/// What the features give, as the JSON of the protocol. Texts that are not UTF-8 are mended: what
/// is no character becomes U+FFFD.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "server/protocol.h"
#include "server/request.h"

namespace korv::lsp {

/// What a person is shown in the editor.
enum class MessageType : std::uint8_t { error = 1, warning = 2 };

/// Whole messages. `id` and `result` are JSON.
[[nodiscard]] std::string ResponseMessage(std::string_view id, std::string_view result);
[[nodiscard]] std::string ErrorMessage(std::string_view id, const Error& error);
[[nodiscard]] std::string ShowMessage(MessageType type, std::string_view text);
/// Asks the client to report what happens to files on the disk.
[[nodiscard]] std::string WatchFilesRequest();

/// The result of `initialize`.
[[nodiscard]] std::string InitializeResult(PositionEncoding encoding, std::string_view version);

/// Results of the other requests as JSON.
class ReplyWriter {
  public:
    /// `uriOf` gives the URI by which the client knows the file at a full path.
    explicit ReplyWriter(std::function<std::string(const std::string& path)> uriOf)
        : uriOf(std::move(uriOf)) {}

    /// A whole message; without a version for a document that is not open.
    [[nodiscard]] std::string PublishDiagnostics(const std::string& path,
                                                 std::optional<std::int64_t> version,
                                                 const std::vector<Diagnostic>& diagnostics) const;

    [[nodiscard]] std::string Write(const std::optional<Hover>& hover) const;
    [[nodiscard]] std::string Write(const std::optional<SignatureHelp>& help) const;
    [[nodiscard]] std::string Write(const PreparedRename& rename) const;
    [[nodiscard]] std::string Write(const WorkspaceEdit& edit) const;
    [[nodiscard]] std::string Write(const std::vector<Location>& list) const;
    [[nodiscard]] std::string Write(const std::vector<TextEdit>& list) const;
    [[nodiscard]] std::string Write(const std::vector<DocumentHighlight>& list) const;
    [[nodiscard]] std::string Write(const std::vector<CompletionItem>& list) const;
    [[nodiscard]] std::string Write(const std::vector<DocumentSymbol>& list) const;
    [[nodiscard]] std::string Write(const std::vector<WorkspaceSymbol>& list) const;
    [[nodiscard]] std::string Write(const std::vector<SemanticToken>& list) const;
    [[nodiscard]] std::string Write(const std::vector<FoldingRange>& list) const;
    [[nodiscard]] std::string Write(const std::vector<InlayHint>& list) const;
    [[nodiscard]] std::string Write(const std::vector<CodeAction>& list) const;
    [[nodiscard]] std::string Write(const std::vector<DocumentLink>& list) const;

  private:
    std::function<std::string(const std::string& path)> uriOf;
};

}  // namespace korv::lsp
