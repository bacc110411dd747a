#include "SimulatedFleet.h"

#include "FleetHost.h"
#include "FleetScope.h"
#include "PatientWriter.h"

#include <kyr/FunctionTask.h>
#include <kyr/StringUtils.h>

#include <exception>
#include <stdexcept>

namespace fleet_test {

namespace {

constexpr const char* barrierKey = "Barrier";
constexpr const char* ownKey = "OwnName";

std::string getUser(std::size_t client) {
    return "user" + std::to_string(client);
}

} // namespace

SimulatedFleet::SimulatedFleet(std::size_t count, EtcdCluster& etcdCluster)
    : cluster(etcdCluster), host(std::make_shared<ZelUnified::UnifiedFactoryImpl>()), barrier(count) {
    host->Init();
    for (const std::size_t client : {std::size_t{0}, count - 1}) {
        cluster.put(fleet::FleetScope::ofUser(getUser(client)).prefix + ownKey, getUser(client));
    }
    addClients(count);
    checkFollowing();
    passBarrier();
    checkUsers();
}

SimulatedFleet::~SimulatedFleet() {
    onServices([this] { clients.clear(); });
    host->Destroy();
}

void SimulatedFleet::onServices(const std::function<void()>& work) const {
    std::exception_ptr failure;
    const auto guarded = [&] {
        try {
            work();
        } catch (...) {
            failure = std::current_exception();
        }
    };
    host->getServicesDispatcher()->enqueueBlock(std::make_shared<KyrCoreUtils::FunctionTask>(guarded, "simulation"),
                                                false);
    if (failure) {
        std::rethrow_exception(failure);
    }
}

void SimulatedFleet::addClients(std::size_t count) {
    for (std::size_t number = 0; number < count; ++number) {
        // Each client reads the file once.
        FleetHost::writeDefaults(profile.resources(), cluster.getAccess(),
                                 {{"FleetUser", getUser(number)}, {"FleetGroups", "nurses"}});
        onServices([&] {
            auto client = std::make_unique<SimulatedClient>(host);
            client->observe(KyrCoreUtils::toWideString(barrierKey),
                            [this, number](const std::wstring& value) { barrier.receive(number, value); });
            clients.push_back(std::move(client));
        });
    }
}

void SimulatedFleet::checkFollowing() const {
    forEach([](std::size_t /*number*/, const SimulatedClient& client) {
        if (!client.isFollowing()) {
            throw std::runtime_error("a client does not follow the cluster");
        }
    });
}

void SimulatedFleet::checkUsers() const {
    forEach([&](std::size_t number, const SimulatedClient& client) {
        const bool isWritten = number == 0 || number + 1 == size();
        if (client.getValue(KyrCoreUtils::toWideString(ownKey)) !=
            KyrCoreUtils::toWideString(isWritten ? getUser(number) : "")) {
            throw std::runtime_error("a client follows the settings of another user");
        }
    });
}

void SimulatedFleet::forEach(const std::function<void(std::size_t, SimulatedClient&)>& work) const {
    onServices([&] {
        for (std::size_t number = 0; number < clients.size(); ++number) {
            work(number, *clients[number]);
        }
    });
}

void SimulatedFleet::passBarrier() {
    const auto value = "barrier " + std::to_string(++barriers);
    barrier.measure(KyrCoreUtils::toWideString(value), [&] { PatientWriter(cluster).put(barrierKey, value); });
}

} // namespace fleet_test
