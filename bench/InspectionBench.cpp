// Measures how long a task of the client waits on the services dispatcher while other processes watch its changes.
#include "RowSuite.h"

#include <kyr/FunctionTask.h>
#include <kyr/LocalConnection.h>
#include <unified/TypeName.h>
#include <unified/UnifiedFactoryImpl.h>

#include <ConfigFeatureSet.h>
#include <ConfigService.h>
#include <ConfigServiceIds.h>
#include <InspectionService.h>
#include <TemporaryProfile.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using namespace ZelUnified;
using KyrCoreUtils::LocalConnection;
using Clock = std::chrono::steady_clock;

constexpr std::size_t watcherCount = 100;
constexpr std::size_t changes = 200; // two seconds
constexpr auto changeInterval = 10ms;
constexpr auto patience = 30s;

/// A client with its own services thread and the inspection service.
class Client {
public:
    Client() {
        testing_host::writeFile(profile.resources() / "lumora-config-defaults.xml", "<Lumora/>");
        UnifiedFactoryOptions options;
        options.pluginFolder = PLUGIN_FOLDER;
        options.plugins = {{readableTypeName<ConfigService>(), SERVICE_LIBRARY},
                           {readableTypeName<ConfigFeatureSet>(), SERVICE_LIBRARY},
                           {readableTypeName<InspectionService>(), INSPECTION_LIBRARY}};
        factory = std::make_shared<UnifiedFactoryImpl>(std::move(options));
        factory->Init();
        featureSet = factory->getFeatureSetByType<ConfigFeatureSet>();
        inspection = factory->getFeatureSetByType<InspectionService>();
        bench::require(featureSet && inspection, "the plug-ins loaded");
        factory->StartFeatureSet(configServiceId, nullptr);
        factory->StartFeatureSet(InspectionService::inspectionServiceId, nullptr);
        post([this] { set(L"begin"); });
    }

    ~Client() {
        featureSet.reset();
        inspection.reset();
        factory->Destroy();
    }

    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    void post(std::function<void()> work) const {
        factory->getServicesDispatcher()->enqueue(
            std::make_shared<KyrCoreUtils::FunctionTask>(std::move(work), "bench"), false);
    }

    void wait() const {
        factory->getServicesDispatcher()->enqueueBlock(std::make_shared<KyrCoreUtils::FunctionTask>([] {}, "bench"),
                                                       false);
    }

    void set(const std::wstring& value) const { featureSet->setInMemoryConfig(L"BenchKey", value); }
    std::string socketPath() const { return inspection->getSocketPath(); }

private:
    const testing_host::TemporaryProfile profile;
    std::shared_ptr<UnifiedFactoryImpl> factory;
    std::shared_ptr<ConfigFeatureSet> featureSet;
    std::shared_ptr<InspectionService> inspection;
};

/// The processes that watch: one thread reads the same number of events from each.
class Watchers {
public:
    Watchers(const std::string& path, std::size_t count) {
        std::string line;
        for (std::size_t i = 0; i < count; ++i) {
            connections.push_back(std::make_unique<LocalConnection>(path));
            connections.back()->sendLine("{\"verb\":\"watch\",\"keys\":[\"BenchKey\"]}", patience);
            bench::require(connections.back()->receiveLine(line, patience) == LocalConnection::Received::Line,
                           "the watch accepted");
        }
    }

    /// Reads `events` events from each watcher; none may be lost.
    void read(std::size_t events) {
        std::string line;
        for (std::size_t i = 0; i < events; ++i) {
            for (const auto& connection : connections) {
                bench::require(connection->receiveLine(line, patience) == LocalConnection::Received::Line &&
                                   line.find("\"notification\"") != std::string::npos,
                               "every event received");
            }
        }
    }

private:
    std::vector<std::unique_ptr<LocalConnection>> connections;
};

/// Changes a key a hundred times a second, with a task of the client behind each change. Returns the time that the task
/// waited, at the 99th percentile.
double measureDelay(const Client& client, Watchers& watchers, std::size_t& round) {
    std::vector<double> delays;
    std::thread reader([&] { watchers.read(changes); });
    auto next = Clock::now();
    for (std::size_t i = 0; i < changes; ++i) {
        client.post([&client, value = std::to_wstring(++round)] { client.set(value); });
        client.post([&delays, posted = Clock::now()] {
            delays.push_back(std::chrono::duration<double>(Clock::now() - posted).count());
        });
        next += changeInterval;
        std::this_thread::sleep_until(next); // the rate is what is measured
    }
    client.wait();
    reader.join();
    std::ranges::sort(delays);
    return delays[delays.size() * 99 / 100];
}

} // namespace

int main(int argc, char** argv) {
    bench::RowSuite suite(argc, argv);
    const auto client = std::make_shared<Client>();
    const auto round = std::make_shared<std::size_t>(0);
    const std::string row = "10 wait of a task, 99th percentile, 100 changes a second";
    for (const std::size_t count : {watcherCount, std::size_t{0}}) {
        suite.addTimed(row, count == 0 ? "without watchers" : "100 watchers", 1, [client, round, count] {
            Watchers watchers(client->socketPath(), count);
            return measureDelay(*client, watchers, *round);
        });
    }
    return suite.main();
}
