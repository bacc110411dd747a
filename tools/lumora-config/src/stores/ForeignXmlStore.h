#pragma once

#include "StoreSpec.h"
#include "XmlSettings.h"

#include <ConfigMap.h>
#include <ConfigStore.h>

namespace lumora_config {

/// A read-only store over one XML file, like one that another service downloads and adds. The table never changes after
/// construction, so any thread may read it.
class ForeignXmlStore final : public ZelUnified::ConfigStore {
public:
    /// Reads the file. Throws Failure (Environment) on failure.
    explicit ForeignXmlStore(StoreSpec description);

    bool getValue(const std::wstring& key, std::wstring& value) override;
    bool storeValue(const std::wstring& key, const std::wstring& value) override;
    std::vector<std::wstring> getKeys() override;
    bool removeValue(const std::wstring& key) override;
    void removeAllValues() override {}
    bool isReadOnly() override { return true; }
    std::string getName() override { return spec.name; }
    int getPriority() override { return spec.priority; }
    void persistValues() override {}
    void destroy() override {}
    bool isLocal() override { return false; }
    bool waitForStoreReady() override { return true; }
    bool shouldCacheConfigStore() override { return spec.cached; }

    /// Returns the keys that the document marks as sensitive.
    const ZelUnified::ConfigKeySet& getSensitiveKeys() const { return sensitiveKeys; }

private:
    const StoreSpec spec;
    ZelUnified::ConfigMap values;
    ZelUnified::ConfigKeySet sensitiveKeys;
};

} // namespace lumora_config
