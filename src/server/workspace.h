/// Determines which program a file is part of, from settings, argument files and the sources on
/// disk; `Programs` also considers which files have been read. Results are cached until `Forget`.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "frontend/options.h"
#include "platform/platform.h"
#include "server/protocol.h"

namespace korv {

/// The words of a korv-as command line, from an argument file or from the settings.
struct Configuration {
    std::string origin;  ///< full path of the argument file; empty: the settings, or no words
    /// Relative names are relative to this directory. For an argument file it is the folder of the
    /// file, since make and CI run korv-as there; for the settings it is the workspace folder.
    std::string directory;
    std::string source;   ///< full path of the source; empty if the words name none
    Options options;      ///< without a source, the options of every main file
    std::string failure;  ///< why the words cannot be used; else empty
};

class Workspace {
  public:
    /// The name of an argument file.
    static constexpr const char* argumentFileName = "korv-as.args";

    /// `path` is a full path.
    void AddFolder(const std::string& path);
    void RemoveFolder(const std::string& path);
    /// `settings` is the client's section "korv", or contains it; ignored if neither.
    void SetSettings(const Json& settings);
    /// "none", "address" or "addressAndBytes".
    [[nodiscard]] const std::string& InlayHints() const { return inlayHints; }

    /// The full path of a name, spelled as on disk. A relative name is relative to `folder`, or to
    /// the current directory if that is empty.
    [[nodiscard]] std::string FullPath(const std::string& name, const std::string& folder = "");

    /// The configuration for the file at `path`: the settings if they have words, otherwise the
    /// nearest argument file, if any.
    [[nodiscard]] const Configuration& ConfigurationOf(const std::string& path);
    /// The file that includes `path`, directly or through other files, and is not included itself;
    /// `path` if there is none. The search covers the folder of `path` and the folders above it, up
    /// to the workspace folder.
    [[nodiscard]] const std::string& IncluderOf(const std::string& path);

    /// The names in the folder `name`, which is relative to the folder of the file at `path`. Names
    /// of folders end with a slash.
    [[nodiscard]] Strings FilesIn(const std::string& path, const std::string& name);

    /// Discards the cached results. Must be called when files, folders or settings have changed.
    void Forget();

  private:
    [[nodiscard]] Configuration FindConfiguration(const std::string& path);
    [[nodiscard]] Configuration ReadConfiguration(const std::string& argumentFile,
                                                  const std::string& base, Strings configured);
    [[nodiscard]] Strings FoldersUpFrom(const std::string& path);
    [[nodiscard]] std::optional<std::string> FindIncluder(const std::string& path);
    [[nodiscard]] const Strings& IncludesOf(const std::string& path);

    platform::CurrentDirectory directory;  // never changed
    Strings folders;                       // full paths
    Strings words;                         // of the settings
    std::string inlayHints;
    // Cached until `Forget`.
    std::map<std::string, Configuration> configurations;  // by the path of the file
    std::map<std::string, std::string> includers;         // by the path of the file
    std::map<std::string, Strings> includes;              // full paths, by the path of the file
};

}  // namespace korv
