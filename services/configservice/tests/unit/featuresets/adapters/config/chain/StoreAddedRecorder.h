#pragma once

#include <ConfigStoreAddedObserver.h>

#include <string>
#include <vector>

namespace ZelUnified {

/// Records the names of added stores.
class StoreAddedRecorder final : public ConfigStoreAddedObserver {
public:
    void OnConfigStoreAdded(const std::string& storeName) override { names.push_back(storeName); }

    std::vector<std::string> names;
};

} // namespace ZelUnified
