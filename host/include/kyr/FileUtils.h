#pragma once

#include <zel/HostExport.h>

#include <string>
#include <vector>

namespace KyrCoreUtils {

/// The folders of a host. An empty member means the platform's default.
struct HostDirectories {
    std::string config;          ///< For the configuration service only: a reset deletes its content.
    std::string applicationData; ///< Keys and the user's registry files; never at or below `config`.
    std::string state;           ///< Logs and the profile lock.
    std::string resources;       ///< Installed read-only data, including the defaults file.
};

/// Operations on files and folders. Paths are UTF-8. Never throws; an unusable path is treated as missing. While a host
/// keeps its changes in memory (UnifiedFactoryOptions::changesInMemory), creating, removing and moving change nothing
/// on the disk and succeed, and fileExists() sees the result; getFilesFromDirectory() lists the disk. Otherwise
/// creating, removing and moving sync the directories that they change; a failed sync is only logged, because the
/// change is made; a directory that cannot be opened for reading is not synced. A move between file systems is the
/// exception: if the target's directory cannot be synced, it fails, keeps the source and removes the target.
class LUMORA_HOST_API FileUtils {
public:
    /// Replaces the platform's folders, for an embedding program or a test. Call it first: it does not affect what the
    /// operations below have already returned.
    static void overrideDirectories(HostDirectories directories);

    /// The directories are returned without a trailing separator. The configuration directory is "" if it cannot be
    /// determined or is unsafe to empty ("/", the home folder, a parent of the application data or of the logs).
    static std::string getConfigDirectory();
    static std::string getUserLocalAppDir();
    static std::string getStateDirectory();
    static std::string getResourcesDirectory();

    /// Returns "/" or "\\".
    static std::string FileSeparator();

    /// Returns true for files, for directories, and for a protected file with pending content. Waits for another thread
    /// that is creating the directory.
    static bool fileExists(const std::string& path) noexcept;
    /// Creates the directory and its parents with mode 0700. Returns 0 if it exists afterwards, otherwise an errno
    /// value.
    static int createDirectory(const std::string& path) noexcept;
    /// Removes a file or a link, never a directory. Returns 0 or an errno value. Drops pending content of a protected
    /// file at `path`, even if the file does not exist.
    static int removeFile(const std::string& path) noexcept;
    /// Moves a file. Replaces an existing target unless `failIfExists` is true. Returns 0 or an errno value. Drops
    /// pending content of protected files at either path, unless the file stays where it is.
    static int moveFile(const std::string& source, const std::string& target, bool failIfExists) noexcept;

    /// Returns the last component of `path`.
    static std::string getFileName(const std::string& path);
    /// Returns the part before the last separator; "" for a plain name, the root for a name in the root.
    static std::string getParentDirectory(const std::string& path);

    /// Replaces `files` with the paths of all files at and below `directory`, sorted, including hidden ones. A link to
    /// a directory is listed as a file and not entered. `extension` is case-insensitive, with or without its dot; the
    /// empty one matches every file. A missing or unreadable folder contributes no file.
    static void getFilesFromDirectory(std::string directory, const std::string& extension,
                                      std::vector<std::string>& files);
};

} // namespace KyrCoreUtils
