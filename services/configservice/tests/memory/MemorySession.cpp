// A process that works with the files of a profile and then stands still, so that its memory can be looked at. It is
// told where they are, never what is in them: memory_session CONFIG DATA STATE SCENARIO.
#include "services/impl/ConfigFileCacheTimer.h"
#include "services/impl/ConfigFileCacheTimerCallBack.h"
#include "services/impl/InjectConfigService.h"

#include <kyr/FileUtils.h>
#include <zel/LogSink.h>

#include <CacheConfigStore.h>
#include <ConfigFeatureSet.h>
#include <ConfigService.h>
#include <ConfigServiceIds.h>
#include <LocalFileConfigStore.h>
#include <RecordingFactory.h>
#include <sys/prctl.h>

#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>

namespace {

using KyrCoreUtils::FileUtils;

/// Writes the backup as soon as it is asked for.
class ImpatientTimer final : public ZelUnified::ConfigFileCacheTimer {
public:
    ImpatientTimer() : ConfigFileCacheTimer(nullptr) {}
    void scheduleTimer(std::shared_ptr<ZelUnified::ConfigFileCacheTimerCallBack> callback, int) override {
        callback->onTimerFired();
    }
};

/// Nobody else's memory is a concern of this process, its own is to be read by its parent's debugger.
void allowDebugger() {
    prctl(PR_SET_PTRACER, PR_SET_PTRACER_ANY, 0, 0, 0);
}

std::shared_ptr<ZelUnified::ConfigStore> openUserStore() {
    auto store = std::make_shared<ZelUnified::LocalFileConfigStore>("LocalFileConfigStore", 20, false);
    store->setTimer(std::make_shared<ImpatientTimer>());
    return store;
}

std::shared_ptr<ZelUnified::ConfigStore> openCachedCopy(const std::string& name) {
    return std::make_shared<ZelUnified::CacheConfigStore>(
        name, 240, FileUtils::getConfigDirectory() + "/Cache/cached" + name + ".dat");
}

void stopHere() {
    std::cout << "ready" << std::endl;
    std::string line;
    std::getline(std::cin, line);
}

/// The whole service, on a factory without threads.
void runService() {
    const auto factory = std::make_shared<testing_host::RecordingFactory>();
    InjectConfigService(factory);
    const auto featureSet = factory->getFeatureSetByType<ZelUnified::ConfigFeatureSet>();
    factory->getFeatureSetAdapter(ZelUnified::configServiceId)->StartFeatureSet(ZelUnified::configServiceId, nullptr);
    factory->getServiceByType<ZelUnified::ConfigService>()->setConfig(L"another", L"key");
    factory->backgroundDispatcher->runAll();
    stopHere();
    factory->Destroy();
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        return EXIT_FAILURE;
    }
    allowDebugger();
    FileUtils::overrideDirectories({argv[1], argv[2], argv[3], argv[3]});
    zel::logging::setDebugEnabled(true);
    zel::logging::logToStandardError(true);
    zel::logging::logToFile(std::string(argv[3]) + "/session.log");
    const std::string_view scenario = argv[4];
    if (scenario == "service") {
        runService();
        return EXIT_SUCCESS;
    }
    const auto store = scenario == "user" ? openUserStore() : openCachedCopy(argv[4]);
    store->storeValue(L"another", L"key");
    store->persistValues();
    stopHere();
    return EXIT_SUCCESS;
}
