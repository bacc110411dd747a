#include "RowSuite.h"

#include "MarkdownReporter.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace bench {

namespace {

/// Calls per reading of the library's timer.
constexpr std::size_t batch = 256;
constexpr std::size_t countedCalls = 2000; // as in scripts/bench
constexpr std::size_t countedTimedCalls = 3;

std::string toName(const std::string& row, const std::string& subject) {
    return row + '/' + subject;
}

} // namespace

void require(bool holds, const char* what) {
    if (!holds) {
        throw std::logic_error(std::string("wrong answer: ") + what);
    }
}

// The profiler knows these two functions by name: it counts inside the first only, and dumps its counts at each call of
// the second.

[[gnu::noinline]] void countedSection(const RowSuite::Run& run, std::size_t times) {
    run(times);
}

[[gnu::noinline]] void endOfRow(const std::string& name) {
    std::cout << name << '\n';
}

RowSuite::RowSuite(int argc, char** argv) : arguments(argv, argv + argc) {
    const auto take = [this](std::string_view option) {
        return std::erase_if(arguments, [option](const char* argument) { return argument == option; }) > 0;
    };
    growth = take("--growth");
    countsLimits = take("--lines");
    counts = take("--instructions") || countsLimits;
    arguments.insert(arguments.begin() + 1, interleaving.data());
}

void RowSuite::add(const std::string& row, const std::string& subject, Run run) {
    if (counts) {
        counted.push_back({toName(row, subject), std::move(run)});
        return;
    }
    benchmark::RegisterBenchmark(toName(row, subject).c_str(), [run = std::move(run)](benchmark::State& state) {
        while (state.KeepRunningBatch(batch)) {
            run(batch);
        }
    });
}

void RowSuite::addTimed(const std::string& row, const std::string& subject, int calls, TimedRun run) {
    if (counts) {
        counted.push_back({toName(row, subject), [run = std::move(run)](std::size_t) {
                               for (std::size_t i = 0; i < countedTimedCalls; ++i) {
                                   run();
                               }
                           }});
        return;
    }
    benchmark::RegisterBenchmark(toName(row, subject).c_str(),
                                 [run = std::move(run)](benchmark::State& state) {
                                     while (state.KeepRunning()) {
                                         state.SetIterationTime(run());
                                     }
                                 })
        ->UseManualTime()
        ->Iterations(calls);
}

void RowSuite::addFigure(const std::string& row, const std::string& subject, double figure, const std::string& unit) {
    if (counts) {
        return;
    }
    benchmark::RegisterBenchmark(toName(row, subject).c_str(), [figure, unit](benchmark::State& state) {
        while (state.KeepRunning()) {
        }
        state.counters[unit] = figure;
    })->Iterations(1);
}

int RowSuite::main() {
    if (counts) {
        runProfiled();
        return EXIT_SUCCESS;
    }
    auto count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
        return EXIT_FAILURE;
    }
    MarkdownReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::ClearRegisteredBenchmarks(); // destroys the subjects before their folders
    return EXIT_SUCCESS;
}

void RowSuite::runProfiled() const {
    for (const auto& [name, run] : counted) {
        if (!countsLimits && name.find("/bare") != std::string::npos) {
            continue;
        }
        run(countedCalls); // allocations of the first call are excluded from the count
        countedSection(run, countedCalls);
        endOfRow(name);
    }
}

} // namespace bench
