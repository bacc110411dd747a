// Measures the bytes of memory per key: as bare text, in a plain map, in the stores, and in the record of the key.
// Counts the sizes requested from the allocator, without the allocator's own overhead; only the rows of a whole service
// include it.
#include "CachedDocuments.h"
#include "CountingAllocator.h"
#include "RowSuite.h"
#include "SmallClient.h"
#include "SyntheticKeys.h"
#include "bare/BareTable.h"
#include "services/impl/entry/InjectConfigService.h"

#include <CacheConfigStore.h>
#include <ConfigFeatureSet.h>
#include <ConfigService.h>
#include <InMemoryConfigStore.h>
#include <RecordingFactory.h>
#include <TemporaryProfile.h>

#include <cstddef>
#include <memory>
#include <string>
#include <utility>

namespace {

using namespace ZelUnified;

constexpr std::size_t keyCount = 10000;

ConfigMap makeValues() {
    bench::SyntheticKeys generator(20240229);
    ConfigMap values;
    for (auto& key : generator.makeKeys(keyCount)) {
        values.emplace(std::move(key), generator.makeValue());
    }
    return values;
}

/// Returns the number of bytes that `make` leaves allocated while its result exists.
template <typename Make>
std::size_t measure(Make make) {
    const auto before = bench::getLiveBytes();
    const auto kept = make();
    return bench::getLiveBytes() - before;
}

std::unique_ptr<bench::BareTable> makeTable(const ConfigMap& values) {
    bench::Folder fold;
    auto table = std::make_unique<bench::BareTable>();
    for (const auto& [key, value] : values) {
        table->emplace(fold(key).folded, value);
    }
    return table;
}

std::shared_ptr<InMemoryConfigStore> makeStore(const ConfigMap& values) {
    auto store = std::make_shared<InMemoryConfigStore>("Store", 100);
    for (const auto& [key, value] : values) {
        store->storeValue(key, value);
    }
    return store;
}

std::shared_ptr<CacheConfigStore> restoreCopy(const testing_host::TemporaryProfile& profile, const ConfigMap& values) {
    const auto path = (profile.config() / "Cache" / "cachedStore.dat").string();
    ConfigMap contents = values;
    { const CacheConfigStore writer("Store", 100, path, contents); }
    auto store = std::make_shared<CacheConfigStore>("Store", 100, path);
    bench::require(store->getKeys().size() == keyCount, "the copy");
    return store;
}

std::size_t measureRecords(const ConfigMap& values) {
    const auto factory = std::make_shared<testing_host::RecordingFactory>();
    InjectConfigService(factory);
    factory->StartFeatureSet(configServiceId, nullptr);
    auto store = makeStore(values);
    const auto bytes = measure([&] {
        factory->getFeatureSetByType<ConfigFeatureSet>()->addConfigStore(store);
        factory->backgroundDispatcher->clear();
        return store;
    });
    bench::require(factory->getServiceByType<ConfigService>()->getConfig(values.begin()->first)->getisDefined(),
                   "a record");
    factory->Destroy();
    return bytes;
}

/// Returns the heap memory of a whole service that starts on eight documents.
std::size_t measureService(const testing_host::TemporaryProfile& profile, std::size_t keys) {
    const bench::CachedDocuments documents(profile, keys);
    documents.select();
    const auto before = bench::getLiveHeapBytes();
    const bench::StartedService service;
    return bench::getLiveHeapBytes() - before;
}

/// Returns the heap memory of the client of the rows 0 after its start.
std::size_t measureSmallClient() {
    const bench::SmallProfile profile;
    const auto before = bench::getLiveHeapBytes();
    const bench::SmallClient client;
    return bench::getLiveHeapBytes() - before;
}

} // namespace

int main(int argc, char** argv) {
    bench::RowSuite suite(argc, argv);
    suite.addFigure("0 memory", "small client", static_cast<double>(measureSmallClient()) / 1e6, "MB");
    const testing_host::TemporaryProfile profile;
    const auto values = makeValues();
    const auto add = [&suite](const std::string& row, const char* subject, std::size_t bytes) {
        suite.addBytes(row, subject, static_cast<double>(bytes) / keyCount);
    };
    std::size_t text = 0;
    for (const auto& [key, value] : values) {
        text += (key.size() + value.size()) * sizeof(wchar_t);
    }
    const auto table = measure([&] { return makeTable(values); });
    const std::string inStore = "7 memory for each of 10000 keys in a store";
    add(inStore, "the characters alone", text);
    add(inStore, "std::map of strings", measure([&] { return std::make_unique<ConfigMap>(values); }));
    add(inStore, "store in memory", measure([&] { return makeStore(values); }));
    add(inStore, "cached copy, restored", measure([&] { return restoreCopy(profile, values); }));
    add(inStore, "bare hash map", table);
    const std::string inRecord = "7 memory for each of 10000 keys in its record";
    add(inRecord, "service", measureRecords(values));
    add(inRecord, "bare hash map", table);
    for (const std::size_t keys : {500U, 5000U}) {
        suite.addBytes("memory on 8 documents of " + std::to_string(keys) + " keys", "service",
                       static_cast<double>(measureService(profile, keys)));
    }
    return suite.main();
}
