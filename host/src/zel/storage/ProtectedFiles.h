#pragma once

#include "FileReader.h"
#include "MovedFiles.h"

#include <zel/EncryptFileUtils.h>
#include <zel/FileLayer.h>
#include <zel/KeyProvider.h>

#include <functional>
#include <string>
#include <string_view>

namespace zel::storage {

/// The disk operations of EncryptFileUtils for a given layer and given keys. Layer, keys and list must outlive it.
/// Exceptions of the key provider, of the content and of allocations reach the caller.
class ProtectedFiles {
public:
    ProtectedFiles(FileLayer& files, KeyProvider& provider, MovedFiles& list)
        : layer(files), keys(provider), movedFiles(list) {}

    /// Returns the last component of the path, truncated at its last dot, plus ".dat".
    static std::string physicalPath(const std::string& path);

    /// Reads the physical file of `path`; if it does not exist, `path` itself.
    ReadResult read(const std::string& path, ProtectedText& content, FileCategoryType::FileCategory category);
    /// Writes the physical file `path`. Returns the cause of a failure, for a user; "" on success.
    std::string write(const std::string& path, std::string_view clear, FileCategoryType::FileCategory category);

    /// Reads and checks exactly this file and discards its content.
    ReadOutcome examine(const std::string& path, FileCategoryType::FileCategory category);
    /// Returns true if this file can be opened and begins like a protected file.
    bool hasHeader(const std::string& path);
    /// Moves the file aside if it is damaged, empty or encrypted with another key than the current one.
    void moveAsideIfUnusable(const std::string& path, FileCategoryType::FileCategory category);
    /// Moves a file that was moved aside back to its original path; an existing file there is kept. Returns the cause
    /// of a failure, for a user; "" on success.
    std::string restore(const std::string& keptAs);

    /// Returns the category of an existing file: the copy of the provisioned settings is device data. For cached copies
    /// the folders count, too, because the name of a store may contain separators.
    static FileCategoryType::FileCategory categoryOf(const std::string& path);

private:
    ReadOutcome readOne(const std::string& path, FileCategoryType::FileCategory category,
                        const std::function<void(std::string_view)>& use);
    int preserveIfUnreadable(const std::string& path, FileCategoryType::FileCategory category);
    bool hasKey(FileCategoryType::FileCategory category);

    FileLayer& layer;
    KeyProvider& keys;
    MovedFiles& movedFiles;
};

} // namespace zel::storage
