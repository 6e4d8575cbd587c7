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

#include "server/documents.h"
#include "server/programs.h"
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
    struct Queued {
        Json message;
        bool isCancelled = false;
    };
    struct Feature;  // a row of the table in methods.cpp

    [[nodiscard]] std::optional<Queued> NextMessage();
    void Enqueue(std::string_view text);
    void Take(const Queued& queued);
    [[nodiscard]] Json Answer(const std::string& method, const Json& parameters);
    [[nodiscard]] Json AnswerFeature(const Feature& feature, const Json& parameters);
    static constexpr const char* publishDiagnostics = "textDocument/publishDiagnostics";
    void Notify(const char* method, const Json& parameters);
    void Update();
    void Publish();
    [[nodiscard]] std::string PathOf(const std::string& uri);
    [[nodiscard]] std::string PathOfDocument(const Json& parameters);

    [[nodiscard]] Json Initialize(const Json& parameters);
    [[nodiscard]] Json WorkspaceSymbols(const Json& parameters);
    void OnInitialized(const Json& parameters);
    void OnOpened(const Json& parameters);
    void OnChanged(const Json& parameters);
    void OnClosed(const Json& parameters);
    void OnFilesChanged(const Json& parameters);
    void OnSettingsChanged(const Json& parameters);
    void OnFoldersChanged(const Json& parameters);

    MessageStream stream;
    std::string version;
    Documents documents;
    Workspace workspace{&documents};
    Programs programs{&documents, &workspace};
    PositionEncoding encoding = PositionEncoding::utf16;
    std::deque<Queued> queue;               // read, and not yet taken
    std::map<std::string, Json> published;  // parameters with diagnostics, by URI
    enum class Phase : std::uint8_t { created, initialized, shutDown, ended };
    Phase phase = Phase::created;
    bool watchesOnRequest = false;  // the client can be asked to watch files
    int status = 1;
};

}  // namespace korv
