#pragma once

#include <zel/HostExport.h>

#include <string>
#include <vector>

namespace KyrCoreUtils {

/// The folders a host works in. An empty member means the platform's default.
struct HostDirectories {
    std::string config;          ///< Belongs to the configuration service alone: a reset empties it.
    std::string applicationData; ///< Keys and the user's registry files; never at or below `config`.
    std::string state;           ///< Logs and the profile lock.
    std::string resources;       ///< Installed read-only data, the defaults file among it.
};

/// Files and folders. Paths are UTF-8. Nothing throws; a path that can't be used is a miss.
class LUMORA_HOST_API FileUtils {
public:
    /// Replaces the platform's folders, for an embedding program or a test. Call before the first use of the others;
    /// a later call affects later questions only.
    static void overrideDirectories(HostDirectories directories);

    /// All without a trailing separator. A configuration directory that can't be settled, or that is unsafe to empty
    /// ("/", the home folder, a parent of the application data or of the logs), is "".
    static std::string getConfigDirectory();
    static std::string getUserLocalAppDir();
    static std::string getStateDirectory();
    static std::string getResourcesDirectory();

    /// "/" or "\\".
    static std::string FileSeparator();

    /// True for files and for directories, and for a protected file whose content waits to be written.
    static bool fileExists(const std::string& path) noexcept;
    /// Makes the directory and its parents, mode 0700. 0 on success or when it exists already, else an errno value.
    static int createDirectory(const std::string& path) noexcept;
    /// Removes a file or a link, never a directory. 0 on success, else an errno value. Content of a protected file that
    /// waits to be written to `path` is dropped, whether the file exists or not.
    static int removeFile(const std::string& path) noexcept;
    /// Moves a file. An existing target is replaced, unless `failIfExists`. 0 on success, else an errno value. Content
    /// that waits to be written to either path is dropped, unless the file stays where it is.
    static int moveFile(const std::string& source, const std::string& target, bool failIfExists) noexcept;

    /// The last component of `path`.
    static std::string getFileName(const std::string& path);
    /// What stands before the last separator; "" for a bare name, the root for a name in the root.
    static std::string getParentDirectory(const std::string& path);

    /// Replaces `files` by the paths of all files at and below `directory`, sorted, hidden ones included. Linked
    /// directories are listed as files and never entered. `extension` is compared without case and with or without its
    /// point; the empty one takes every file. A folder that is missing or unreadable gives no file.
    static void getFilesFromDirectory(std::string directory, const std::string& extension,
                                      std::vector<std::string>& files);
};

} // namespace KyrCoreUtils
