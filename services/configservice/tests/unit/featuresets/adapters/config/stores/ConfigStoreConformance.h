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

/// How one kind of store is made for the conformance suite, and what it promises.
struct StoreKind {
    enum class Writes { Refused, Taken };
    enum class Emptying { Ignored, Done };

    std::string label;
    /// Makes a store that holds the pairs. Keys are lower case and values without white space around them, which every
    /// format on disk keeps.
    std::function<std::shared_ptr<ConfigStore>(const testing_host::TemporaryProfile&, const ConfigMap&)> make;
    std::string name;
    int priority;
    bool readOnly;
    bool local;
    Writes writes;
    Emptying emptying;

    friend std::ostream& operator<<(std::ostream& stream, const StoreKind& kind) { return stream << kind.label; }
};

/// What every store of the product answers alike. A test file of a store instantiates it with its kind:
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
