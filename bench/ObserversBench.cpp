// Measures the cost of each observer and each notifier connection per change, beside calling a vector of functions.
#include "HostedService.h"
#include "RowSuite.h"
#include "Workload.h"

#include <ConfigValue.h>
#include <ConfigValueNotifiers.h>
#include <ConfigValueObserver.h>
#include <benchmark/benchmark.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace ZelUnified;

constexpr std::size_t watchers = 1000;
constexpr int calls = 200;

/// Counts the changes of a value.
class CountingObserver final : public ConfigValueObserver {
public:
    explicit CountingObserver(std::size_t& counter) : changes(counter) {}

    void OnKeyChanged() override {}
    void OnValueChanged() override { ++changes; }
    void OnOriginalValueChanged() override {}
    void OnisOverriddenChanged() override {}
    void OnisDefinedChanged() override {}
    void OnValueStoreNameChanged() override {}
    void OnOriginalValueStoreNameChanged() override {}

private:
    std::size_t& changes;
};

/// Three records, with no watchers, a thousand observers and a thousand connections, and a bare vector of functions.
class Subjects {
public:
    explicit Subjects(std::size_t keys) : workload(1, keys), hosted(workload.getLayers()) {
        for (const auto* key : {&unwatched, &observed, &connected}) {
            records.push_back(hosted.service().getConfig(*key));
        }
        const auto notifier = records[2]->getConfigValueNotifiers()->getValueNotifier();
        for (std::size_t i = 0; i < watchers; ++i) {
            observers.push_back(std::make_shared<CountingObserver>(changes));
            records[1]->addObserver(std::weak_ptr<ConfigValueObserver>(observers.back()));
            notifier->connect([this] { ++changes; });
            functions.emplace_back([this] { ++changes; });
        }
    }

    double perObserver() { return perWatcher(observed); }
    double perConnection() { return perWatcher(connected); }

    double perFunction() {
        const std::size_t before = changes;
        const double seconds = bench::timed([this] {
            for (const auto& function : functions) {
                function();
            }
        });
        bench::require(changes == before + watchers, "the functions called");
        return seconds / watchers;
    }

private:
    double change(const std::wstring& key) {
        const std::wstring value = std::to_wstring(round);
        return bench::timed([&] { hosted.featureSet().setInMemoryConfig(key, value); });
    }

    /// Returns the time that each watcher adds to a write.
    double perWatcher(const std::wstring& key) {
        ++round;
        const double write = change(unwatched);
        const std::size_t before = changes;
        const double watched = change(key);
        bench::require(changes == before + watchers, "the changes heard");
        return (watched - write) / watchers;
    }

    const std::wstring unwatched = L"UnwatchedKey";
    const std::wstring observed = L"ObservedKey";
    const std::wstring connected = L"ConnectedKey";
    const bench::Workload workload;
    bench::HostedService hosted;
    std::vector<std::shared_ptr<ConfigValue>> records;
    std::vector<std::shared_ptr<CountingObserver>> observers;
    std::vector<std::function<void()>> functions;
    std::size_t changes = 0;
    std::size_t round = 0;
};

} // namespace

int main(int argc, char** argv) {
    bench::RowSuite suite(argc, argv);
    const auto sizes = suite.measuresGrowth() ? std::vector<std::size_t>{1000, 10000, 100000} : std::vector{5000UL};
    for (const auto size : sizes) {
        const auto subjects = std::make_shared<Subjects>(size);
        const auto among = " among " + std::to_string(size) + " keys";
        const auto observerRow = "6 for each of 1000 observers" + among;
        const auto connectionRow = "6 for each of 1000 connections" + among;
        suite.addTimed(observerRow, "service", calls, [subjects] { return subjects->perObserver(); });
        suite.addTimed(observerRow, "bare functions", calls, [subjects] { return subjects->perFunction(); });
        suite.addTimed(connectionRow, "service", calls, [subjects] { return subjects->perConnection(); });
        suite.addTimed(connectionRow, "bare functions", calls, [subjects] { return subjects->perFunction(); });
    }
    return suite.main();
}
