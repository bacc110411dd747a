#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ZelUnified {

/// The folder of the cached copies, "Cache" in the configuration directory. Stateless; two callers on one file are the
/// owner's to keep apart.
class CachedConfigFiles {
public:
    static std::string getDirectory();
    /// The name of a store's copy: "cached" + store name + ".dat".
    static std::string getFileName(const std::string& storeName);
    /// Where a file of that name lies in the folder.
    static std::string getPath(const std::string& fileName);
    /// Where a store's copy lies.
    static std::string getPathOfCopy(const std::string& storeName) { return getPath(getFileName(storeName)); }

    /// Returns false if ".." is a component of the name, split at the separators of either platform: the path of the
    /// copy could lead out of the folder. Such a store has no copy.
    static bool mayHaveCopy(std::string_view storeName);

    /// Deletes the file, and the ".dat" twin of an ".xml" file. Returns true if either existed, deleted or not. Refuses
    /// a path through ".." and the copy of a store that has none, logs a warning and returns false.
    static bool removeCachedFiles(const std::string& fileName);

    /// The names of the copies, each in its ".xml" form, whichever form lies in the folder.
    static std::vector<std::string> getXmlNames();

private:
    static bool removeIfPresent(const std::string& path);
    static void removeFile(const std::string& path);
};

} // namespace ZelUnified
