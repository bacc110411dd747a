#pragma once

#include <unified/UnifiedFactory.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace fleet_test {

/// The factory of one simulated client. It has services and feature sets of its own; its dispatchers are those of a
/// host that all clients of the process share, because a process has one host at a time. All operations run on that
/// host's services thread. Call Destroy() at the end.
class SimulatedFactory final : public ZelUnified::UnifiedFactory {
public:
    explicit SimulatedFactory(std::shared_ptr<ZelUnified::UnifiedFactory> sharedHost) : host(std::move(sharedHost)) {}

    void StartFeatureSet(unsigned int id, std::shared_ptr<ZelUnified::ServiceEventList> events) override;
    void StopFeatureSet(unsigned int id, std::shared_ptr<ZelUnified::ServiceEventList> events) override;
    /// Stops and destroys the feature sets and releases everything.
    void Destroy() override;
    bool IsFeatureSetStarted(unsigned int id) override;
    bool IsFeatureSetProvisioned(unsigned int id) override;
    std::vector<unsigned int> GetFeatureSetDependencies(unsigned int id) override;
    void Init() override {}
    std::shared_ptr<ZelUnified::Processing::ServicesDispatcher> getServicesDispatcher() override;
    std::shared_ptr<ZelUnified::Processing::TaskDispatcher> getBackgroundDispatcher() override;
    std::shared_ptr<ZelUnified::ResourceMonitor> getResourceMonitor() override { return nullptr; }
    void setDataPersistor(std::shared_ptr<ZelUnified::IDataPersistor> /*persistor*/) override {}
    std::shared_ptr<ZelUnified::IDataPersistor> getDataPersistor() override { return nullptr; }
    std::shared_ptr<ZelUnified::FeatureSetAdapter> getFeatureSetAdapter(unsigned int id) override;

private:
    void loadService(const std::string& /*typeName*/) override {}
    void loadFeatureSet(const std::string& /*typeName*/) override {}

    const std::shared_ptr<ZelUnified::UnifiedFactory> host;
};

} // namespace fleet_test
