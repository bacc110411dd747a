#include "SimulatedClient.h"

#include "FleetServiceImpl.h"
#include "services/impl/entry/InjectConfigService.h"

#include <ConfigServiceIds.h>

#include <stdexcept>
#include <utility>

namespace fleet_test {

using ZelUnified::FleetService;

SimulatedClient::SimulatedClient(const std::shared_ptr<ZelUnified::UnifiedFactory>& host)
    : factory(std::make_shared<SimulatedFactory>(host)) {
    InjectConfigService(factory);
    records = factory->getServiceByType<ZelUnified::ConfigService>();
    factory->StartFeatureSet(ZelUnified::configServiceId, nullptr);
    const auto service = std::make_shared<fleet::FleetServiceImpl>(factory);
    factory->getFeatureSets().registerItem<FleetService>(FleetService::fleetServiceId, service);
    factory->StartFeatureSet(FleetService::fleetServiceId, nullptr);
    if (!service->isFollowing()) {
        throw std::runtime_error("a client does not follow the cluster");
    }
}

SimulatedClient::~SimulatedClient() {
    observers.clear();
    records.reset();
    factory->Destroy();
}

void SimulatedClient::observe(const std::wstring& key, ValueObserver::Listener listener) {
    observers.push_back(ValueObserver::observe(records->getConfig(key), std::move(listener)));
}

} // namespace fleet_test
