#pragma once

#include "HeldServicesDispatcher.h"
#include "HeldTaskDispatcher.h"

#include <unified/UnifiedFactory.h>

#include <memory>
#include <string>
#include <vector>

namespace testing_host {

/// A factory without threads: both dispatchers are held, and the attempted loads are recorded. A test registers items
/// with getServices() and getFeatureSets(), and must then call Destroy() at its end.
class RecordingFactory : public ZelUnified::UnifiedFactory {
public:
    void StartFeatureSet(unsigned int id, std::shared_ptr<ZelUnified::ServiceEventList> events) override;
    void StopFeatureSet(unsigned int id, std::shared_ptr<ZelUnified::ServiceEventList> events) override;
    /// Destroys the feature sets and releases all registered items and queued tasks.
    void Destroy() override;
    bool IsFeatureSetStarted(unsigned int id) override;
    bool IsFeatureSetProvisioned(unsigned int id) override;
    std::vector<unsigned int> GetFeatureSetDependencies(unsigned int id) override;
    void Init() override {}
    std::shared_ptr<ZelUnified::Processing::ServicesDispatcher> getServicesDispatcher() override;
    std::shared_ptr<ZelUnified::Processing::TaskDispatcher> getBackgroundDispatcher() override;
    std::shared_ptr<ZelUnified::ResourceMonitor> getResourceMonitor() override { return nullptr; }
    void setDataPersistor(std::shared_ptr<ZelUnified::IDataPersistor>) override {}
    std::shared_ptr<ZelUnified::IDataPersistor> getDataPersistor() override { return nullptr; }
    std::shared_ptr<ZelUnified::FeatureSetAdapter> getFeatureSetAdapter(unsigned int id) override;

    const std::shared_ptr<HeldServicesDispatcher> servicesDispatcher = std::make_shared<HeldServicesDispatcher>();
    const std::shared_ptr<HeldTaskDispatcher> backgroundDispatcher = std::make_shared<HeldTaskDispatcher>();
    std::vector<std::string> triedServiceLoads;
    std::vector<std::string> triedFeatureSetLoads;

private:
    void loadService(const std::string& typeName) override { triedServiceLoads.push_back(typeName); }
    void loadFeatureSet(const std::string& typeName) override { triedFeatureSetLoads.push_back(typeName); }
};

} // namespace testing_host
