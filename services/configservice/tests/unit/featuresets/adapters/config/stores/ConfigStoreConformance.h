#pragma once

#include <ConfigMap.h>
#include <ConfigStore.h>
#include <TemporaryProfile.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>

namespace ZelUnified {

/// How the conformance suite constructs one kind of store, and the properties of that kind.
struct StoreKind {
    enum class Writes { Refused, Accepted };
    enum class Emptying { Ignored, Done };

    std::string label;
    /// Creates a store with the pairs. Keys are in lower case and values have no surrounding white space, which every
    /// disk format preserves.
    std::function<std::shared_ptr<ConfigStore>(const testing_host::TemporaryProfile&, const ConfigMap&)> make;
    std::string name;
    int priority;
    bool readOnly;
    bool local;
    Writes writes;
    Emptying emptying;

    friend std::ostream& operator<<(std::ostream& stream, const StoreKind& kind) { return stream << kind.label; }
};

/// The behaviour that all stores of the product share. The test file of a store instantiates it with its kind:
/// INSTANTIATE_TEST_SUITE_P(InMemoryConfigStore, ConfigStoreConformance, testing::Values(kind), storeKindLabel);
class ConfigStoreConformance : public testing::TestWithParam<StoreKind> {
protected:
    std::shared_ptr<ConfigStore> make(const ConfigMap& values) { return GetParam().make(profile, values); }

    static ConfigMap held(ConfigStore& store) {
        ConfigMap values;
        for (const auto& key : store.getKeys()) {
            store.getValue(key, values[key]);
        }
        return values;
    }

    testing_host::TemporaryProfile profile;
};

inline std::string storeKindLabel(const testing::TestParamInfo<StoreKind>& info) {
    return info.param.label;
}

} // namespace ZelUnified
