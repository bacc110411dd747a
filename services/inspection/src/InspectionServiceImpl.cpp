#include "InspectionServiceImpl.h"

#include <kyr/FileUtils.h>
#include <kyr/LocalSocket.h>
#include <zel/ZelLog.h>

#include <ConfigServiceIds.h>

#include <system_error>
#include <utility>

namespace inspection {

using KyrCoreUtils::FileUtils;

namespace {

ZelLogger& serviceLogger = ZelLogger_getLogger("Inspection-Service");

} // namespace

InspectionServiceImpl::InspectionServiceImpl(std::shared_ptr<ZelUnified::UnifiedFactory> hostFactory)
    : factory(std::move(hostFactory)) {}

void InspectionServiceImpl::setChangesAllowed(bool allowed) {
    const KyrCoreUtils::LockGuard lock(mutex);
    changesAllowed = allowed;
    if (server) {
        server->getRunner().setChangesAllowed(allowed);
    }
}

std::string InspectionServiceImpl::getSocketPath() {
    const KyrCoreUtils::LockGuard lock(mutex);
    return socketPath;
}

void InspectionServiceImpl::StartFeatureSet(unsigned int /*id*/,
                                            std::shared_ptr<ZelUnified::ServiceEventList> /*events*/) {
    const auto path =
        KyrCoreUtils::LocalSocket::getPathFor(FileUtils::getConfigDirectory(), FileUtils::getStateDirectory());
    auto started = startServer(path);
    if (!started) {
        return;
    }
    const KyrCoreUtils::LockGuard lock(mutex);
    started->getRunner().setChangesAllowed(changesAllowed);
    server = std::move(started);
    socketPath = path;
}

std::unique_ptr<InspectionServer> InspectionServiceImpl::startServer(const std::string& path) {
    if (IsFeatureSetStarted(inspectionServiceId)) {
        return nullptr;
    }
    const auto inspector = std::make_shared<const ConfigInspector>(factory);
    if (!inspector->isUsable()) {
        ZelLog(serviceLogger, ZelLogLevel::Error, ZEL_HERE, "There is no configuration service that can be inspected");
        return nullptr;
    }
    auto started = std::make_unique<InspectionServer>(factory, inspector, path, InspectionLimits());
    if (started->getError() != 0) {
        // The client works without it.
        ZelLog(serviceLogger, ZelLogLevel::Warning, ZEL_HERE,
               "The socket [" + path + "] can't be opened: " + std::generic_category().message(started->getError()));
        return nullptr;
    }
    ZelLog(serviceLogger, ZelLogLevel::Info, ZEL_HERE, "Listening on " + path);
    return started;
}

void InspectionServiceImpl::StopFeatureSet(unsigned int /*id*/,
                                           std::shared_ptr<ZelUnified::ServiceEventList> /*events*/) {
    stopServer();
}

void InspectionServiceImpl::Destroy() {
    stopServer();
}

void InspectionServiceImpl::stopServer() {
    std::unique_ptr<InspectionServer> stopped; // ended without the lock
    const KyrCoreUtils::LockGuard lock(mutex);
    server.swap(stopped);
    socketPath.clear();
}

bool InspectionServiceImpl::IsFeatureSetStarted(unsigned int /*id*/) {
    const KyrCoreUtils::LockGuard lock(mutex);
    return server != nullptr;
}

std::vector<unsigned int> InspectionServiceImpl::GetFeatureSetDependencies(unsigned int /*id*/) {
    return {ZelUnified::configServiceId};
}

} // namespace inspection
