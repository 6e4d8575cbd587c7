/// Which program a file is part of, as far as settings, argument files and the sources on the disk
/// tell; see `Programs` for what analyses tell. The folders are searched again after each `Forget`
/// only.
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
    /// Relative names count from here. For an argument file it is the folder of the file, since
    /// make and CI run korv-as there; for the settings it is the workspace folder.
    std::string directory;
    std::string source;   ///< full path of the source; empty: the words name none
    Options options;      ///< without a source those of each file that is a program by itself
    std::string failure;  ///< why the words are of no use; empty: they are
};

class Workspace {
  public:
    /// The name of an argument file that is looked for.
    static constexpr const char* argumentFileName = "korv-as.args";

    /// `documents` is not owned.
    explicit Workspace(Documents* documents) : documents(documents) {}

    void AddFolder(const std::string& path);
    void RemoveFolder(const std::string& path);
    /// `settings` are section "korv" of the client's, or hold it. False: they are neither.
    bool SetSettings(const Json& settings);
    /// "none", "address" or "addressAndBytes".
    [[nodiscard]] const std::string& InlayHints() const { return inlayHints; }

    /// The full path of a name, spelled as on disk. A relative one is one in `folder`; empty: in
    /// the current directory.
    [[nodiscard]] std::string FullPath(const std::string& name, const std::string& folder = "");
    /// The workspace folder that the file at `path` is in, or else the folder of the file.
    [[nodiscard]] std::string FolderOf(const std::string& path);

    /// What applies to the file at `path`: the settings if they have words, else the nearest
    /// argument file, else nothing.
    [[nodiscard]] const Configuration& ConfigurationOf(const std::string& path);
    /// The file that includes the one at `path`, directly or by others, and that no file includes;
    /// `path` itself if there is none. Searched: the folder of the file and those above it, up to
    /// the workspace folder.
    [[nodiscard]] const std::string& IncluderOf(const std::string& path);

    /// The names in the folder `name` relative to that of the file at `path`; those of folders end
    /// with a slash.
    [[nodiscard]] Strings FilesIn(const std::string& path, const std::string& name);

    /// Files have been created, changed, or removed.
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
    // Kept until something changes.
    std::map<std::string, Configuration> configurations;  // by the path of the file
    std::map<std::string, std::string> includers;         // by the path of the file
    std::map<std::string, Strings> includes;              // full paths, by the path of the file
};

}  // namespace korv
