#include "SimulatedFactory.h"

#include <unified/FeatureSetReadyListener.h>

#include <utility>

namespace fleet_test {

using ZelUnified::FeatureSetAdapter;
using ZelUnified::FeatureSetReadyListener;

void SimulatedFactory::StartFeatureSet(unsigned int id, std::shared_ptr<ZelUnified::ServiceEventList> events) {
    const auto adapter = getFeatureSetAdapter(id);
    if (!adapter) {
        return;
    }
    adapter->StartFeatureSet(id, std::move(events));
    if (const auto listener = std::dynamic_pointer_cast<FeatureSetReadyListener>(services.getItem(id))) {
        listener->onFeatureSetReady(true);
    }
}

void SimulatedFactory::StopFeatureSet(unsigned int id, std::shared_ptr<ZelUnified::ServiceEventList> events) {
    if (const auto adapter = getFeatureSetAdapter(id)) {
        adapter->StopFeatureSet(id, std::move(events));
    }
}

void SimulatedFactory::Destroy() {
    for (const auto& [id, featureSet] : featureSets.getAll()) {
        if (const auto adapter = std::dynamic_pointer_cast<FeatureSetAdapter>(featureSet)) {
            adapter->StopFeatureSet(id, nullptr);
            adapter->Destroy();
        }
    }
    featureSets.clear();
    services.clear();
}

bool SimulatedFactory::IsFeatureSetStarted(unsigned int id) {
    const auto adapter = getFeatureSetAdapter(id);
    return adapter && adapter->IsFeatureSetStarted(id);
}

bool SimulatedFactory::IsFeatureSetProvisioned(unsigned int id) {
    const auto adapter = getFeatureSetAdapter(id);
    return adapter && adapter->IsFeatureSetProvisioned(id);
}

std::vector<unsigned int> SimulatedFactory::GetFeatureSetDependencies(unsigned int id) {
    const auto adapter = getFeatureSetAdapter(id);
    return adapter ? adapter->GetFeatureSetDependencies(id) : std::vector<unsigned int>{};
}

std::shared_ptr<ZelUnified::Processing::ServicesDispatcher> SimulatedFactory::getServicesDispatcher() {
    return host->getServicesDispatcher();
}

std::shared_ptr<ZelUnified::Processing::TaskDispatcher> SimulatedFactory::getBackgroundDispatcher() {
    return host->getBackgroundDispatcher();
}

std::shared_ptr<FeatureSetAdapter> SimulatedFactory::getFeatureSetAdapter(unsigned int id) {
    return std::dynamic_pointer_cast<FeatureSetAdapter>(featureSets.getItem(id));
}

} // namespace fleet_test
