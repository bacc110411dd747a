#pragma once

#include "InspectionServer.h"

#include <kyr/AnnotatedMutex.h>
#include <kyr/LockGuard.h>
#include <unified/FeatureSetAdapter.h>
#include <unified/UnifiedFactory.h>

#include <InspectionService.h>

#include <memory>
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
    KyrCoreUtils::AnnotatedMutex<> mutex;
    bool changesAllowed LUMORA_GUARDED_BY(mutex) = true;
    std::string socketPath LUMORA_GUARDED_BY(mutex); ///< "" while the server does not listen.
    std::unique_ptr<InspectionServer> server LUMORA_GUARDED_BY(mutex);
};

} // namespace inspection
