#pragma once

#include <kyr/AnnotatedMutex.h>
#include <unified/ProviderResetDataCallback.h>
#include <unified/ServicesDispatcherCallback.h>
#include <unified/UnifiedFactory.h>
#include <unified/UnifiedFactoryOptions.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace ZelUnified {

namespace Processing {
class ServicesDispatcherImpl;
class TaskDispatcherImpl;
} // namespace Processing

class PluginLoader;
class ResetDataCallbackRegistryImpl;
class WriteRetrier;

/// Implements the host's factory. A program creates it with make_shared, calls Init(), and calls Destroy() at the end;
/// otherwise the services and the factory keep each other alive.
///
/// Calls that are forwarded to a feature set run on the services dispatcher's thread: immediately if the caller is on
/// it, else the caller waits. An exception of the feature set reaches the caller. Start, stop and reset let the
/// background dispatcher run all tasks posted before and during the call, so that a store never reads its file before a
/// queued write of it. A task of the background dispatcher may call them too; the tasks queued behind it then run
/// first.
///
/// Failed writes of protected files are retried on each flush of the background dispatcher, after increasing delays,
/// and in Destroy(), which logs the content that is lost. A process has one factory at a time.
class LUMORA_HOST_API UnifiedFactoryImpl final : public UnifiedFactory {
public:
    /// The id under which the host's own SystemService is registered.
    static constexpr unsigned int systemServiceId = 1;

    explicit UnifiedFactoryImpl(UnifiedFactoryOptions factoryOptions = {});
    ~UnifiedFactoryImpl() override;
    UnifiedFactoryImpl(const UnifiedFactoryImpl&) = delete;
    UnifiedFactoryImpl& operator=(const UnifiedFactoryImpl&) = delete;

    /// Starts the feature set. On success, calls the service with the same id if it is a FeatureSetReadyListener.
    void StartFeatureSet(unsigned int id, std::shared_ptr<ServiceEventList> events) override;
    void StopFeatureSet(unsigned int id, std::shared_ptr<ServiceEventList> events) override;
    /// Stops and destroys the feature sets, ends both dispatchers after their queues are empty, and releases all reset
    /// callbacks, services and feature sets. Only the first call has an effect; a second one returns without waiting
    /// for it. Any thread: if called on a dispatcher's own thread, that dispatcher ends after the current task. With a
    /// pumped dispatcher, call it on the pumping thread, or keep pumping until it returns.
    void Destroy() override;
    bool IsFeatureSetStarted(unsigned int id) override;
    bool IsFeatureSetProvisioned(unsigned int id) override;
    std::vector<unsigned int> GetFeatureSetDependencies(unsigned int id) override;

    /// Starts the dispatchers and registers the SystemService. The calling thread becomes the thread of a pumped
    /// services dispatcher. With `openedForWriting`, first moves unusable protected files aside.
    void Init() override;
    std::shared_ptr<Processing::ServicesDispatcher> getServicesDispatcher() override;
    std::shared_ptr<Processing::TaskDispatcher> getBackgroundDispatcher() override;
    /// Returns null: this host watches no resources.
    std::shared_ptr<ResourceMonitor> getResourceMonitor() override;
    void setDataPersistor(std::shared_ptr<IDataPersistor> newPersistor) override;
    std::shared_ptr<IDataPersistor> getDataPersistor() override;
    std::shared_ptr<FeatureSetAdapter> getFeatureSetAdapter(unsigned int id) override;

    /// Loads the plug-in of the interface, as the first lookup of its type does, for a program that does not know the
    /// type. Returns true if it is loaded. Returns false after Destroy(), for a name that the options do not contain,
    /// and after a failure, which is logged.
    bool loadPlugin(const std::string& typeName);
    /// Resets the client: drops the pending content of failed writes of user data, then calls every reset callback,
    /// lowest order first. A callback that throws is logged, and the next one is called.
    void invokeResetData(ResetDataOptionEnum::ResetDataOption option);
    /// Waits until every task posted to the background dispatcher so far has run, then retries failed writes of
    /// protected files.
    void flushBackgroundDispatcher();

    // The following operations are for programs that pump the services dispatcher.

    /// Makes the calling thread the dispatcher's thread.
    void resetDispatcherThread();
    /// Sets the callback that is called for each posted task; null for none.
    void setDispatcherCallback(std::shared_ptr<ServicesDispatcherCallback> callback);
    /// Waits until a task is posted. Returns false on timeout.
    bool waitForDispatcherTask(std::chrono::milliseconds timeout);
    /// Runs the next task. Returns false if no task is queued, or if called on another thread than the dispatcher's.
    bool pumpNextDispatcherTask();
    /// Runs all queued tasks, including those that they post.
    void pumpAllDispatcherTasks();

private:
    void loadService(const std::string& typeName) override;
    void loadFeatureSet(const std::string& typeName) override;

    void runOnServicesThread(const std::string& name, const std::function<void()>& work);
    void runBetweenFlushes(const std::string& name, const std::function<void()>& work);
    void flushOnServicesThread();
    void flushOnOtherThread();
    void startOnServicesThread(unsigned int id, const std::shared_ptr<ServiceEventList>& events);
    void stopFeatureSets();
    void destroyFeatureSets();
    void endDispatchers();

    const UnifiedFactoryOptions options;
    const std::shared_ptr<Processing::ServicesDispatcherImpl> servicesDispatcher;
    const std::shared_ptr<Processing::TaskDispatcherImpl> backgroundDispatcher;
    const std::shared_ptr<ResetDataCallbackRegistryImpl> resetCallbacks;
    const std::unique_ptr<PluginLoader> pluginLoader;
    const std::shared_ptr<WriteRetrier> writeRetrier;
    std::atomic<bool> initialised = false;
    std::atomic<bool> destroyed = false;
    KyrCoreUtils::AnnotatedMutex<> persistorMutex;
    std::shared_ptr<IDataPersistor> persistor LUMORA_GUARDED_BY(persistorMutex);
};

} // namespace ZelUnified
