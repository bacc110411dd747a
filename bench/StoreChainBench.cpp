// Compares the chain with the plain containers of a program without prioritized sources: one ordered map and one hash
// map of all keys, both case-insensitive like the chain.
#include "MarkdownReporter.h"
#include "SyntheticKeys.h"
#include "featuresets/adapters/config/chain/ConfigStoreManager.h"

#include <ConfigMap.h>
#include <InMemoryConfigStore.h>
#include <RecordingFactory.h>
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using ZelUnified::ConfigMap;
using ZelUnified::ConfigStoreManager;
using ZelUnified::InMemoryConfigStore;

constexpr std::size_t storeCount = 8;
constexpr std::size_t keysInStore = 5000;
constexpr std::size_t arrivingKeys = 10000;
/// Number of arriving keys that the first store already contains. That store remains the effective one.
constexpr std::size_t arrivingKnownKeys = 2500;

struct CaseBlindHash {
    std::size_t operator()(const std::wstring& key) const noexcept {
        std::size_t hash = 14695981039346656037U;
        for (const wchar_t character : key) {
            const bool upper = character >= L'A' && character <= L'Z';
            hash = (hash ^ static_cast<std::size_t>(upper ? character + (L'a' - L'A') : character)) * 1099511628211U;
        }
        return hash;
    }
};

struct CaseBlindEqual {
    bool operator()(const std::wstring& a, const std::wstring& b) const noexcept {
        return KyrCoreUtils::caseInsensitiveStringEquals(a, b);
    }
};

using HashMap = std::unordered_map<std::wstring, std::wstring, CaseBlindHash, CaseBlindEqual>;

/// Records the last announced value of each key.
class Announcements final : public ZelUnified::ConfigStoreManager_Observer {
public:
    void onFireIfRequired(std::wstring /*key*/) override { ++fired; }
    void onSensitiveKeyAddedOrUpdated(std::wstring /*key*/) override {}
    void onConfigAddedOrUpdated(std::wstring key, std::wstring value, std::wstring /*originalValue*/,
                                bool /*isOverridden*/, bool /*isDefined*/, std::wstring /*valueStoreName*/,
                                std::wstring /*originalValueStoreName*/, bool /*deferFire*/) override {
        ++announced;
        if (remember) {
            values[std::move(key)] = std::move(value);
        }
    }

    bool remember = false;
    ConfigMap values;
    std::size_t announced = 0;
    std::size_t fired = 0;
};

void require(bool holds, const char* what) {
    if (!holds) {
        throw std::logic_error(std::string("wrong answer: ") + what);
    }
}

/// The chain and the containers with the same contents, and the keys to look up.
class Subjects {
public:
    Subjects() {
        for (std::size_t i = 0; i < storeCount; ++i) {
            keys.push_back(generator.makeKeys(keysInStore));
            manager.addStore(makeStore("Store" + std::to_string(i), static_cast<int>(i + 1) * 10, keys.back()));
        }
        missingKeys = generator.makeKeys(keysInStore);
        prepareArrival();
        check();
        manager.addObserver(&announcements);
        checkArrival();
    }

    const std::vector<std::wstring>& firstKeys() const { return keys.front(); }
    const std::vector<std::wstring>& lastKeys() const { return keys.back(); }
    const std::vector<std::wstring>& unknownKeys() const { return missingKeys; }

    ConfigStoreManager& chain() { return manager; }
    const ConfigMap& orderedMap() const { return ordered; }
    const HashMap& hashMap() const { return hashed; }
    const std::shared_ptr<InMemoryConfigStore>& arrivingStore() const { return arriving; }
    const ConfigMap& arrivingContents() const { return arrivingValues; }

    void removeArrivingStore() {
        manager.removeStoreWithSameName(arriving->getName());
        factory->backgroundDispatcher->clear();
    }

private:
    std::shared_ptr<InMemoryConfigStore> makeStore(const std::string& name, int priority,
                                                   const std::vector<std::wstring>& storeKeys) {
        auto store = std::make_shared<InMemoryConfigStore>(name, priority);
        for (const auto& key : storeKeys) {
            const auto value = generator.makeValue();
            store->storeValue(key, value);
            // The first store that contains a key determines its value; the stores are created in that order.
            ordered.emplace(key, value);
            hashed.emplace(key, value);
        }
        return store;
    }

    void prepareArrival() {
        auto newKeys = generator.makeKeys(arrivingKeys - arrivingKnownKeys);
        newKeys.insert(newKeys.end(), firstKeys().begin(), firstKeys().begin() + arrivingKnownKeys);
        arriving = std::make_shared<InMemoryConfigStore>("ArrivingStore", 45);
        for (const auto& key : newKeys) {
            const auto value = generator.makeValue();
            arriving->storeValue(key, value);
            arrivingValues.emplace(key, value);
        }
    }

    void check() {
        std::wstring value;
        for (const auto& storeKeys : keys) {
            for (const auto& key : storeKeys) {
                require(manager.getValue(key, value) && value == ordered.at(key) && value == hashed.at(key), "a hit");
            }
        }
        for (const auto& key : missingKeys) {
            require(!manager.getValue(key, value) && value.empty() && !ordered.contains(key) && !hashed.contains(key),
                    "a miss");
        }
    }

    void checkArrival() {
        announcements.remember = true;
        manager.addStore(arriving);
        require(announcements.announced == arrivingKeys && announcements.fired == arrivingKeys, "the announcements");
        require(announcements.values.size() == arrivingKeys, "the keys announced");
        for (const auto& [key, value] : arrivingValues) {
            const auto known = ordered.find(key);
            require(announcements.values.at(key) == (known == ordered.end() ? value : known->second),
                    "a value announced");
        }
        removeArrivingStore();
        announcements.remember = false;
        announcements.values.clear();
    }

    bench::SyntheticKeys generator{20240229};
    std::shared_ptr<testing_host::RecordingFactory> factory = std::make_shared<testing_host::RecordingFactory>();
    ConfigStoreManager manager{factory};
    Announcements announcements;
    std::vector<std::vector<std::wstring>> keys;
    std::vector<std::wstring> missingKeys;
    ConfigMap ordered;
    HashMap hashed;
    std::shared_ptr<InMemoryConfigStore> arriving;
    ConfigMap arrivingValues;
};

using Keys = std::vector<std::wstring>;

/// Looks up the keys in an order that the processor cannot prefetch.
template <typename Ask>
void lookUp(benchmark::State& state, const Keys& keys, Ask ask) {
    constexpr std::size_t stride = 1999; // coprime to the number of keys
    std::size_t position = 0;
    std::wstring value;
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(ask(keys[position], value));
        position = (position + stride) % keys.size();
    }
}

void registerLookup(const std::string& name, Subjects& subjects, const Keys& keys) {
    const auto inContainer = [](const auto& container) {
        return [&container](const std::wstring& key, std::wstring& value) {
            const auto found = container.find(key);
            if (found == container.end()) {
                return false;
            }
            value = found->second;
            return true;
        };
    };
    benchmark::RegisterBenchmark((name + "/chain").c_str(), [&](benchmark::State& state) {
        lookUp(state, keys,
               [&](const std::wstring& key, std::wstring& value) { return subjects.chain().getValue(key, value); });
    });
    benchmark::RegisterBenchmark((name + "/std::map").c_str(),
                                 [&subjects, &keys, inContainer](benchmark::State& state) {
                                     lookUp(state, keys, inContainer(subjects.orderedMap()));
                                 });
    benchmark::RegisterBenchmark((name + "/bare hash map").c_str(),
                                 [&subjects, &keys, inContainer](benchmark::State& state) {
                                     lookUp(state, keys, inContainer(subjects.hashMap()));
                                 });
}

/// Times `arrive` only; `leave` restores the state.
void timeArrival(benchmark::State& state, const std::function<void()>& arrive, const std::function<void()>& leave) {
    while (state.KeepRunning()) {
        const auto begin = std::chrono::steady_clock::now();
        arrive();
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
        leave();
    }
}

template <typename Container>
void timeFilling(benchmark::State& state, const ConfigMap& contents) {
    Container container;
    timeArrival(
        state,
        [&] {
            for (const auto& [key, value] : contents) {
                container.emplace(key, value);
            }
        },
        [&] { container.clear(); });
}

void registerArrival(const std::string& name, Subjects& subjects) {
    benchmark::RegisterBenchmark((name + "/chain").c_str(), [&](benchmark::State& state) {
        timeArrival(
            state, [&] { subjects.chain().addStore(subjects.arrivingStore()); },
            [&] { subjects.removeArrivingStore(); });
    })->UseManualTime();
    benchmark::RegisterBenchmark((name + "/std::map").c_str(), [&](benchmark::State& state) {
        timeFilling<ConfigMap>(state, subjects.arrivingContents());
    })->UseManualTime();
    benchmark::RegisterBenchmark((name + "/bare hash map").c_str(), [&](benchmark::State& state) {
        timeFilling<HashMap>(state, subjects.arrivingContents());
    })->UseManualTime();
}

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return EXIT_FAILURE;
    }
    Subjects subjects;
    registerLookup("a key of the first of 8 stores", subjects, subjects.firstKeys());
    registerLookup("a key of the last of 8 stores", subjects, subjects.lastKeys());
    registerLookup("a key of no store", subjects, subjects.unknownKeys());
    registerArrival("arrival of a store of 10,000 keys", subjects);
    bench::MarkdownReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return EXIT_SUCCESS;
}
