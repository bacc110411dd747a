// Compares the records with plain containers: a batch of changes with filling a map, and the construction of the whole
// service with reading its one file.
#include "InlineService.h"
#include "MarkdownReporter.h"
#include "SyntheticKeys.h"

#include <DefaultsFile.h>
#include <LocalFileConfigStore.h>
#include <TemporaryProfile.h>
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace ZelUnified;

constexpr std::size_t batchKeys = 10000;
constexpr std::size_t defaultKeys = 5000;

void require(bool holds, const char* what) {
    if (!holds) {
        throw std::logic_error(std::string("wrong answer: ") + what);
    }
}

void registerBatch(bench::InlineService& subject, const ConfigMap& values) {
    // Two versions of one store, so that each arrival changes every record.
    static ConfigMap changed = values;
    for (auto& [key, value] : changed) {
        value += L"!";
    }
    benchmark::RegisterBenchmark("a batch of 10,000 changed keys/service", [&](benchmark::State& state) {
        std::size_t round = 0;
        while (state.KeepRunning()) {
            state.PauseTiming();
            const auto store = bench::makeStore("BatchStore", 100, ++round % 2 == 0 ? values : changed);
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

void registerConstruction(const testing_host::TemporaryProfile& profile) {
    benchmark::RegisterBenchmark("construction on 5,000 defaults/service", [](benchmark::State& state) {
        while (state.KeepRunning()) {
            const bench::InlineService constructed;
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
    const auto batch = bench::makeValues(generator, batchKeys);
    testing_host::writeDefaults(profile.resources(), bench::makeValues(generator, defaultKeys));
    {
        bench::InlineService subject;
        registerBatch(subject, batch);
        registerConstruction(profile);
        bench::MarkdownReporter reporter;
        benchmark::RunSpecifiedBenchmarks(&reporter);
    }
    return EXIT_SUCCESS;
}
