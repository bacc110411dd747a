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

/// What EncryptFileUtils does on the disk, on a given layer with given keys. Layer, keys and list outlive it.
/// Exceptions of the key provider, of the content and of allocation pass.
class ProtectedFiles {
public:
    ProtectedFiles(FileLayer& files, KeyProvider& provider, MovedFiles& list)
        : layer(files), keys(provider), movedFiles(list) {}

    /// The named path's last component, cut at its last point, with ".dat".
    static std::string physicalPath(const std::string& path);

    /// Reads the physical file of `path`, or else `path` itself.
    ReadResult read(const std::string& path, ProtectedText& content, FileCategoryType::FileCategory category);
    /// Writes the physical file `path`. Returns why it failed, for a user; "" on success.
    std::string write(const std::string& path, std::string_view clear, FileCategoryType::FileCategory category);

    /// Reads exactly this file and forgets its content.
    ReadOutcome examine(const std::string& path, FileCategoryType::FileCategory category);
    /// Returns true if this file can be opened and begins like a protected file.
    bool hasHeader(const std::string& path);
    /// Moves the file aside if it is damaged, empty or encrypted with another key than the present one.
    void moveAsideIfUnusable(const std::string& path, FileCategoryType::FileCategory category);
    /// Puts a file that was moved aside back in its place; a file that is there is kept. Returns why it failed, for a
    /// user; "" on success.
    std::string restore(const std::string& keptAs);

    /// The category of a file that exists already: the copy of the provisioned settings is device data. For cached
    /// copies folders count, because the name of a store may contain separators.
    static FileCategoryType::FileCategory categoryOf(const std::string& path);

private:
    ReadOutcome readOne(const std::string& path, FileCategoryType::FileCategory category,
                        const std::function<void(std::string_view)>& use);
    int keepIfUnreadable(const std::string& path, FileCategoryType::FileCategory category);
    bool hasKey(FileCategoryType::FileCategory category);

    FileLayer& layer;
    KeyProvider& keys;
    MovedFiles& movedFiles;
};

} // namespace zel::storage
