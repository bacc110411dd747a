#pragma once

#include <ConfigMap.h>
#include <ConfigStore.h>

namespace example {

/// One download: read-only, removed by a refresh, and cached for the next run. The table never changes, so the class
/// has no lock.
class DeliveredStore final : public ZelUnified::ConfigStore {
public:
    static constexpr auto storeName = "ExampleDirectoryConfigStore";
    static constexpr int storePriority = 40;

    explicit DeliveredStore(ZelUnified::ConfigMap settings);

    bool getValue(const std::wstring& key, std::wstring& value) override;
    bool storeValue(const std::wstring& key, const std::wstring& value) override;
    std::vector<std::wstring> getKeys() override;
    bool removeValue(const std::wstring& key) override;
    void removeAllValues() override {}
    bool isReadOnly() override { return true; }
    std::string getName() override { return storeName; }
    int getPriority() override { return storePriority; }
    void persistValues() override {}
    void destroy() override {}
    bool isLocal() override { return false; }
    bool waitForStoreReady() override { return true; }
    bool shouldCacheConfigStore() override { return true; }

private:
    const ZelUnified::ConfigMap values;
};

} // namespace example
