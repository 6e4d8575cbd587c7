/// Determines which program a file is part of, from settings, argument files and the sources on the
/// disk; `Programs` adds what the analyses show. Results are cached until the next `Forget`.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "frontend/options.h"
#include "platform/platform.h"
#include "server/documents.h"

namespace korv {

/// The words of a korv-as command line, from an argument file or from the settings.
struct Configuration {
    std::string origin;  ///< full path of the argument file; empty: the settings, or nothing at all
    /// Relative names are relative to this directory. For an argument file it is the folder of the
    /// file, since make and CI run korv-as there; for the settings it is the workspace folder.
    std::string directory;
    std::string source;   ///< full path of the source; empty: the words name none
    Options options;      ///< without a source, those of each file that is a program by itself
    std::string failure;  ///< why the words cannot be used; else empty
};

class Workspace {
  public:
    /// The name of an argument file.
    static constexpr const char* argumentFileName = "korv-as.args";

    /// `documents` is not owned.
    explicit Workspace(Documents* documents) : documents(documents) {}

    /// `path` is a full path.
    void AddFolder(const std::string& path);
    void RemoveFolder(const std::string& path);
    /// `settings` is the client's section "korv", or contains it. Result: false if neither.
    bool SetSettings(const Json& settings);
    /// "none", "address" or "addressAndBytes".
    [[nodiscard]] const std::string& InlayHints() const { return inlayHints; }

    /// The full path of a name, spelled as on disk. A relative name is relative to `folder`, or to
    /// the current directory if that is empty.
    [[nodiscard]] std::string FullPath(const std::string& name, const std::string& folder = "");

    /// What applies to the file at `path`: the settings if they have words, else the nearest
    /// argument file, else nothing.
    [[nodiscard]] const Configuration& ConfigurationOf(const std::string& path);
    /// The file that includes the one at `path`, directly or through others, and that no file
    /// includes; `path` itself if there is none. Searched: the folder of the file and those above
    /// it, up to the workspace folder.
    [[nodiscard]] const std::string& IncluderOf(const std::string& path);

    /// The names in the folder `name`, which is relative to the folder of the file at `path`. Names
    /// of folders end with a slash.
    [[nodiscard]] Strings FilesIn(const std::string& path, const std::string& name);

    /// Discards the results: files have been created, changed or removed.
    void Forget();

  private:
    [[nodiscard]] Configuration FindConfiguration(const std::string& path);
    [[nodiscard]] Configuration ReadConfiguration(const std::string& argumentFile,
                                                  const std::string& base, Strings configured);
    [[nodiscard]] Strings FoldersUpFrom(const std::string& path);
    [[nodiscard]] std::optional<std::string> FindIncluder(const std::string& path);
    [[nodiscard]] const Strings& IncludesOf(const std::string& path);

    Documents* documents;
    platform::CurrentDirectory directory;  // never changed
    Strings folders;                       // full paths
    Strings words;                         // of the settings
    std::string inlayHints;
    // Cached until something changes.
    std::map<std::string, Configuration> configurations;  // by the path of the file
    std::map<std::string, std::string> includers;         // by the path of the file
    std::map<std::string, Strings> includes;              // full paths, by the path of the file
};

}  // namespace korv
