#pragma once

#include <zel/HostExport.h>

#include <string>
#include <string_view>

namespace zel::storage {

/// Writes plain files through the product's one durable write. For protected content use EncryptFileUtils.
class LUMORA_HOST_API RegularFile {
public:
    RegularFile() = delete;

    /// Replaces the file at `path` (UTF-8) or creates it, with mode 0600. The folder must exist. Links are followed:
    /// the file that a link names is replaced or created, and the link remains. Returns 0 once the content is on the
    /// disk, otherwise an errno value: EEXIST if the path names something other than a regular file, which is left
    /// alone. On failure the old file is unchanged, except when only syncing the directory fails. Any thread; two
    /// writers on one path are the caller's to keep apart.
    static int replace(const std::string& path, std::string_view content) noexcept;
};

} // namespace zel::storage
