#include "SimulatedClient.h"

#include "services/impl/entry/InjectConfigService.h"

#include <ConfigServiceIds.h>

#include <utility>

namespace fleet_test {

using ZelUnified::FleetService;

SimulatedClient::SimulatedClient(const std::shared_ptr<ZelUnified::UnifiedFactory>& host)
    : factory(std::make_shared<SimulatedFactory>(host)) {
    InjectConfigService(factory);
    records = factory->getServiceByType<ZelUnified::ConfigService>();
    factory->StartFeatureSet(ZelUnified::configServiceId, nullptr);
    service = std::make_shared<fleet::FleetServiceImpl>(factory);
    factory->getFeatureSets().registerItem<FleetService>(FleetService::fleetServiceId, service);
    factory->StartFeatureSet(FleetService::fleetServiceId, nullptr);
}

SimulatedClient::~SimulatedClient() {
    observers.clear();
    service.reset();
    records.reset();
    factory->Destroy();
}

void SimulatedClient::observe(const std::wstring& key, ValueObserver::Listener listener) {
    observers.push_back(ValueObserver::observe(records->getConfig(key), std::move(listener)));
}

} // namespace fleet_test
