#include "SimulatedClient.h"

#include "FleetServiceImpl.h"
#include "services/impl/entry/InjectConfigService.h"

#include <ConfigServiceIds.h>
#include <FleetKeys.h>
#include <XmlConfigStore.h>

#include <stdexcept>
#include <utility>

namespace fleet_test {

using ZelUnified::FleetService;

SimulatedClient::SimulatedClient(const std::shared_ptr<ZelUnified::UnifiedFactory>& host, const std::wstring& user)
    : factory(std::make_shared<SimulatedFactory>(host)) {
    InjectConfigService(factory);
    records = factory->getServiceByType<ZelUnified::ConfigService>();
    factory->StartFeatureSet(ZelUnified::configServiceId, nullptr);
    // All clients share the profile, so what differs between them is in a document of their own.
    constexpr int documentPriority = 40;
    const auto document = std::make_shared<ZelUnified::XmlConfigStore>("ClientDocument", documentPriority, false, false,
                                                                       std::string(), false);
    document->storeValue(std::wstring(ZelUnified::FleetKeys::user), user);
    factory->getFeatureSetByType<ZelUnified::ConfigFeatureSet>()->addConfigStore(document);
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
