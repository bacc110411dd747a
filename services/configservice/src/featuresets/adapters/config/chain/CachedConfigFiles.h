#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ZelUnified {

/// Manages the files of cached copies in the folder "Cache" of the configuration directory. Stateless. The owner must
/// prevent two threads from using the same file at once.
class CachedConfigFiles {
public:
    static std::string getDirectory();
    /// Returns the file name of a store's copy: "cached" + store name + ".dat".
    static std::string getFileName(const std::string& storeName);
    /// Returns the path of a file of that name in the folder.
    static std::string getPath(const std::string& fileName);
    /// Returns the path of a store's copy.
    static std::string getPathOfCopy(const std::string& storeName) { return getPath(getFileName(storeName)); }

    /// Returns false if ".." is a component of the name, split at the separators of either platform, because the path
    /// of the copy could leave the folder. Such a store has no copy.
    static bool mayHaveCopy(std::string_view storeName);

    /// Deletes the file, and the ".dat" twin of an ".xml" file. Returns true if either file existed, even if deleting
    /// it failed. For a path with ".." or the copy of a store that has none, deletes nothing, logs a warning and
    /// returns false.
    static bool removeCachedFiles(const std::string& fileName);

    /// Returns the names of all copies with the extension ".xml", whichever extension the file has.
    static std::vector<std::string> getXmlNames();

private:
    static bool removeIfPresent(const std::string& path);
    static void removeFile(const std::string& path);
};

} // namespace ZelUnified
