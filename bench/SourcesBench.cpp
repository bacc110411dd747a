// Measures the combination of sources: the construction of a chain with cached stores beside reading their files, the
// arrival of stores of growing size beside filling a map, and a write through the whole service.
#include "InlineService.h"
#include "RowSuite.h"
#include "SyntheticKeys.h"
#include "bare/BareTable.h"

#include <CacheConfigStore.h>
#include <DefaultsFile.h>
#include <InMemoryConfigStore.h>
#include <ManualClock.h>
#include <TemporaryProfile.h>
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace ZelUnified;

constexpr int cachedStores = 10;
constexpr std::size_t keysInStore = 2000;
constexpr std::size_t arrivingKeysInRound = 200000;
/// The stores that the service creates itself.
constexpr int initialStores = 5;

void require(bool holds, const char* what) {
    if (!holds) {
        throw std::logic_error(std::string("wrong answer: ") + what);
    }
}

std::string cacheName(int index) {
    return "Delivered" + std::to_string(index);
}

std::string cachePath(const testing_host::TemporaryProfile& profile, int index) {
    return (profile.config() / "Cache" / ("cached" + cacheName(index) + ".dat")).string();
}

/// Leaves a profile like that of a run in which ten services delivered a document. Returns a key of the last one.
std::wstring leaveCopies(const testing_host::TemporaryProfile& profile, bench::SyntheticKeys& generator) {
    std::string record;
    std::wstring lastKey;
    for (int i = 0; i < cachedStores; ++i) {
        auto values = bench::makeValues(generator, keysInStore);
        lastKey = values.rbegin()->first;
        const CacheConfigStore writer(cacheName(i), 100 + i, cachePath(profile, i), values);
        record += cacheName(i) + ":" + std::to_string(100 + i) + ";";
    }
    testing_host::writeDefaults(profile.resources(),
                                std::map<std::string, std::string>{{"PrimaryConfigStores", record}});
    return lastKey;
}

void registerConstruction(const testing_host::TemporaryProfile& profile, const std::wstring& lastKey) {
    benchmark::RegisterBenchmark("construction with 10 cached stores of 2,000 keys/service",
                                 [&](benchmark::State& state) {
                                     while (state.KeepRunning()) {
                                         const bench::InlineService constructed;
                                         require(constructed.service->getConfig(lastKey)->getisDefined(), "a copy");
                                     }
                                 });
    benchmark::RegisterBenchmark("construction with 10 cached stores of 2,000 keys/bare limit",
                                 [&](benchmark::State& state) {
                                     while (state.KeepRunning()) {
                                         for (int i = 0; i < cachedStores; ++i) {
                                             CacheConfigStore store(cacheName(i), 100 + i, cachePath(profile, i));
                                             benchmark::DoNotOptimize(&store);
                                         }
                                     }
                                 });
}

/// A service with a chain of ten stores.
class ChainOfTen : public bench::InlineService {
public:
    explicit ChainOfTen(bench::SyntheticKeys& generator) {
        for (int i = initialStores; i < 10; ++i) {
            featureSet->addConfigStore(
                bench::makeStore("Store" + std::to_string(i), 40 + i, bench::makeValues(generator, keysInStore)));
        }
    }

    void add(const std::shared_ptr<InMemoryConfigStore>& store, const std::wstring& key) {
        featureSet->addConfigStore(store);
        require(service->getConfig(key)->getisDefined(), "an arrival");
    }
    void remove(const std::shared_ptr<InMemoryConfigStore>& store, const std::wstring& key) {
        featureSet->removeConfigStore(store->getName());
        require(!service->getConfig(key)->getisDefined(), "a departure");
        factory->backgroundDispatcher->clear();
    }
    /// Writes a new user value in each call.
    void write() {
        const std::wstring value = ++writes % 2 == 0 ? L"even.example.com" : L"odd.example.com";
        service->setConfig(L"ServicesDomain", value);
        require(service->getConfig(L"ServicesDomain")->getValue() == value, "a write");
    }

private:
    std::size_t writes = 0;
};

/// The minimum work of an arrival: looks up each key in ten tables and sets its record.
class BareArrival {
public:
    BareArrival(bench::SyntheticKeys& generator, const ConfigMap& arriving) : tables(10) {
        for (std::size_t i = 0; i + 1 < tables.size(); ++i) {
            fill(tables[i], bench::makeValues(generator, keysInStore));
        }
        fill(tables.back(), arriving);
        fill(records, arriving);
    }

    void arrive(const ConfigMap& arriving) {
        for (const auto& entry : arriving) {
            const auto probe = folder(entry.first);
            const std::wstring* value = &entry.second; // the last table contains it too
            for (const auto& table : tables) {
                if (const auto found = table.find(probe); found != table.end()) {
                    value = &found->second;
                }
            }
            records.find(probe)->second = *value;
        }
    }

private:
    void fill(bench::BareTable& table, const ConfigMap& values) {
        for (const auto& [key, value] : values) {
            table.emplace(folder(key).folded, value);
        }
    }

    bench::Folder folder;
    std::vector<bench::BareTable> tables;
    bench::BareTable records;
};

/// Uses a separate service for each size, with the records created before the first timed arrival.
void registerArrival(bench::RowSuite& suite, bench::SyntheticKeys& generator, const ConfigMap& values) {
    const auto row = "8 arrival of " + std::to_string(values.size()) + " keys in a chain of 10";
    const auto calls = static_cast<int>(arrivingKeysInRound / values.size());
    const auto subject = std::make_shared<ChainOfTen>(generator);
    const auto store = bench::makeStore("Arriving", 45, values);
    const auto key = values.begin()->first;
    subject->add(store, key);
    subject->remove(store, key);
    suite.addTimed(row, "service", calls, [=] {
        const double seconds = bench::timed([&] { subject->add(store, key); });
        subject->remove(store, key);
        return seconds;
    });
    const auto bare = std::make_shared<BareArrival>(generator, values);
    suite.addTimed(row, "bare maps", calls, [=, &values] { return bench::timed([&] { bare->arrive(values); }); });
}

void registerWrites(bench::SyntheticKeys& generator) {
    const auto subject = std::make_shared<ChainOfTen>(generator);
    benchmark::RegisterBenchmark("a write until the record has it/service", [=](benchmark::State& state) {
        while (state.KeepRunning()) {
            subject->write();
        }
        subject->factory->backgroundDispatcher->clear();
    });
    benchmark::RegisterBenchmark("a write until the file has it/service", [=](benchmark::State& state) {
        while (state.KeepRunning()) {
            subject->write();
            subject->factory->backgroundDispatcher->runAll();
        }
    });
}

} // namespace

int main(int argc, char** argv) {
    const testing_host::ManualClock clock; // the delayed backup is not measured
    const testing_host::TemporaryProfile profile;
    bench::SyntheticKeys generator(20240229);
    bench::RowSuite suite(argc, argv);
    std::vector<ConfigMap> arrivals{bench::makeValues(generator, 1000), bench::makeValues(generator, 10000)};
    if (!suite.isProfiled()) {
        arrivals.push_back(bench::makeValues(generator, 100000));
    }
    // Constructs the services before the copies exist, which only the constructions measure.
    for (const auto& values : arrivals) {
        registerArrival(suite, generator, values);
    }
    registerWrites(generator);
    const auto lastKey = leaveCopies(profile, generator);
    registerConstruction(profile, lastKey);
    return suite.main();
}
