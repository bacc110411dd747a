#pragma once

#include <ConfigMap.h>
#include <ConfigStore.h>

#include <map>
#include <memory>
#include <string>

namespace lumora_config {

/// Records how and when the program itself brought values into the chain. A record ends with its store: the chain may
/// replace the store at any time, for example at a refresh. Main thread.
class StoreArrivals {
public:
    enum class Kind { Document, Bootstrap, DeviceManagement, ProvisioningUrl };

    struct Arrival {
        Kind kind{};
        std::string file; ///< Empty for a provisioning URL.
        std::string when; ///< ISO 8601.
    };

    /// Records that the values of the store have just arrived. `store` may be null.
    void add(const std::shared_ptr<ZelUnified::ConfigStore>& store, Kind kind, const std::string& file = {});
    /// Records that a key of a volatile store has just been set. `store` may be null.
    void addValue(const std::shared_ptr<ZelUnified::ConfigStore>& store, const std::wstring& key,
                  const std::wstring& value);

    /// Returns the arrival of this store, or null if it was not recorded.
    const Arrival* find(const std::shared_ptr<ZelUnified::ConfigStore>& store) const;
    /// Returns the time at which the program set the key to the value that the store holds now; "" if something else
    /// set it.
    std::string findTimeOfValue(const std::shared_ptr<ZelUnified::ConfigStore>& store, const std::wstring& key) const;

private:
    using Owner = std::weak_ptr<ZelUnified::ConfigStore>;

    struct Value {
        Owner store;
        std::size_t hash = 0; ///< Of the value, which may be a secret.
        std::string when;
    };

    std::map<Owner, Arrival, std::owner_less<Owner>> arrivals;
    std::map<std::wstring, Value, ZelUnified::caseInsensitiveMapComparator> values;
};

} // namespace lumora_config
