#pragma once

#include "InspectionServer.h"

#include <unified/FeatureSetAdapter.h>
#include <unified/UnifiedFactory.h>

#include <InspectionService.h>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace inspection {

/// The service of the plug-in: starts and stops the server with its feature set. The host starts and stops it on the
/// services dispatcher's thread.
class InspectionServiceImpl final : public ZelUnified::InspectionService, public ZelUnified::FeatureSetAdapter {
public:
    explicit InspectionServiceImpl(std::shared_ptr<ZelUnified::UnifiedFactory> hostFactory);

    void setChangesAllowed(bool allowed) override;
    std::string getSocketPath() override;

    void StartFeatureSet(unsigned int id, std::shared_ptr<ZelUnified::ServiceEventList> events) override;
    void StopFeatureSet(unsigned int id, std::shared_ptr<ZelUnified::ServiceEventList> events) override;
    void Destroy() override;
    bool IsFeatureSetStarted(unsigned int id) override;
    bool IsFeatureSetProvisioned(unsigned int /*id*/) override { return true; }
    std::vector<unsigned int> GetFeatureSetDependencies(unsigned int id) override;

private:
    std::unique_ptr<InspectionServer> startServer(const std::string& path);
    void stopServer();

    const std::shared_ptr<ZelUnified::UnifiedFactory> factory;
    std::mutex mutex; ///< Guards the members below.
    bool changesAllowed = true;
    std::string socketPath; ///< "" while the server does not listen.
    std::unique_ptr<InspectionServer> server;
};

} // namespace inspection
