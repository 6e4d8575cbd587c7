/// The language server: reads the messages of a client, keeps the analyses of its documents up to
/// date, and replies.
///
/// While further messages are waiting, nothing is analysed unless a request needs the result, so a
/// series of changes needs only one analysis. There is one thread, since a process can run only one
/// assembler at a time.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>

#include "server/documents.h"
#include "server/programs.h"
#include "server/stream.h"
#include "server/workspace.h"

namespace korv {

struct Feature;  // a row of the table in methods.cpp

class Server {
  public:
    /// `connection` is not owned.
    Server(platform::Connection* connection, std::string version);

    /// Serves the client until it ends the session. Result: the exit status, 0 after `shutdown` and
    /// `exit`, else 1.
    [[nodiscard]] int Run();
    /// The reason why the input could not be split into messages; empty if it could.
    [[nodiscard]] const std::string& Failure() const { return stream.Failure(); }

  private:
    [[nodiscard]] bool FillQueue();
    [[nodiscard]] bool IsCancelled(const Json& id) const;
    void Take(const Json& message);
    [[nodiscard]] Json Answer(const std::string& method, const Json& parameters);
    [[nodiscard]] Json AnswerFeature(const Feature& feature, const Json& parameters);
    void Update();
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
    Workspace workspace;
    Programs programs{&documents, &workspace};
    std::deque<Json> queue;                 // messages that have been read but not handled
    std::map<std::string, Json> published;  // the last parameters sent, by URI
    enum class Phase : std::uint8_t { created, initialized, shutDown, ended };
    Phase phase = Phase::created;
    bool watchesOnRequest = false;  // the client can be asked to watch files
    int status = 1;
};

}  // namespace korv
