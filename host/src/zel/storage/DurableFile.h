#pragma once

#include <zel/FileLayer.h>

#include <string>
#include <string_view>

namespace zel::storage {

/// Writes files durably; every file of this product that must survive is written here. Afterwards the path holds the
/// complete old or the complete new content, after any failure and after a power cut. It does not protect against a
/// disk that reports unwritten bytes as written, nor against bytes that change later.
class LUMORA_HOST_API DurableFile {
public:
    DurableFile() = delete;

    /// Replaces or creates the file. Returns 0 or an errno value. On failure the old file is unchanged, except when
    /// only syncing the directory fails.
    static int replace(FileLayer& layer, const std::string& path, std::string_view bytes);
    /// Creates the file. Returns EEXIST and changes nothing if the name exists. Of several concurrent calls, one
    /// succeeds.
    static int create(FileLayer& layer, const std::string& path, std::string_view bytes);

    /// Removes the temporary files at and below `directory` that killed writers of any file left more than ten minutes
    /// ago. A write removes only those of its own path, and some files are never written again.
    static void removeLeftovers(FileLayer& layer, const std::string& directory);

    /// Returns an unused hidden name in the directory of `path`; "" if no random bytes are available.
    static std::string makeTemporaryName(const std::string& path);

private:
    enum class Publish { ByRename, ByLink };
    static int write(FileLayer& layer, const std::string& path, std::string_view bytes, Publish publish);
};

} // namespace zel::storage
