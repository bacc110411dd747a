#pragma once

#include <string>
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

    /// Deletes the file, and the ".dat" twin of an ".xml" file. Returns true if either existed, deleted or not.
    static bool removeCachedFiles(const std::string& fileName);

    /// The names of the copies, each in its ".xml" form, whichever form lies in the folder.
    static std::vector<std::string> getXmlNames();

private:
    static bool removeIfPresent(const std::string& path);
    static void removeFile(const std::string& path);
};

} // namespace ZelUnified
