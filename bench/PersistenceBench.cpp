// Compares the cost of the user's file with the unavoidable work: parsing and decrypting the same bytes, and writing
// them durably.
#include "RowSuite.h"
#include "SyntheticKeys.h"
#include "bare/BareCipher.h"
#include "bare/BareDurableFile.h"
#include "featuresets/adapters/config/stores/LocalFileDocument.h"
#include "secure/SecureString.h"
#include "table/ConfigTable.h"

#include <ConfigMap.h>
#include <LocalFileConfigStore.h>
#include <TemporaryProfile.h>
#include <benchmark/benchmark.h>
#include <libxml/parser.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using bench::require;
using ZelUnified::ConfigMap;
using ZelUnified::LocalFileConfigStore;

constexpr std::size_t keyCount = 5000;
constexpr std::size_t readsInRound = 1000;
constexpr int persistsInRound = 20;

/// A user's file of many keys, the same bytes in the clear, and a store over the file.
class Subjects {
public:
    Subjects() {
        bench::SyntheticKeys generator(20240229);
        keys = generator.makeKeys(keyCount);
        store = openStore();
        for (const auto& key : keys) {
            values.emplace(key, generator.makeValue());
            store->storeValue(key, values.at(key));
        }
        store->persistValues();
        zel::SecureString content;
        ZelUnified::ConfigTable table(values);
        ZelUnified::LocalFileDocument::getDataString(table, content);
        content.withClearText([this](std::string_view clear) { document = clear; });
        cipher.encipher(document);
        require(openStore()->getKeys().size() == keyCount, "the file");
    }

    static std::shared_ptr<LocalFileConfigStore> openStore() {
        return std::make_shared<LocalFileConfigStore>("LocalFileConfigStore", 20, false);
    }

    LocalFileConfigStore& userStore() { return *store; }
    const std::vector<std::wstring>& allKeys() const { return keys; }
    const ConfigMap& getValues() const { return values; }
    const std::string& text() const { return document; }
    bench::BareCipher& bareCipher() { return cipher; }
    std::filesystem::path folder() const { return profile.config(); }

    /// Changes a value, since an unchanged store writes nothing.
    void change() { store->storeValue(keys.front(), std::to_wstring(++changes)); }

private:
    testing_host::TemporaryProfile profile;
    std::vector<std::wstring> keys;
    ConfigMap values;
    std::shared_ptr<LocalFileConfigStore> store;
    std::string document;
    bench::BareCipher cipher;
    unsigned long changes = 0;
};

/// Persists repeatedly on a separate thread.
class PersistingThread {
public:
    explicit PersistingThread(Subjects& written)
        : subjects(written), thread([this] {
              while (!stopped) {
                  subjects.change();
                  subjects.userStore().persistValues();
              }
          }) {}
    ~PersistingThread() {
        stopped = true;
        thread.join();
    }
    PersistingThread(const PersistingThread&) = delete;
    PersistingThread& operator=(const PersistingThread&) = delete;

private:
    Subjects& subjects;
    std::atomic<bool> stopped = false;
    std::thread thread;
};

void registerLoad(Subjects& subjects) {
    const std::string name = "load of a file of 5,000 keys";
    benchmark::RegisterBenchmark((name + "/store").c_str(), [](benchmark::State& state) {
        while (state.KeepRunning()) {
            benchmark::DoNotOptimize(Subjects::openStore());
        }
    });
    benchmark::RegisterBenchmark((name + "/bare parse").c_str(), [&](benchmark::State& state) {
        while (state.KeepRunning()) {
            xmlDoc* parsed = xmlParseDoc(reinterpret_cast<const xmlChar*>(subjects.text().c_str()));
            require(parsed != nullptr, "the bare parse");
            xmlFreeDoc(parsed);
        }
    });
    benchmark::RegisterBenchmark((name + "/decryption alone").c_str(), [&](benchmark::State& state) {
        std::string clear;
        while (state.KeepRunning()) {
            subjects.bareCipher().decipher(clear);
        }
        require(clear == subjects.text(), "the bare decryption");
    });
}

void registerPersist(bench::RowSuite& suite, Subjects& subjects) {
    const std::string row = "5 persist of 5000 keys";
    suite.addTimed(row, "store", persistsInRound, [&subjects] {
        subjects.change();
        return bench::timedByClock([&] { subjects.userStore().persistValues(); });
    });
    const auto file = std::make_shared<bench::BareDurableFile>(subjects.folder());
    suite.addTimed(row, "bare durable file", persistsInRound,
                   [&subjects, file] { return bench::timedByClock([&] { file->persist(subjects.getValues()); }); });
}

/// Reports the longest of many consecutive reads.
void timeLongestRead(benchmark::State& state, Subjects& subjects) {
    std::wstring value;
    std::size_t position = 0;
    while (state.KeepRunning()) {
        std::chrono::steady_clock::duration longest{};
        for (std::size_t i = 0; i < readsInRound; ++i) {
            position = (position + 1999) % keyCount; // an order that the processor cannot prefetch
            const auto begin = std::chrono::steady_clock::now();
            benchmark::DoNotOptimize(subjects.userStore().getValue(subjects.allKeys()[position], value));
            longest = std::max(longest, std::chrono::steady_clock::now() - begin);
        }
        state.SetIterationTime(std::chrono::duration<double>(longest).count());
    }
}

void timeRead(benchmark::State& state, Subjects& subjects) {
    std::wstring value;
    std::size_t position = 0;
    while (state.KeepRunning()) {
        position = (position + 1999) % keyCount;
        benchmark::DoNotOptimize(subjects.userStore().getValue(subjects.allKeys()[position], value));
    }
}

void registerReads(Subjects& subjects) {
    const std::string read = "10 read of a store of 5,000 keys";
    const std::string longest = "10 longest of 1,000 reads of a store of 5,000 keys";
    benchmark::RegisterBenchmark((read + "/store").c_str(), [&](benchmark::State& state) {
        timeRead(state, subjects);
    })->UseRealTime();
    benchmark::RegisterBenchmark((read + "/store, while it persists").c_str(), [&](benchmark::State& state) {
        const PersistingThread persisting(subjects);
        timeRead(state, subjects);
    })->UseRealTime();
    benchmark::RegisterBenchmark((longest + "/store").c_str(), [&](benchmark::State& state) {
        timeLongestRead(state, subjects);
    })->UseManualTime();
    benchmark::RegisterBenchmark((longest + "/store, while it persists").c_str(), [&](benchmark::State& state) {
        const PersistingThread persisting(subjects);
        timeLongestRead(state, subjects);
    })->UseManualTime();
}

} // namespace

int main(int argc, char** argv) {
    bench::RowSuite suite(argc, argv);
    Subjects subjects;
    registerLoad(subjects);
    registerPersist(suite, subjects);
    registerReads(subjects);
    return suite.main();
}
