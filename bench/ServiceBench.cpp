// What the records cost beside the bare thing: a read beside a hash map, a change with observers beside a vector of
// functions, a batch of changes beside filling a map, and the construction of the whole service beside reading its one
// file.
#include "MarkdownReporter.h"
#include "SyntheticKeys.h"
#include "services/impl/InjectConfigService.h"

#include <kyr/StringUtils.h>

#include <ConfigFeatureSet.h>
#include <ConfigService.h>
#include <ConfigValueObserver.h>
#include <InMemoryConfigStore.h>
#include <LocalFileConfigStore.h>
#include <RecordingFactory.h>
#include <TemporaryProfile.h>
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using namespace ZelUnified;

constexpr std::size_t cachedKeys = 5000;
constexpr std::size_t batchKeys = 10000;
constexpr std::size_t defaultKeys = 5000;

void require(bool holds, const char* what) {
    if (!holds) {
        throw std::logic_error(std::string("wrong answer: ") + what);
    }
}

/// Counts the changes of a value.
class CountingObserver final : public ConfigValueObserver {
public:
    void OnKeyChanged() override {}
    void OnValueChanged() override { ++changes; }
    void OnOriginalValueChanged() override {}
    void OnisOverriddenChanged() override {}
    void OnisDefinedChanged() override {}
    void OnValueStoreNameChanged() override {}
    void OnOriginalValueStoreNameChanged() override {}

    std::size_t changes = 0;
};

/// The service on a factory without threads: this thread is the dispatcher's.
class Service {
public:
    Service() {
        InjectConfigService(factory);
        factory->StartFeatureSet(configServiceId, nullptr);
        service = factory->getServiceByType<ConfigService>();
        featureSet = factory->getFeatureSetByType<ConfigFeatureSet>();
    }
    ~Service() {
        service.reset();
        featureSet.reset();
        factory->Destroy();
    }
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    const std::shared_ptr<testing_host::RecordingFactory> factory = std::make_shared<testing_host::RecordingFactory>();
    std::shared_ptr<ConfigService> service;
    std::shared_ptr<ConfigFeatureSet> featureSet;
};

std::shared_ptr<InMemoryConfigStore> makeStore(const std::string& name, const ConfigMap& values) {
    auto store = std::make_shared<InMemoryConfigStore>(name, 100);
    for (const auto& [key, value] : values) {
        store->storeValue(key, value);
    }
    return store;
}

ConfigMap makeValues(bench::SyntheticKeys& generator, std::size_t count) {
    ConfigMap values;
    for (auto& key : generator.makeKeys(count)) {
        values.emplace(std::move(key), generator.makeValue());
    }
    return values;
}

void registerCachedRead(Service& subject, const ConfigMap& values) {
    static std::unordered_map<std::wstring, std::wstring> lowered;
    static std::vector<std::wstring> probes;
    for (const auto& [key, value] : values) {
        probes.push_back(key);
        lowered.emplace(KyrCoreUtils::toLowercase(key), value);
        require(subject.service->getConfig(key)->getValue() == value, "a cached read");
    }
    constexpr std::size_t stride = 1999; // prime to the number of keys
    benchmark::RegisterBenchmark("cached read of one of 5,000 keys/service", [&](benchmark::State& state) {
        std::size_t position = 0;
        while (state.KeepRunning()) {
            benchmark::DoNotOptimize(subject.service->getConfig(probes[position])->getValue());
            position = (position + stride) % probes.size();
        }
    });
    benchmark::RegisterBenchmark("cached read of one of 5,000 keys/bare limit", [](benchmark::State& state) {
        std::size_t position = 0;
        while (state.KeepRunning()) {
            std::wstring value = lowered.find(KyrCoreUtils::toLowercase(probes[position]))->second;
            benchmark::DoNotOptimize(value);
            position = (position + stride) % probes.size();
        }
    });
}

void registerObservedChange(Service& subject, std::size_t count) {
    const auto name = "a change heard by " + std::to_string(count) + (count == 1 ? " observer" : " observers");
    benchmark::RegisterBenchmark((name + "/service").c_str(), [&subject, count](benchmark::State& state) {
        const std::wstring key = L"ObservedKey" + std::to_wstring(count);
        const auto record = subject.service->getConfig(key);
        std::vector<std::shared_ptr<CountingObserver>> observers;
        for (std::size_t i = 0; i < count; ++i) {
            observers.push_back(std::make_shared<CountingObserver>());
            record->addObserver(std::weak_ptr<ConfigValueObserver>(observers.back()));
        }
        std::size_t round = 0;
        while (state.KeepRunning()) {
            subject.featureSet->setInMemoryConfig(key, ++round % 2 == 0 ? L"even" : L"odd");
        }
        require(observers.back()->changes == round, "the changes heard");
    });
    benchmark::RegisterBenchmark((name + "/bare limit").c_str(), [count](benchmark::State& state) {
        std::size_t changes = 0;
        std::unordered_map<std::wstring, std::wstring> values;
        const std::vector<std::function<void()>> observers(count, [&changes] { ++changes; });
        std::size_t round = 0;
        while (state.KeepRunning()) {
            values[L"observedkey"] = ++round % 2 == 0 ? L"even" : L"odd";
            for (const auto& observer : observers) {
                observer();
            }
        }
        require(changes == round * count, "the functions called");
    });
}

void registerBatch(Service& subject, const ConfigMap& values) {
    // Two versions of one store, so that each arrival changes every record.
    static ConfigMap changed = values;
    for (auto& [key, value] : changed) {
        value += L"!";
    }
    benchmark::RegisterBenchmark("a batch of 10,000 changed keys/service", [&](benchmark::State& state) {
        std::size_t round = 0;
        while (state.KeepRunning()) {
            state.PauseTiming();
            const auto store = makeStore("BatchStore", ++round % 2 == 0 ? values : changed);
            state.ResumeTiming();
            subject.featureSet->addConfigStore(store);
        }
        const auto& last = round % 2 == 0 ? values : changed;
        require(subject.service->getConfig(last.begin()->first)->getValue() == last.begin()->second, "the batch");
        subject.featureSet->removeConfigStore("BatchStore");
    });
    benchmark::RegisterBenchmark("a batch of 10,000 changed keys/bare limit", [&](benchmark::State& state) {
        ConfigMap records = values;
        std::size_t round = 0;
        while (state.KeepRunning()) {
            for (const auto& [key, value] : ++round % 2 == 0 ? values : changed) {
                records.find(key)->second = value;
            }
        }
    });
}

void writeDefaults(const testing_host::TemporaryProfile& profile, const ConfigMap& values) {
    std::string document = "<Lumora>\n";
    for (const auto& [key, value] : values) {
        document += KyrCoreUtils::toString(L" <userConfig name=\"" + key + L"\" value=\"" + value + L"\"/>\n");
    }
    testing_host::writeFile(profile.resources() / "lumora-config-defaults.xml", document + "</Lumora>\n");
}

void registerConstruction(const testing_host::TemporaryProfile& profile) {
    benchmark::RegisterBenchmark("construction on 5,000 defaults/service", [](benchmark::State& state) {
        while (state.KeepRunning()) {
            const Service constructed;
            benchmark::DoNotOptimize(constructed.service.get());
        }
    });
    benchmark::RegisterBenchmark("construction on 5,000 defaults/bare limit", [&](benchmark::State& state) {
        while (state.KeepRunning()) {
            LocalFileConfigStore store("lumora-config-defaults.xml", 1, profile.resources().string(),
                                       "lumora-config-defaults.xml", true, true, false);
            benchmark::DoNotOptimize(&store);
        }
    });
}

} // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return EXIT_FAILURE;
    }
    const testing_host::TemporaryProfile profile;
    bench::SyntheticKeys generator(20240229);
    const auto cached = makeValues(generator, cachedKeys);
    const auto batch = makeValues(generator, batchKeys);
    writeDefaults(profile, makeValues(generator, defaultKeys));
    {
        Service subject;
        subject.featureSet->addConfigStore(makeStore("CachedReads", cached));
        registerCachedRead(subject, cached);
        for (const std::size_t count : {1U, 10U, 1000U}) {
            registerObservedChange(subject, count);
        }
        registerBatch(subject, batch);
        registerConstruction(profile);
        bench::MarkdownReporter reporter;
        benchmark::RunSpecifiedBenchmarks(&reporter);
    }
    return EXIT_SUCCESS;
}
