// A process that works with the files of a profile and then stops, so that its memory can be read. Its arguments
// contain the paths but never the contents: memory_session CONFIG DATA STATE SCENARIO. In the scenario "operations" it
// reads the secret from a line of input instead, and announces each operation on standard output.
#include "featuresets/adapters/config/chain/FakeConfigStore.h"
#include "secure/SecureString.h"
#include "services/impl/ConfigFileCacheTimer.h"
#include "services/impl/ConfigFileCacheTimerCallBack.h"
#include "services/impl/entry/InjectConfigService.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>
#include <unified/ProviderResetDataCallback.h>
#include <zel/LogSink.h>

#include <CacheConfigStore.h>
#include <ConfigFeatureSet.h>
#include <ConfigService.h>
#include <ConfigServiceIds.h>
#include <LocalFileConfigStore.h>
#include <ManualClock.h>
#include <RecordingFactory.h>
#include <sys/prctl.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using KyrCoreUtils::FileUtils;

constexpr const wchar_t* secretKey = L"ConnectionPassword";

/// Writes the backup as soon as it is requested.
class ImpatientTimer final : public ZelUnified::ConfigFileCacheTimer {
public:
    ImpatientTimer() : ConfigFileCacheTimer(nullptr) {}
    void scheduleTimer(std::shared_ptr<ZelUnified::ConfigFileCacheTimerCallBack> callback, int) override {
        callback->onTimerFired();
    }
};

/// Allows the debugger of the parent to read this process.
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

void announce(const std::string& operation) {
    std::cout << "operation " << operation << std::endl;
}

std::wstring readSecret() {
    std::string line;
    std::getline(std::cin, line);
    return KyrCoreUtils::toWideString(line);
}

/// Returns a document that another service downloaded.
std::shared_ptr<ZelUnified::ConfigStore> makeDocument(const std::wstring& secret) {
    auto store = ZelUnified::makeReadOnlyStore("Downloaded", 40, {{L"ConnectionUsername", secret}});
    store->caching = true;
    store->local = false;
    return store;
}

/// Holds the service for its lifetime.
class LoadedSession {
public:
    LoadedSession() {
        InjectConfigService(factory);
        featureSet = factory->getFeatureSetByType<ZelUnified::ConfigFeatureSet>();
        service = factory->getServiceByType<ZelUnified::ConfigService>();
        factory->getFeatureSetAdapter(ZelUnified::configServiceId)
            ->StartFeatureSet(ZelUnified::configServiceId, nullptr);
        // Keys set by a link are not sensitive by default.
        service->setKeySensitive(L"ServicesDomain");
    }
    ~LoadedSession() { factory->Destroy(); }
    LoadedSession(const LoadedSession&) = delete;
    LoadedSession& operator=(const LoadedSession&) = delete;

    bool answers(const std::vector<std::wstring>& keys, const std::wstring& expected) const {
        return std::ranges::all_of(keys, [&](const auto& key) {
            std::wstring value;
            return featureSet->getConfig(key, value, false) && value == expected &&
                   service->getConfig(key)->getValue() == expected;
        });
    }
    void runTasks() const { factory->backgroundDispatcher->runAll(); }

    const std::shared_ptr<testing_host::RecordingFactory> factory = std::make_shared<testing_host::RecordingFactory>();
    std::shared_ptr<ZelUnified::ConfigFeatureSet> featureSet;
    std::shared_ptr<ZelUnified::ConfigService> service;
};

void writeReport(const LoadedSession& session, const std::string& folder) {
    std::ofstream(folder + "/report.xml") << KyrCoreUtils::toString(session.service->getAllConfigForPRT());
}

void reset(const LoadedSession& session) {
    std::dynamic_pointer_cast<ZelUnified::ProviderResetDataCallback>(session.featureSet)
        ->InvokeResetData(ZelUnified::ResetDataOptionEnum::ResetAll);
    session.runTasks();
}

/// Runs every operation of the service that handles a secret. Returns false if one did not have the expected result.
bool runOperations(const std::string& folder) {
    testing_host::ManualClock clock;
    const auto secret = readSecret();
    std::optional<LoadedSession> session(std::in_place);
    announce("set");
    session->service->setConfig(L"ConnectionPassword", secret);
    session->service->setConfig(L"beside", L"not a secret");
    announce("persist");
    session->runTasks();
    announce("backup");
    clock.advance(30);
    session->runTasks();
    announce("cached copy");
    session->featureSet->addConfigStore(makeDocument(secret));
    session->runTasks();
    announce("provisioning");
    if (!session->service->setUrlProvisioningData(L"lumora://provision?ServicesDomain=" + secret)) {
        return false;
    }
    session->runTasks();
    announce("get");
    if (!session->answers({L"ConnectionPassword", L"ConnectionUsername", L"ServicesDomain"}, secret)) {
        return false;
    }
    announce("removal");
    // The next run does not know that its keys are sensitive until they are marked again.
    session->featureSet->removeConfigStore("UrlProvisioningConfigStore");
    session->runTasks();
    announce("load");
    session.emplace();
    if (!session->answers({L"ConnectionPassword", L"ConnectionUsername"}, secret)) {
        return false;
    }
    announce("report");
    writeReport(*session, folder);
    announce("settings log");
    session->service->logConfig();
    announce("reset");
    reset(*session);
    announce("end");
    session.reset();
    return true;
}

/// The ways to remove a secret from a user's store. The backup is written whenever the main file is.
enum class Leaving {
    RemovedUnwritten,
    ResetUnwritten,
    Removed,
    OverwrittenByLonger,
    OverwrittenByShorter,
    Reset,
    Released
};

void leave(ZelUnified::ConfigStore& store, Leaving way) {
    switch (way) {
    case Leaving::RemovedUnwritten:
        store.removeValue(secretKey);
        return;
    case Leaving::ResetUnwritten:
        store.removeAllValues();
        return;
    case Leaving::Removed:
        store.removeValue(secretKey);
        break;
    case Leaving::OverwrittenByLonger:
        store.storeValue(secretKey, std::wstring(500, L'x'));
        break;
    case Leaving::OverwrittenByShorter:
        store.storeValue(secretKey, L"short");
        break;
    case Leaving::Reset:
        store.removeAllValues();
        break;
    case Leaving::Released:
        return;
    }
    store.persistValues();
}

constexpr std::array<std::pair<std::string_view, Leaving>, 7> waysToLeave{{
    {"removed, unwritten", Leaving::RemovedUnwritten},
    {"reset, unwritten", Leaving::ResetUnwritten},
    {"removed", Leaving::Removed},
    {"longer", Leaving::OverwrittenByLonger},
    {"shorter", Leaving::OverwrittenByShorter},
    {"reset", Leaving::Reset},
    {"released", Leaving::Released},
}};

/// Sets the secret of a store read from the file again, writes it and removes it. Returns the store while it lives, or
/// null if it was released.
std::shared_ptr<ZelUnified::ConfigStore> outliveSecret(Leaving way) {
    auto store = openUserStore();
    std::wstring value;
    store->getValue(secretKey, value);
    store->storeValue(L"another", L"key");
    store->persistValues();
    store->removeValue(secretKey);
    store->persistValues();
    store->storeValue(secretKey, value);
    store->persistValues();
    zel::SecureString::wipe(value);
    leave(*store, way);
    if (way == Leaving::Released) {
        store.reset();
    }
    return store;
}

/// Does the same in a service, whose record holds the secret too and may outlive it.
void outliveSecretInService(bool isReset) {
    testing_host::ManualClock clock;
    const LoadedSession session;
    const auto record = session.service->getConfig(secretKey);
    session.service->setConfig(L"another", L"key");
    session.runTasks();
    if (isReset) {
        reset(session);
    } else {
        session.service->setConfig(secretKey, L"no secret any more");
    }
    session.runTasks();
    clock.advance(30);
    session.runTasks();
    stopHere();
}

/// Leaves the secret where a search must find it.
void leak(const std::string& folder) {
    const auto secret = readSecret();
    const auto narrow = KyrCoreUtils::toString(secret);
    announce("narrow");
    std::ofstream(folder + "/narrow") << narrow.substr(0, 20) << std::flush << narrow.substr(20);
    announce("wide");
    std::ofstream(folder + "/wide")
        .write(reinterpret_cast<const char*>(secret.data()),
               static_cast<std::streamsize>(secret.size() * sizeof(wchar_t)));
    announce("utf-16");
    std::ofstream file(folder + "/utf-16");
    for (const char letter : narrow) {
        file << letter << '\0';
    }
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
    if (scenario == "operations") {
        if (!runOperations(argv[3])) {
            return EXIT_FAILURE;
        }
        stopHere();
        return EXIT_SUCCESS;
    }
    if (scenario == "leak") {
        leak(argv[3]);
        stopHere();
        return EXIT_SUCCESS;
    }
    if (scenario == "service reset" || scenario == "service overwritten") {
        outliveSecretInService(scenario == "service reset");
        return EXIT_SUCCESS;
    }
    for (const auto& [name, way] : waysToLeave) {
        if (scenario == name) {
            const auto store = outliveSecret(way);
            stopHere();
            return EXIT_SUCCESS;
        }
    }
    const auto store = scenario == "user" ? openUserStore() : openCachedCopy(argv[4]);
    store->storeValue(L"another", L"key");
    store->persistValues();
    stopHere();
    return EXIT_SUCCESS;
}
