/// The language server: reads the messages of a client, keeps the programs of its documents up to
/// date, and answers.
///
/// Changes that are waiting in the input are folded: nothing is analysed as long as there is a
/// further message to read, unless a request needs the result. One thread does it all, since the
/// assembler runs once at a time in a process.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "server/documents.h"
#include "server/programs.h"
#include "server/reply.h"
#include "server/request.h"
#include "server/stream.h"
#include "server/workspace.h"

namespace korv {

class Server {
  public:
    /// `channel` is not owned.
    Server(Channel* channel, std::string version);

    /// Serves until the client ends it. Result: the exit status, 0 after the requests `shutdown`
    /// and `exit`, else 1.
    [[nodiscard]] int Run();
    /// Why `Run` has ended early; empty: the client ended it.
    [[nodiscard]] const std::string& Failure() const { return stream.Failure(); }
    /// For tests.
    [[nodiscard]] std::uint64_t AnalysisCount() const { return programs.AnalysisCount(); }

  private:
    using Parameters = lsp::Parameters;
    using Result = std::variant<std::string, lsp::Error>;  // the first is JSON
    struct Method;                                         // these two are in server_methods.h
    struct Target;
    // Null for an unknown one.
    [[nodiscard]] static const Method* FindMethod(std::string_view name);

    [[nodiscard]] std::optional<lsp::Message> NextMessage();
    void Enqueue(std::string_view text);
    void Take(const lsp::Message& message);
    [[nodiscard]] Result Answer(const Method* method, const lsp::Message& message);
    void Update();
    void Publish();
    [[nodiscard]] std::string PathOf(const std::string& uri);
    [[nodiscard]] std::string UriOf(const std::string& path) const;
    [[nodiscard]] Target TargetOf(const Parameters& parameters);

    // Notifications, and requests without a document.
    Result Initialize(const Parameters& parameters);
    Result OnInitialized(const Parameters& parameters);
    Result Shutdown(const Parameters& parameters);
    Result Exit(const Parameters& parameters);
    Result Ignore(const Parameters& parameters);
    Result DidOpen(const Parameters& parameters);
    Result DidChange(const Parameters& parameters);
    Result DidClose(const Parameters& parameters);
    Result FilesChanged(const Parameters& parameters);
    Result SettingsChanged(const Parameters& parameters);
    Result FoldersChanged(const Parameters& parameters);

    // Features.
    Result Hover(const Parameters& parameters);
    Result Definition(const Parameters& parameters);
    Result References(const Parameters& parameters);
    Result Highlights(const Parameters& parameters);
    Result PrepareRename(const Parameters& parameters);
    Result Rename(const Parameters& parameters);
    Result Complete(const Parameters& parameters);
    Result Signatures(const Parameters& parameters);
    Result DocumentSymbols(const Parameters& parameters);
    Result WorkspaceSymbols(const Parameters& parameters);
    Result SemanticTokens(const Parameters& parameters);
    Result FoldingRanges(const Parameters& parameters);
    Result InlayHints(const Parameters& parameters);
    Result CodeActions(const Parameters& parameters);
    Result Format(const Parameters& parameters);
    Result Links(const Parameters& parameters);

    MessageStream stream;
    std::string version;
    Documents documents;
    Workspace workspace{&documents};
    Programs programs{&documents, &workspace};
    lsp::ReplyWriter writer;
    PositionEncoding encoding = PositionEncoding::utf16;
    std::deque<lsp::Message> queue;                // read, and not yet taken
    std::map<std::string, std::string> published;  // messages with diagnostics, by path
    enum class Phase : std::uint8_t { created, initialized, shutDown, ended };
    Phase phase = Phase::created;
    bool watchesOnRequest = false;  // the client can be asked to watch files
    int status = 1;
};

}  // namespace korv
