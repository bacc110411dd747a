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

/// Returns a ZIP archive of the members, with mode 0600 and this time. Throws Failure (Environment). Any thread.
std::string makeArchive(const std::vector<ArchiveMember>& members, std::chrono::system_clock::time_point time);

/// Returns the name and the version of the library that writes archives.
std::string getArchiveLibrary();

} // namespace lumora_config
