// How many bytes of memory a key takes: as bare text, in a plain map, in the stores, and in the record that follows it.
// Counted at the allocator, what it asked for; the allocator's own overhead is not in it.
#include "CountingAllocator.h"
#include "SyntheticKeys.h"
#include "services/impl/InjectConfigService.h"

#include <CacheConfigStore.h>
#include <ConfigFeatureSet.h>
#include <ConfigService.h>
#include <InMemoryConfigStore.h>
#include <RecordingFactory.h>
#include <TemporaryProfile.h>
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

namespace {

using namespace ZelUnified;

constexpr std::size_t keyCount = 10000;

void require(bool holds, const char* what) {
    if (!holds) {
        throw std::logic_error(std::string("wrong answer: ") + what);
    }
}

ConfigMap makeValues() {
    bench::SyntheticKeys generator(20240229);
    ConfigMap values;
    for (auto& key : generator.makeKeys(keyCount)) {
        values.emplace(std::move(key), generator.makeValue());
    }
    return values;
}

/// What `make` leaves allocated, as long as its result lives.
template <typename Make>
std::size_t measure(Make make) {
    const auto before = bench::getLiveBytes();
    const auto kept = make();
    return bench::getLiveBytes() - before;
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
    require(store->getKeys().size() == keyCount, "the copy");
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
    require(factory->getServiceByType<ConfigService>()->getConfig(values.begin()->first)->getisDefined(), "a record");
    factory->Destroy();
    return bytes;
}

void printRow(const char* what, std::size_t bytes) {
    std::cout << "| " << what << " | " << static_cast<double>(bytes) / keyCount << " |\n";
}

} // namespace

int main(int argc, char** argv) {
    // Takes the arguments of the other programs; nothing here is timed.
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return EXIT_FAILURE;
    }
    const testing_host::TemporaryProfile profile;
    const auto values = makeValues();
    std::size_t text = 0;
    for (const auto& [key, value] : values) {
        text += (key.size() + value.size()) * sizeof(wchar_t);
    }
    std::cout << "| bytes for each key | of 10,000 |\n| --- | ---: |\n" << std::fixed << std::setprecision(0);
    printRow("the characters alone", text);
    printRow("a std::map of strings", measure([&] { return std::make_unique<ConfigMap>(values); }));
    printRow("a store in memory", measure([&] { return makeStore(values); }));
    printRow("a cached copy, restored", measure([&] { return restoreCopy(profile, values); }));
    printRow("the service's record of it", measureRecords(values));
    return EXIT_SUCCESS;
}
