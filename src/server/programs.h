/// The programs that the open documents are part of, each with the snapshot of its last analysis.
///
/// A document belongs to the first of these that reads it: the program of its configuration; a
/// program that has read it before; the program of the file that includes it; and else it is a
/// program by itself. That depends on analyses, so it is decided again after each of them.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "server/documents.h"
#include "server/snapshot.h"
#include "server/workspace.h"

namespace korv {

using DiagnosticsByPath = std::map<std::string, Json::array_t>;

class Programs {
  public:
    /// Neither is owned.
    Programs(Documents* documents, Workspace* workspace)
        : documents(documents), workspace(workspace) {}

    /// Of snapshots from here on.
    void SetEncoding(PositionEncoding newEncoding) { encoding = newEncoding; }

    /// The document at `path` has another text.
    void OnTextChanged(const std::string& path);
    /// Files may be there, or be gone, or have other bytes.
    void OnFilesChanged();
    /// Settings or argument files may be others.
    void OnConfigurationChanged();

    /// Whether `Update` has something to do.
    [[nodiscard]] bool IsStale() const { return isStale; }
    /// Analyses what has changed.
    void Update();

    /// The snapshot of the program that the file at `path` is part of, as of the last `Update`;
    /// null for none. It is valid until the next one.
    [[nodiscard]] const Snapshot* SnapshotOf(const std::string& path) const;
    /// Those of all programs.
    [[nodiscard]] std::vector<const Snapshot*> Snapshots() const;
    /// By the paths of the files that have any, and of all documents.
    [[nodiscard]] DiagnosticsByPath Diagnostics() const;

    /// Of all time, for tests.
    [[nodiscard]] std::uint64_t AnalysisCount() const { return analysisCount; }

  private:
    struct Program {
        std::string main;             // full path
        Configuration configuration;  // with `main` as the source in its options
        Snapshot snapshot;
        bool isStale = true;
    };
    using Key = std::string;  // tells a program from all others

    const Key& ProgramFor(const std::string& path);
    const Key& Analysed(const Configuration& configuration, const std::string& main);
    void Analyse(Program* program);
    [[nodiscard]] bool Reads(const Key& key, const std::string& path) const;

    Documents* documents;
    Workspace* workspace;
    PositionEncoding encoding = PositionEncoding::utf16;
    std::map<Key, Program> programs;
    std::map<std::string, Key> programOf;  // by the paths of the documents
    std::set<Key> needed;  // by the last `Update`: these, and those that turned out not to read
                           // the document for which they were made
    std::map<std::string, std::string> failures;  // of configurations, by the path where to show
    bool isStale = false;
    std::uint64_t analysisCount = 0;
};

}  // namespace korv
