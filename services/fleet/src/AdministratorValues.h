#pragma once

#include <registry/Registry.h>

#include <ConfigFeatureSet.h>
#include <ConfigMap.h>
#include <ConfigStore.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace fleet {

/// The values of the service's own keys in the stores that only an administrator writes: the administrators' part of
/// the policy, the bootstrap file and the defaults. A user can write the other part of the policy, and a cached copy
/// under any name, so this class reads the policy from the registry and checks the type of the other two stores.
///
/// A store that is absent keeps the values that it had: a stop of the configuration drops stores and the next start
/// does not add them. Not thread-safe.
class AdministratorValues {
public:
    /// `administratorsRegistry` contains nothing that an ordinary user has written.
    explicit AdministratorValues(std::shared_ptr<zel::registry::Registry> administratorsRegistry);

    /// Returns the registry of this machine without the user's files.
    static std::shared_ptr<zel::registry::Registry> openRegistry();

    /// Reads each store that is in the chain and that is not the one that was read last.
    void update(ZelUnified::ConfigFeatureSet& configuration);
    /// Returns the value of the store that wins; "" if none contains the key.
    std::wstring get(std::wstring_view key) const;

private:
    struct Source {
        std::weak_ptr<ZelUnified::ConfigStore> store;
        int priority = 0;
        ZelUnified::ConfigMap values;
    };

    static ZelUnified::ConfigMap read(ZelUnified::ConfigStore& store);
    ZelUnified::ConfigMap readPolicy() const;

    const std::shared_ptr<zel::registry::Registry> registry;
    std::map<std::string, Source> sources; ///< By the name of the store.
};

} // namespace fleet
