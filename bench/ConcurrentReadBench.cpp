// Reads keys through the chain on several threads while another thread writes, and compares that with hash maps behind
// one lock that readers share.
#include "HostedService.h"
#include "RowSuite.h"
#include "Workload.h"
#include "bare/BareChain.h"

#include <benchmark/benchmark.h>

#include <atomic>
#include <barrier>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

using Ask = std::function<std::wstring(const std::wstring& key)>;

constexpr std::size_t layers = 5;
constexpr std::size_t keysInLayer = 500;
constexpr std::size_t readsInRound = 100'000;
constexpr int rounds = 3;
constexpr const wchar_t* writtenKey = L"WrittenKey";

/// Writes one key again and again on a thread of its own.
class Writer {
public:
    explicit Writer(const std::function<void(const std::wstring& value)>& write)
        : thread([this, write] {
              for (unsigned long number = 0; !stopped; ++number) {
                  write(std::to_wstring(number));
              }
          }) {}
    ~Writer() {
        stopped = true;
        thread.join();
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

private:
    std::atomic<bool> stopped = false;
    std::thread thread;
};

/// The service and the maps with the same contents.
class Subjects {
public:
    Subjects() : workload(layers, keysInLayer), hosted(workload.getLayers(), bench::HostedService::Records::Without) {}

    /// Returns the time of the clock for each of the reads of all threads.
    double timeReads(std::size_t threadCount) {
        const Writer writer(
            [this](const std::wstring& value) { hosted.featureSet().setInMemoryConfig(writtenKey, value); });
        const auto makeReader = [this]() -> Ask {
            return [this](const std::wstring& key) {
                std::wstring value;
                hosted.featureSet().getConfig(key, value, false);
                return value;
            };
        };
        return timeReads(threadCount, makeReader);
    }

    double timeBareReads(std::size_t threadCount) {
        std::shared_mutex lock;
        std::wstring written;
        const Writer writer([&](const std::wstring& value) {
            const std::lock_guard held(lock);
            written = value;
        });
        const auto makeReader = [&]() -> Ask {
            // Each thread has a copy, because a chain folds its keys in a buffer.
            return [&lock, chain = std::make_shared<bench::BareChain>(workload)](const std::wstring& key) {
                const std::shared_lock held(lock);
                return chain->read(key);
            };
        };
        return timeReads(threadCount, makeReader);
    }

private:
    double timeReads(std::size_t threadCount, const std::function<Ask()>& makeReader) {
        const std::size_t each = readsInRound / threadCount;
        std::barrier start(static_cast<std::ptrdiff_t>(threadCount) + 1);
        std::atomic<std::size_t> wrong = 0;
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < threadCount; ++i) {
            threads.emplace_back([&, i, ask = makeReader()] {
                start.arrive_and_wait();
                wrong += countWrongAnswers(ask, i * 101, each);
            });
        }
        const double seconds = bench::timedByClock([&] {
            start.arrive_and_wait();
            for (auto& thread : threads) {
                thread.join();
            }
        });
        bench::require(wrong == 0, "a concurrent read");
        return seconds / static_cast<double>(each * threadCount);
    }

    std::size_t countWrongAnswers(const Ask& ask, std::size_t first, std::size_t times) const {
        const auto& probes = workload.getHits();
        std::size_t wrong = 0;
        for (std::size_t i = 0; i < times; ++i) {
            const auto& probe = probes[(first + i) % probes.size()];
            wrong += ask(probe.key) == probe.value ? 0 : 1;
        }
        return wrong;
    }

    const bench::Workload workload;
    bench::HostedService hosted;
};

} // namespace

int main(int argc, char** argv) {
    bench::RowSuite suite(argc, argv);
    const auto subjects = std::make_shared<Subjects>();
    for (const std::size_t count : {1U, 2U, 4U, 8U}) {
        const auto row = "10 reads on " + std::to_string(count) + " threads beside a writer, 5 layers of 500 keys";
        suite.addTimed(row, "service", rounds, [subjects, count] { return subjects->timeReads(count); });
        suite.addTimed(row, "bare maps, one shared lock", rounds,
                       [subjects, count] { return subjects->timeBareReads(count); });
    }
    return suite.main();
}
