#pragma once

#include "FileReader.h"

#include <zel/EncryptFileUtils.h>
#include <zel/FileLayer.h>
#include <zel/KeyProvider.h>

#include <string>
#include <string_view>

namespace zel::storage {

/// What EncryptFileUtils does, on a given layer with given keys. Both outlive it. Exceptions of the key provider, of
/// the content and of allocation pass.
class ProtectedFiles {
public:
    ProtectedFiles(FileLayer& files, KeyProvider& provider) : layer(files), keys(provider) {}

    /// The named path's last component, cut at its last point, with ".dat".
    static std::string physicalPath(const std::string& path);

    ReadResult read(const std::string& path, ProtectedText& content, FileCategoryType::FileCategory category);
    bool write(const std::string& path, std::string_view clear, FileCategoryType::FileCategory category);

private:
    ReadOutcome readOne(const std::string& path, FileCategoryType::FileCategory category,
                        const std::function<void(std::string_view)>& use);
    bool keepIfUnreadable(const std::string& path, FileCategoryType::FileCategory category);

    FileLayer& layer;
    KeyProvider& keys;
};

} // namespace zel::storage
