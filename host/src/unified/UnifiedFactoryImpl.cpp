#include "PluginLoader.h"
#include "ResetDataCallbackRegistryImpl.h"
#include "ServicesDispatcherImpl.h"
#include "SystemServiceImpl.h"
#include "TaskDispatcherImpl.h"
#include "WriteRetrier.h"
#include "zel/SystemMonitorImpl.h"
#include "zel/storage/DurableFile.h"
#include "zel/storage/InMemoryFileLayer.h"
#include "zel/storage/PendingWrites.h"

#include <kyr/FileUtils.h>
#include <kyr/FunctionTask.h>
#include <kyr/LockGuard.h>
#include <registry/RegistryFiles.h>
#include <unified/FeatureSetReadyListener.h>
#include <unified/UnifiedFactoryImpl.h>
#include <zel/EncryptFileUtils.h>
#include <zel/ZelLog.h>

#include <exception>
#include <utility>

namespace ZelUnified {

namespace {

using Processing::SerialQueue;
using Processing::ServicesDispatcherImpl;
using Processing::TaskDispatcherImpl;
using zel::registry::getUserRegistryFolder;
using zel::storage::DurableFile;
using zel::storage::EncryptFileUtils;
using zel::storage::FileLayer;
using zel::storage::InMemoryFileLayer;
using zel::storage::PendingWrites;
using ZelSystemMonitor::SystemMonitorImpl;

ZelLogger& factoryLogger = ZelLogger_getLogger("UnifiedFactory");

SerialQueue::Mode queueMode(UnifiedFactoryOptions::ServicesThread thread) {
    return thread == UnifiedFactoryOptions::ServicesThread::Pumped ? SerialQueue::Mode::Pumped
                                                                   : SerialQueue::Mode::OwnThread;
}

/// Removes the temporary files of killed writers from the folders that the host writes.
void removeLeftovers() {
    const auto data = KyrCoreUtils::FileUtils::getUserLocalAppDir();
    for (const auto& folder :
         {KyrCoreUtils::FileUtils::getConfigDirectory(),
          data.empty() ? data : data + KyrCoreUtils::FileUtils::FileSeparator() + "keys", getUserRegistryFolder()}) {
        if (!folder.empty()) {
            DurableFile::removeLeftovers(FileLayer::platform(), folder);
        }
    }
}

/// Runs one step of an end or a reset and logs its exception, so that the next steps still run.
void runStep(const char* step, const std::function<void()>& work) {
    try {
        work();
    } catch (const std::exception& failure) {
        ZelLog(factoryLogger, ZelLogLevel::Error, ZEL_HERE, std::string(step) + " failed: " + failure.what());
    } catch (...) {
        ZelLog(factoryLogger, ZelLogLevel::Error, ZEL_HERE, std::string(step) + " failed.");
    }
}

} // namespace

UnifiedFactoryImpl::UnifiedFactoryImpl(UnifiedFactoryOptions factoryOptions)
    : options(std::move(factoryOptions)),
      servicesDispatcher(std::make_shared<ServicesDispatcherImpl>(queueMode(options.servicesThread))),
      backgroundDispatcher(std::make_shared<TaskDispatcherImpl>()),
      resetCallbacks(std::make_shared<ResetDataCallbackRegistryImpl>()),
      pluginLoader(std::make_unique<PluginLoader>(options.pluginFolder, options.plugins, options.libraries)),
      writeRetrier(std::make_shared<WriteRetrier>(backgroundDispatcher)) {}

UnifiedFactoryImpl::~UnifiedFactoryImpl() = default;

void UnifiedFactoryImpl::Init() {
    if (destroyed || initialised.exchange(true)) {
        return;
    }
    if (options.changesInMemory) {
        InMemoryFileLayer::setActive(std::make_shared<InMemoryFileLayer>(zel::storage::FileLayer::disk()));
    }
    if (options.openedForWriting) {
        EncryptFileUtils::moveAsideUnusable(KyrCoreUtils::FileUtils::getConfigDirectory());
        runStep("The removal of temporary files", removeLeftovers);
    }
    writeRetrier->start();
    services.registerItem(systemServiceId, std::static_pointer_cast<SystemService>(std::make_shared<SystemServiceImpl>(
                                               shared_from_this(), resetCallbacks, options.serviceEventListener)));
    servicesDispatcher->getQueue().start();
    backgroundDispatcher->getQueue().start();
    // On a power-down the feature set destroys its stores, so queued writes must run before.
    SystemMonitorImpl::getMachineMonitor()->attach(servicesDispatcher, [weak = weak_from_this()] {
        if (const auto self = std::static_pointer_cast<UnifiedFactoryImpl>(weak.lock())) {
            self->flushBackgroundDispatcher();
        }
    });
}

void UnifiedFactoryImpl::StartFeatureSet(unsigned int id, std::shared_ptr<ServiceEventList> events) {
    runBetweenFlushes("UnifiedFactory::StartFeatureSet", [&] { startOnServicesThread(id, events); });
}

void UnifiedFactoryImpl::startOnServicesThread(unsigned int id, const std::shared_ptr<ServiceEventList>& events) {
    const auto adapter = getFeatureSetAdapter(id);
    // Another thread may call this while the factory ends: a stopped feature set must not start again.
    if (!adapter || destroyed) {
        return;
    }
    const bool wasStarted = adapter->IsFeatureSetStarted(id);
    adapter->StartFeatureSet(id, events);
    if (wasStarted || !adapter->IsFeatureSetStarted(id)) {
        return;
    }
    if (const auto listener = std::dynamic_pointer_cast<FeatureSetReadyListener>(services.getItem(id))) {
        listener->onFeatureSetReady(true);
    }
}

void UnifiedFactoryImpl::StopFeatureSet(unsigned int id, std::shared_ptr<ServiceEventList> events) {
    runBetweenFlushes("UnifiedFactory::StopFeatureSet", [&] {
        if (const auto adapter = getFeatureSetAdapter(id)) {
            adapter->StopFeatureSet(id, events);
        }
    });
}

bool UnifiedFactoryImpl::IsFeatureSetStarted(unsigned int id) {
    bool started = false;
    runOnServicesThread("UnifiedFactory::IsFeatureSetStarted", [&] {
        const auto adapter = getFeatureSetAdapter(id);
        started = adapter && adapter->IsFeatureSetStarted(id);
    });
    return started;
}

bool UnifiedFactoryImpl::IsFeatureSetProvisioned(unsigned int id) {
    bool provisioned = false;
    runOnServicesThread("UnifiedFactory::IsFeatureSetProvisioned", [&] {
        const auto adapter = getFeatureSetAdapter(id);
        provisioned = adapter && adapter->IsFeatureSetProvisioned(id);
    });
    return provisioned;
}

std::vector<unsigned int> UnifiedFactoryImpl::GetFeatureSetDependencies(unsigned int id) {
    std::vector<unsigned int> dependencies;
    runOnServicesThread("UnifiedFactory::GetFeatureSetDependencies", [&] {
        if (const auto adapter = getFeatureSetAdapter(id)) {
            dependencies = adapter->GetFeatureSetDependencies(id);
        }
    });
    return dependencies;
}

void UnifiedFactoryImpl::invokeResetData(ResetDataOptionEnum::ResetDataOption option) {
    runBetweenFlushes("UnifiedFactory::invokeResetData", [&] {
        if (destroyed) {
            return;
        }
        // Also drops content for which no file exists that a callback could remove. Device data survives a reset.
        PendingWrites::instance().drop(zel::storage::FileCategoryType::UserData);
        for (const auto& callback : resetCallbacks->getCallbacks()) {
            runStep("A reset callback", [&] { callback->InvokeResetData(option); });
        }
    });
}

void UnifiedFactoryImpl::Destroy() {
    const auto self = weak_from_this().lock(); // the registries may own the last references
    if (destroyed.exchange(true)) {
        return;
    }
    // If a feature set throws, the remaining steps still release everything.
    runStep("Stopping the feature sets",
            [this] { runBetweenFlushes("UnifiedFactory::Destroy - stop", [this] { stopFeatureSets(); }); });
    runStep("Emptying the services dispatcher", [this] {
        runOnServicesThread("UnifiedFactory::Destroy - drain", [this] { servicesDispatcher->getQueue().flush(); });
    });
    runStep("Destroying the feature sets",
            [this] { runBetweenFlushes("UnifiedFactory::Destroy", [this] { destroyFeatureSets(); }); });
    SystemMonitorImpl::getMachineMonitor()->detach(servicesDispatcher);
    endDispatchers();
    if (initialised) {
        runStep("Writing protected files", [this] { writeRetrier->finish(options.lastRetries); });
    }
    resetCallbacks->clear();
    featureSets.clear();
    services.clear();
    if (initialised && options.changesInMemory) {
        InMemoryFileLayer::setActive(nullptr);
    }
}

void UnifiedFactoryImpl::stopFeatureSets() {
    for (const auto& [number, featureSet] : featureSets.getAll()) {
        const auto id = number;
        const auto adapter = std::dynamic_pointer_cast<FeatureSetAdapter>(featureSet);
        if (!adapter) {
            continue;
        }
        runStep("Stopping a feature set", [&adapter, id] {
            if (adapter->IsFeatureSetStarted(id)) {
                adapter->StopFeatureSet(id, std::make_shared<ServiceEventList>());
            }
        });
    }
}

void UnifiedFactoryImpl::destroyFeatureSets() {
    for (const auto& entry : featureSets.getAll()) {
        if (const auto adapter = std::dynamic_pointer_cast<FeatureSetAdapter>(entry.second)) {
            runStep("Destroying a feature set", [&adapter] { adapter->Destroy(); });
        }
    }
}

void UnifiedFactoryImpl::endDispatchers() {
    auto& servicesQueue = servicesDispatcher->getQueue();
    auto& background = backgroundDispatcher->getQueue();
    // Runs the queued writes of the background dispatcher, which may wait for the services thread.
    background.close();
    if (servicesQueue.isOwner()) {
        flushOnServicesThread();
    }
    if (!servicesQueue.isAwaitedBy(background)) { // otherwise it ends by itself after this thread releases it
        background.end();
    }
    servicesQueue.end();
}

std::shared_ptr<Processing::ServicesDispatcher> UnifiedFactoryImpl::getServicesDispatcher() {
    return servicesDispatcher;
}

std::shared_ptr<Processing::TaskDispatcher> UnifiedFactoryImpl::getBackgroundDispatcher() {
    return backgroundDispatcher;
}

std::shared_ptr<ResourceMonitor> UnifiedFactoryImpl::getResourceMonitor() {
    return nullptr;
}

void UnifiedFactoryImpl::setDataPersistor(std::shared_ptr<IDataPersistor> newPersistor) {
    const KyrCoreUtils::LockGuard lock(persistorMutex);
    persistor.swap(newPersistor);
}

std::shared_ptr<IDataPersistor> UnifiedFactoryImpl::getDataPersistor() {
    const KyrCoreUtils::LockGuard lock(persistorMutex);
    return persistor;
}

std::shared_ptr<FeatureSetAdapter> UnifiedFactoryImpl::getFeatureSetAdapter(unsigned int id) {
    return std::dynamic_pointer_cast<FeatureSetAdapter>(featureSets.getItem(id));
}

void UnifiedFactoryImpl::flushBackgroundDispatcher() {
    if (servicesDispatcher->getQueue().isOwner()) {
        flushOnServicesThread();
    } else {
        flushOnOtherThread();
    }
}

/// Flushes the background dispatcher, then retries failed writes. Call on the services dispatcher's thread. Meanwhile
/// it runs each task of this thread that a background task waits for. If a background task waits for the task that is
/// running on this thread, it does not wait for that background task nor for those queued behind it: they cannot
/// finish.
void UnifiedFactoryImpl::flushOnServicesThread() {
    constexpr std::chrono::milliseconds interval(5);
    auto& background = backgroundDispatcher->getQueue();
    auto& servicesQueue = servicesDispatcher->getQueue();
    const auto mark = background.getMark();
    while (!servicesQueue.isAwaitedBy(background) && !background.flushFor(mark, interval)) {
        servicesQueue.runTasksAwaitedBy(background);
    }
    WriteRetrier::retryNow();
}

/// Flushes the background dispatcher, then retries failed writes. Call on any thread except the services dispatcher's.
void UnifiedFactoryImpl::flushOnOtherThread() {
    backgroundDispatcher->getQueue().flush();
    WriteRetrier::retryNow();
}

void UnifiedFactoryImpl::runOnServicesThread(const std::string& name, const std::function<void()>& work) {
    std::exception_ptr failure;
    servicesDispatcher->enqueueBlock(std::make_shared<KyrCoreUtils::FunctionTask>(
                                         [&] {
                                             try {
                                                 work();
                                             } catch (...) {
                                                 failure = std::current_exception();
                                             }
                                         },
                                         name),
                                     false);
    if (failure) {
        std::rethrow_exception(failure);
    }
}

void UnifiedFactoryImpl::runBetweenFlushes(const std::string& name, const std::function<void()>& work) {
    auto& background = backgroundDispatcher->getQueue();
    if (background.isOwner()) {
        // The services thread cannot wait for a task that waits for it, so the tasks queued behind this one run here.
        flushOnOtherThread();
        runOnServicesThread(name, work);
        flushOnOtherThread();
        return;
    }
    runOnServicesThread(name, [&] {
        flushOnServicesThread();
        work();
        flushOnServicesThread();
    });
}

void UnifiedFactoryImpl::resetDispatcherThread() {
    servicesDispatcher->getQueue().claim();
}

void UnifiedFactoryImpl::setDispatcherCallback(std::shared_ptr<ServicesDispatcherCallback> callback) {
    if (!callback) {
        servicesDispatcher->getQueue().setPostedCallback(nullptr);
        return;
    }
    servicesDispatcher->getQueue().setPostedCallback([told = std::move(callback)] { told->onDispatcherTaskPosted(); });
}

bool UnifiedFactoryImpl::waitForDispatcherTask(std::chrono::milliseconds timeout) {
    return servicesDispatcher->getQueue().waitForTask(timeout);
}

bool UnifiedFactoryImpl::pumpNextDispatcherTask() {
    return servicesDispatcher->getQueue().pumpNext();
}

void UnifiedFactoryImpl::pumpAllDispatcherTasks() {
    servicesDispatcher->getQueue().pumpAll();
}

void UnifiedFactoryImpl::loadService(const std::string& typeName) {
    loadPlugin(typeName);
}

void UnifiedFactoryImpl::loadFeatureSet(const std::string& typeName) {
    loadPlugin(typeName);
}

bool UnifiedFactoryImpl::loadPlugin(const std::string& typeName) {
    return !destroyed && pluginLoader->load(typeName, shared_from_this());
}

} // namespace ZelUnified
