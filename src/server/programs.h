/// The programs that the open documents are part of, each with the snapshot of its last analysis.
///
/// A document belongs to the first of these that reads it: the program of its configuration; a
/// program that has read it before; the program of the file that includes it. Otherwise, it forms a
/// separate program. The assignment depends on analyses, so it is made again at each update.
#pragma once

#include <map>
#include <string>

#include "server/documents.h"
#include "server/snapshot.h"
#include "server/workspace.h"

namespace korv {

using DiagnosticsByPath = std::map<std::string, Json::array_t>;

class Programs {
  public:
    struct Program {
        std::string main;             ///< full path
        Configuration configuration;  ///< with `main` as the source in its options
        Snapshot snapshot;            ///< of its last analysis
        bool isStale = true;          ///< a text has changed since that analysis
        bool isNeeded = false;        ///< set by the last `Update`, even if the program turned out
                                      ///< not to read the document that it was created for

        [[nodiscard]] bool Reads(const std::string& path) const {
            return snapshot.FileOf(path) != noIndex;
        }
    };

    /// Neither argument is owned.
    Programs(Documents* documents, Workspace* workspace)
        : documents(documents), workspace(workspace) {}

    /// The text of the document at `path` has changed.
    void OnTextChanged(const std::string& path);
    /// Files may have been created, changed or removed.
    void OnFilesChanged();
    /// Settings or argument files may have changed.
    void OnConfigurationChanged();

    /// True if `Update` has something to do.
    [[nodiscard]] bool IsStale() const { return isStale; }
    /// Assigns the open documents to programs, and analyses the programs that have changed.
    void Update();

    /// All programs, by main file and configuration, as of the last `Update`.
    [[nodiscard]] const std::map<std::string, Program>& All() const { return programs; }
    /// The snapshot of the program that the file at `path` is part of, as of the last `Update`;
    /// null if there is none. It is valid until the next `Update`.
    [[nodiscard]] const Snapshot* SnapshotOf(const std::string& path) const;
    /// The diagnostics of each file, by path. Every open document has an entry, which may be empty.
    [[nodiscard]] DiagnosticsByPath Diagnostics() const;

  private:
    Program& ProgramFor(const std::string& path);
    Program& Need(const Configuration& configuration, const std::string& main);
    void Refresh(Program* program);

    Documents* documents;
    Workspace* workspace;
    std::map<std::string, Program> programs;      // see `All`
    std::map<std::string, Program*> programOf;    // by the paths of the documents
    std::map<std::string, std::string> failures;  // of configurations, by the file that shows them
    bool isStale = false;
};

}  // namespace korv
