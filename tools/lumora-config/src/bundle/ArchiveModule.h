#pragma once

#include "Archive.h"

/// The functions of the module that links libarchive. Their results are out parameters, because functions with C
/// linkage cannot return classes.
extern "C" {

/// As makeArchive(). Throws std::runtime_error with the library's reason.
void MakeArchive(const std::vector<lumora_config::ArchiveMember>& members, std::chrono::system_clock::time_point time,
                 std::string& bytes);

/// As getArchiveLibrary().
void GetArchiveLibrary(std::string& name);
}
