#pragma once

#include <ConfigMap.h>
#include <ConfigStore.h>
#include <FleetService.h>

#include <string>
#include <vector>

namespace fleet {

/// The settings of a cluster at one moment. Immutable: a change of the settings is a new store, which replaces this
/// one. Any thread, without a lock.
class FleetConfigStore final : public ZelUnified::ConfigStore {
public:
    FleetConfigStore(int storePriority, ZelUnified::ConfigMap storeValues);

    bool getValue(const std::wstring& key, std::wstring& value) override;
    bool storeValue(const std::wstring& /*key*/, const std::wstring& /*value*/) override { return false; }
    std::vector<std::wstring> getKeys() override;
    bool removeValue(const std::wstring& /*key*/) override { return false; }
    void removeAllValues() override {}
    bool isReadOnly() override { return true; }
    std::string getName() override { return ZelUnified::FleetService::storeName; }
    int getPriority() override { return priority; }
    void persistValues() override {}
    void destroy() override {}
    bool isLocal() override { return false; }
    bool waitForStoreReady() override { return true; }
    bool shouldCacheConfigStore() override { return true; }

    /// Returns true if a store with these contents would equal this one, also in the case of values and keys.
    bool equals(int otherPriority, const ZelUnified::ConfigMap& otherValues) const {
        return priority == otherPriority && values == otherValues;
    }

private:
    const int priority;
    const ZelUnified::ConfigMap values;
};

} // namespace fleet
