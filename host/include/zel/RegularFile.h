#pragma once

#include <zel/HostExport.h>

#include <string>
#include <string_view>

namespace zel::storage {

/// Writes unprotected files durably, for a user who named them: always to the disk, even if the host keeps its changes
/// in memory. For protected content use EncryptFileUtils.
class LUMORA_HOST_API RegularFile {
public:
    RegularFile() = delete;

    /// Replaces or creates the file at `path` (UTF-8), with mode 0600. The folder must exist. Links are followed: the
    /// target of the link is replaced or created, and the link remains. Returns 0 after the content is on the disk,
    /// otherwise an errno value: EEXIST if the path names something other than a regular file, which is not changed. On
    /// failure the old file is unchanged, except when only syncing the directory fails. Any thread; the caller must
    /// prevent concurrent writes to one path.
    static int replace(const std::string& path, std::string_view content) noexcept;
};

} // namespace zel::storage
