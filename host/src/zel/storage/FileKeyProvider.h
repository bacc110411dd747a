#pragma once

#include <zel/FileLayer.h>
#include <zel/KeyProvider.h>

#include <string>

namespace zel::storage {

/// Stores master keys in files "catN.key" that only their owner can read, in the application data folder. That folder
/// is never in the configuration directory, which a reset empties. File format: "LUMK", version, category, 2 reserved
/// bytes, 8 bytes key id; then the key of 32 bytes in version 1, and the key as the platform's data protection has
/// wrapped it in version 2. Stateless: each call reads the file.
class LUMORA_HOST_API FileKeyProvider final : public KeyProvider {
public:
    /// The layer must outlive the provider. With an empty folder no key is available.
    FileKeyProvider(FileLayer& files, std::string applicationData);

    KeyResult find(FileCategoryType::FileCategory category, MasterKey& key) override;
    /// Returns or creates the key. A malformed key file is kept as "catN.key.bad". Waits up to two seconds for another
    /// process that creates keys.
    KeyResult findOrMake(FileCategoryType::FileCategory category, MasterKey& key) override;

private:
    std::string pathOf(FileCategoryType::FileCategory category) const;
    KeyResult reportLockFailure(int error) const;
    bool prepareFolder();
    bool make(FileCategoryType::FileCategory category);

    FileLayer& layer;
    std::string parent;
    std::string folder;
};

} // namespace zel::storage
