#include "RecordingFactory.h"

namespace testing_host {

using namespace ZelUnified;

void RecordingFactory::StartFeatureSet(unsigned int id, std::shared_ptr<ServiceEventList> events) {
    if (const auto adapter = getFeatureSetAdapter(id)) {
        adapter->StartFeatureSet(id, std::move(events));
    }
}

void RecordingFactory::StopFeatureSet(unsigned int id, std::shared_ptr<ServiceEventList> events) {
    if (const auto adapter = getFeatureSetAdapter(id)) {
        adapter->StopFeatureSet(id, std::move(events));
    }
}

void RecordingFactory::Destroy() {
    for (const auto& [id, featureSet] : featureSets.getAll()) {
        if (const auto adapter = std::dynamic_pointer_cast<FeatureSetAdapter>(featureSet)) {
            adapter->Destroy();
        }
    }
    servicesDispatcher->runAll();
    backgroundDispatcher->runAll();
    featureSets.clear();
    services.clear();
}

bool RecordingFactory::IsFeatureSetStarted(unsigned int id) {
    const auto adapter = getFeatureSetAdapter(id);
    return adapter && adapter->IsFeatureSetStarted(id);
}

bool RecordingFactory::IsFeatureSetProvisioned(unsigned int id) {
    const auto adapter = getFeatureSetAdapter(id);
    return adapter && adapter->IsFeatureSetProvisioned(id);
}

std::vector<unsigned int> RecordingFactory::GetFeatureSetDependencies(unsigned int id) {
    const auto adapter = getFeatureSetAdapter(id);
    return adapter ? adapter->GetFeatureSetDependencies(id) : std::vector<unsigned int>{};
}

std::shared_ptr<Processing::ServicesDispatcher> RecordingFactory::getServicesDispatcher() {
    return servicesDispatcher;
}

std::shared_ptr<Processing::TaskDispatcher> RecordingFactory::getBackgroundDispatcher() {
    return backgroundDispatcher;
}

std::shared_ptr<FeatureSetAdapter> RecordingFactory::getFeatureSetAdapter(unsigned int id) {
    return std::dynamic_pointer_cast<FeatureSetAdapter>(featureSets.getItem(id));
}

} // namespace testing_host
