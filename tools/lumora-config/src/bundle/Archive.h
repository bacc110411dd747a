#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace lumora_config {

/// A file in an archive.
struct ArchiveMember {
    std::string name; ///< ASCII, with slashes.
    std::string content;
};

/// Returns a ZIP archive of the members, with mode 0600 and this time. `pluginDirectory` is that of findInModule().
/// Throws Failure (Environment). Any thread.
std::string makeArchive(const std::vector<ArchiveMember>& members, std::chrono::system_clock::time_point time,
                        const std::string& pluginDirectory);

/// Returns the name and the version of the library that writes archives. Throws Failure (Environment).
std::string getArchiveLibrary(const std::string& pluginDirectory);

} // namespace lumora_config
