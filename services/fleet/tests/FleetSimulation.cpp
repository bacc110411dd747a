// Simulates many clients in one process against a cluster of three members on loopback addresses, and measures the time
// from a write to the call of each client's observer: fleet_simulation [CLIENTS] [WRITES].
#include "FollowedCluster.h"
#include "HttpThread.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <condition_variable>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using fleet_test::ClusterOptions;
using fleet_test::EtcdCluster;

constexpr std::size_t clientsPerThread = 50;
constexpr auto patience = 120s;
constexpr std::size_t maxClients = 5000;
constexpr std::size_t maxWrites = 10000;

/// The time at which each client has called its observer for the change that is measured.
class Arrivals {
public:
    /// `expected` calls end the wait for a change.
    explicit Arrivals(std::size_t clientCount) : times(clientCount), counts(clientCount) {}

    /// Returns false if not every client has received the change in time.
    bool measure(const std::wstring& value, const std::function<void()>& write) {
        {
            const std::lock_guard lock(mutex);
            expected = value;
            arrived = 0;
            std::ranges::fill(counts, 0U);
        }
        start = Clock::now();
        write();
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, patience, [this] { return arrived == times.size(); });
    }

    void receive(std::size_t client, const ZelUnified::ConfigMap& settings) {
        const auto now = Clock::now();
        const auto found = settings.find(L"Measured");
        const std::lock_guard lock(mutex);
        if (found == settings.end() || found->second != expected) {
            return;
        }
        if (counts[client]++ > 0) {
            ++repeated;
            return;
        }
        times[client] = now - start;
        if (++arrived == times.size()) {
            changed.notify_all();
        }
    }

    std::vector<Clock::duration> getTimes() const { return times; }
    std::size_t countRepeated() const { return repeated; }

private:
    std::mutex mutex;
    std::condition_variable changed;
    std::wstring expected = L"\x1";
    Clock::time_point start;
    std::vector<Clock::duration> times;
    std::vector<std::size_t> counts;
    std::size_t arrived = 0;
    std::size_t repeated = 0;
};

/// Processor time and memory of the members.
struct Load {
    double processorSeconds = 0;
    double megabytes = 0;
};

Load measureLoad(const EtcdCluster& cluster) {
    Load load;
    for (std::size_t member = 0; member < cluster.size(); ++member) {
        std::ifstream file("/proc/" + std::to_string(cluster.getProcess(member)) + "/stat");
        std::string text((std::istreambuf_iterator<char>(file)), {});
        std::istringstream fields(text.substr(text.rfind(')') + 2));
        std::vector<std::string> values((std::istream_iterator<std::string>(fields)), {});
        // Counted from the state, the third field: user and system time, then resident pages.
        load.processorSeconds += static_cast<double>(std::stoull(values.at(11)) + std::stoull(values.at(12))) /
                                 static_cast<double>(::sysconf(_SC_CLK_TCK));
        load.megabytes +=
            static_cast<double>(std::stoull(values.at(21))) * static_cast<double>(::sysconf(_SC_PAGESIZE)) / 1e6;
    }
    return load;
}

/// The watches of the clients, spread over a few threads.
class Clients {
public:
    Clients(std::size_t count, const EtcdCluster& cluster, Arrivals& arrivals) {
        for (std::size_t client = 0; client < count; ++client) {
            if (client % clientsPerThread == 0) {
                threads.push_back(std::make_unique<fleet::HttpThread>());
            }
            auto settings = fleet_test::makeSettings(cluster.getAccess());
            settings.scopes.back() = fleet::FleetScope::ofUser("user" + std::to_string(client));
            watches.push_back(std::make_unique<fleet::FleetWatch>(
                *threads.back(), std::move(settings), fleet::FleetTimes(),
                [client, &arrivals](const ZelUnified::ConfigMap& values) { arrivals.receive(client, values); }));
            watches.back()->start();
        }
    }
    ~Clients() {
        for (const auto& thread : threads) {
            thread->end();
        }
        watches.clear();
    }
    Clients(const Clients&) = delete;
    Clients& operator=(const Clients&) = delete;

private:
    std::vector<std::unique_ptr<fleet::HttpThread>> threads;
    std::vector<std::unique_ptr<fleet::FleetWatch>> watches;
};

double toMilliseconds(Clock::duration time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

double percentile(const std::vector<double>& sorted, double part) {
    return sorted.at(static_cast<std::size_t>(part * static_cast<double>(sorted.size() - 1)));
}

/// Each client needs three descriptors here: connection and probe, and those of its thread.
void raiseDescriptorLimit() {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

void simulate(std::size_t clientCount, std::size_t writes) {
    EtcdCluster cluster(ClusterOptions{3, false, false});
    const auto idle = measureLoad(cluster);
    Arrivals arrivals(clientCount);
    const std::string key = "/lumora/fleet/all/Measured";
    const auto write = [&](const std::string& value) {
        if (!arrivals.measure(KyrCoreUtils::toWideString(value), [&] { cluster.put(key, value); })) {
            throw std::runtime_error("not every client has received the change");
        }
    };
    const auto began = Clock::now();
    const Clients clients(clientCount, cluster, arrivals);
    write("connected");
    const auto connectTime = Clock::now() - began;
    const auto before = measureLoad(cluster);
    std::vector<double> times;
    for (std::size_t count = 0; count < writes; ++count) {
        write(std::to_string(count));
        std::ranges::transform(arrivals.getTimes(), std::back_inserter(times), toMilliseconds);
    }
    const auto after = measureLoad(cluster);
    std::ranges::sort(times);
    const auto perWrite = (after.processorSeconds - before.processorSeconds) * 1000 / static_cast<double>(writes);
    std::printf("| %zu | %zu | %.1f | %.1f | %.1f | %zu | %.0f | %.1f | %.1f |\n", clientCount, writes,
                percentile(times, 0.5), percentile(times, 0.99), times.back(), arrivals.countRepeated(),
                toMilliseconds(connectTime), perWrite,
                (after.megabytes - idle.megabytes) * 1000 / static_cast<double>(clientCount));
}

std::size_t parse(std::string_view text, std::size_t most) {
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number == 0 || number > most) {
        throw std::runtime_error("usage: fleet_simulation [CLIENTS, at most 5000] [WRITES, at most 10000]");
    }
    return number;
}

} // namespace

int main(int argc, char** argv) {
    try {
        if (const auto reason = EtcdCluster::whyUnavailable(); !reason.empty()) {
            throw std::runtime_error(reason);
        }
        raiseDescriptorLimit();
        const std::size_t writes = argc > 2 ? parse(argv[2], maxWrites) : 100;
        std::vector<std::size_t> counts{10, 100, 1000};
        if (argc > 1) {
            counts = {parse(argv[1], maxClients)};
        }
        std::puts("| clients | writes | p50 ms | p99 ms | longest ms | repeated calls | all connected ms "
                  "| members' CPU ms per write | members' kB per client |");
        std::puts("| --- | --- | --- | --- | --- | --- | --- | --- | --- |");
        for (const auto count : counts) {
            simulate(count, writes);
        }
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "fleet_simulation: %s\n", error.what());
        return 1;
    }
}
