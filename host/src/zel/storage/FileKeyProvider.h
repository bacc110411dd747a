#pragma once

#include <zel/FileLayer.h>
#include <zel/KeyProvider.h>

#include <string>

namespace zel::storage {

/// Master keys in files "catN.key", readable by their owner alone, below the application data folder and so never below
/// the configuration directory, which a reset empties. A file: "LUMK", version 1, category, 2 reserved bytes, the key's
/// id in 8 bytes, the key in 32. No state: each call reads the file.
class LUMORA_HOST_API FileKeyProvider final : public KeyProvider {
public:
    /// The layer outlives the provider. An empty folder means that no key can be had.
    FileKeyProvider(FileLayer& files, std::string applicationData);

    KeyResult find(FileCategoryType::FileCategory category, MasterKey& key) override;
    /// A malformed key file is kept as "catN.key.bad". Waits two seconds for another process that makes keys.
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
