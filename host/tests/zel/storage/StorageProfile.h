#pragma once

#include "FaultInjectingFileLayer.h"
#include "TemporaryProfile.h"

#include <zel/EncryptFileUtils.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace testing_host {

/// A profile whose protected files use a fault-injecting layer.
struct StorageProfile {
    StorageProfile() { zel::storage::EncryptFileUtils::overrideFileLayer(layer); }
    ~StorageProfile() {
        zel::storage::EncryptFileUtils::overrideFileLayer(nullptr);
        zel::storage::EncryptFileUtils::overrideKeyProvider(nullptr);
    }
    StorageProfile(const StorageProfile&) = delete;
    StorageProfile& operator=(const StorageProfile&) = delete;

    std::string configFile(const std::string& name) const { return (profile.config() / name).string(); }
    std::filesystem::path keys() const { return profile.data() / "keys"; }

    TemporaryProfile profile;
    std::shared_ptr<FaultInjectingFileLayer> layer = std::make_shared<FaultInjectingFileLayer>();
};

/// Returns the sorted names in a folder.
inline std::vector<std::string> namesIn(const std::filesystem::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace testing_host
