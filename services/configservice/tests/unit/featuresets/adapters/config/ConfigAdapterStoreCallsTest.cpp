#include "ConfigAdapterFixture.h"

#include <ConfigStore.h>

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace ZelUnified {
namespace {

/// The number of calls of each operation of a store.
struct StoreCalls {
    int getValue = 0;
    int getKeys = 0;
    int isReadOnly = 0;
    int getName = 0;
    int getPriority = 0;
    int others = 0;

    bool operator==(const StoreCalls&) const = default;
};

void PrintTo(const StoreCalls& calls, std::ostream* out) {
    *out << "getValue " << calls.getValue << ", getKeys " << calls.getKeys << ", isReadOnly " << calls.isReadOnly
         << ", getName " << calls.getName << ", getPriority " << calls.getPriority << ", others " << calls.others;
}

/// A read-only store of another service that counts its calls.
class CountedStore final : public ConfigStore {
public:
    CountedStore(std::string storeName, int storePriority, ConfigMap table, bool caches = false)
        : values(std::move(table)), name(std::move(storeName)), priority(storePriority), caching(caches) {}

    bool getValue(const std::wstring& key, std::wstring& value) override {
        ++calls.getValue;
        const auto found = values.find(key);
        value = found == values.end() ? L"" : found->second;
        return found != values.end();
    }
    bool storeValue(const std::wstring& /*key*/, const std::wstring& /*value*/) override { return countOther(); }
    std::vector<std::wstring> getKeys() override {
        ++calls.getKeys;
        std::vector<std::wstring> keys;
        for (const auto& [key, value] : values) {
            keys.push_back(key);
        }
        return keys;
    }
    bool removeValue(const std::wstring& /*key*/) override { return countOther(); }
    void removeAllValues() override { countOther(); }
    bool isReadOnly() override {
        ++calls.isReadOnly;
        return true;
    }
    std::string getName() override {
        ++calls.getName;
        return name;
    }
    int getPriority() override {
        ++calls.getPriority;
        return priority;
    }
    void persistValues() override { countOther(); }
    void destroy() override { countOther(); }
    bool isLocal() override { return countOther(); }
    bool waitForStoreReady() override { return countOther(); }
    bool shouldCacheConfigStore() override {
        countOther();
        return caching;
    }
    int getCachedPriority() override {
        countOther();
        return priority + 1;
    }

    StoreCalls calls;

private:
    bool countOther() {
        ++calls.others;
        return false;
    }

    const ConfigMap values;
    const std::string name;
    const int priority;
    const bool caching;
};

} // namespace

/// Counts the calls of the stores of a chain, with the number of those stores as parameter: an arrival makes the same
/// calls of each store, however many there are.
class ConfigAdapterStoreCalls : public ConfigAdapterFixture, public testing::WithParamInterface<int> {
protected:
    static constexpr int firstPriority = 100;

    /// Adds the stores of the chain, each with a key of its own, and starts to count.
    void givenStores() {
        loadAndStart();
        for (int i = 0; i < GetParam(); ++i) {
            const auto number = std::to_string(i);
            stores.push_back(std::make_shared<CountedStore>(
                "Store" + number, firstPriority + i, ConfigMap{{L"key" + KyrCoreUtils::toWideString(number), L"v"}}));
            adapter->addConfigStore(stores.back());
        }
        forgetCalls();
    }

    void forgetCalls() {
        for (const auto& store : stores) {
            store->calls = {};
        }
    }

    /// Adds a last store of two keys that no other one has.
    std::shared_ptr<CountedStore> letStoreArrive(bool caches) {
        auto arriving = std::make_shared<CountedStore>("Arriving", firstPriority + GetParam(),
                                                       ConfigMap{{L"first", L"1"}, {L"second", L"2"}}, caches);
        adapter->addConfigStore(arriving);
        return arriving;
    }

    void expectOfEachStore(const StoreCalls& expected) {
        for (const auto& store : stores) {
            ASSERT_EQ(store->calls, expected) << store->getName();
        }
    }

    std::vector<std::shared_ptr<CountedStore>> stores;
};

// The chain is ordered and logged with each name and priority. Each of the two policies and each of the two new keys is
// looked up, the keys once for the effective value and once for the administrator's.
TEST_P(ConfigAdapterStoreCalls, AnArrivalAsksEachStoreForItsNameItsPriorityAndTheValuesOfTheLookups) {
    givenStores();
    letStoreArrive(false);
    expectOfEachStore({.getValue = 2 + 2 * 2, .isReadOnly = 2, .getName = 1, .getPriority = 1});
}

// In addition, the SDK mode is looked up, the value of the record is read beneath the user's, and a store named after
// the file of the copy is searched for.
TEST_P(ConfigAdapterStoreCalls, AnArrivalWithACachedCopyAddsTwoLookupsAndASearchByName) {
    givenStores();
    adapter->addConfigStore(std::make_shared<CountedStore>("Recorded", 50, ConfigMap(), true));
    forgetCalls();
    letStoreArrive(true);
    expectOfEachStore({.getValue = 2 + 2 * 2 + 2, .isReadOnly = 2 + 1, .getName = 2, .getPriority = 1});
}

TEST_P(ConfigAdapterStoreCalls, AnArrivingStoreIsAskedOnceForItsKeysAndPriority) {
    givenStores();
    const auto arrived = letStoreArrive(false);
    EXPECT_EQ(arrived->calls.getKeys, 1);
    EXPECT_EQ(arrived->calls.getPriority, 1);
}

INSTANTIATE_TEST_SUITE_P(Stores, ConfigAdapterStoreCalls, testing::Values(1, 2, 50),
                         [](const auto& instance) { return std::to_string(instance.param); });

} // namespace ZelUnified
