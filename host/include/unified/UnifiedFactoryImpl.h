#pragma once

#include <unified/ProviderResetDataCallback.h>
#include <unified/ServicesDispatcherCallback.h>
#include <unified/UnifiedFactory.h>
#include <unified/UnifiedFactoryOptions.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
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

/// The host's factory. A program makes it with make_shared, calls Init(), and Destroy() at the end: without it the
/// services and the factory keep each other alive.
///
/// What it forwards to a feature set runs on the services dispatcher's thread, at once when called there; from another
/// thread the caller waits. An exception of the feature set reaches the caller. Start, stop and reset let the
/// background dispatcher run what was posted before and during, so that no queued write is overtaken by a store that
/// reads its file anew. A task of the background dispatcher may call them too; what is queued behind it then runs
/// first.
///
/// Writes of protected files that failed are retried whenever the background dispatcher is flushed, after increasing
/// delays, and in Destroy(), which logs what is lost. A process has one factory at a time.
class LUMORA_HOST_API UnifiedFactoryImpl final : public UnifiedFactory {
public:
    /// The number under which the host's own SystemService is filed.
    static constexpr unsigned int systemServiceId = 1;

    explicit UnifiedFactoryImpl(UnifiedFactoryOptions factoryOptions = {});
    ~UnifiedFactoryImpl() override;
    UnifiedFactoryImpl(const UnifiedFactoryImpl&) = delete;
    UnifiedFactoryImpl& operator=(const UnifiedFactoryImpl&) = delete;

    /// After a start that succeeded, the service of the same number is told if it is a FeatureSetReadyListener.
    void StartFeatureSet(unsigned int id, std::shared_ptr<ServiceEventList> events) override;
    void StopFeatureSet(unsigned int id, std::shared_ptr<ServiceEventList> events) override;
    /// Stops and destroys the feature sets, ends both dispatchers once they are empty, lets go of all reset callbacks,
    /// services and feature sets. Only the first call does anything; another one doesn't wait for it. Any thread: one
    /// of the dispatchers' own ends after its task. A pumped dispatcher's owner calls it, or pumps meanwhile.
    void Destroy() override;
    bool IsFeatureSetStarted(unsigned int id) override;
    bool IsFeatureSetProvisioned(unsigned int id) override;
    std::vector<unsigned int> GetFeatureSetDependencies(unsigned int id) override;

    /// Starts the dispatchers and files the SystemService. The caller owns a pumped services dispatcher from here on.
    /// With `openedForWriting` first moves protected files aside that can't be used.
    void Init() override;
    std::shared_ptr<Processing::ServicesDispatcher> getServicesDispatcher() override;
    std::shared_ptr<Processing::TaskDispatcher> getBackgroundDispatcher() override;
    /// Empty: this host watches no resources.
    std::shared_ptr<ResourceMonitor> getResourceMonitor() override;
    void setDataPersistor(std::shared_ptr<IDataPersistor> newPersistor) override;
    std::shared_ptr<IDataPersistor> getDataPersistor() override;
    std::shared_ptr<FeatureSetAdapter> getFeatureSetAdapter(unsigned int id) override;

    /// Resets the client: drops the kept content of failed writes of user data, then calls every reset callback, those
    /// of a lower order first. One that throws is logged and the next one called.
    void invokeResetData(ResetDataOptionEnum::ResetDataOption option);
    /// Waits until every task posted to the background dispatcher so far has run, then retries failed writes of
    /// protected files.
    void flushBackgroundDispatcher();

    // For programs that pump the services dispatcher.

    /// The calling thread is the dispatcher's from here on.
    void resetDispatcherThread();
    /// Empty for none.
    void setDispatcherCallback(std::shared_ptr<ServicesDispatcherCallback> callback);
    /// False when no task came in time.
    bool waitForDispatcherTask(std::chrono::milliseconds timeout);
    /// Runs the next task; false when none waits, or on another thread than the dispatcher's.
    bool pumpNextDispatcherTask();
    /// Runs what waits, and what that posts.
    void pumpAllDispatcherTasks();

private:
    void loadService(const std::string& typeName) override;
    void loadFeatureSet(const std::string& typeName) override;
    void loadPlugin(const std::string& typeName);

    void runOnServicesThread(const std::string& name, const std::function<void()>& work);
    void runWithBackgroundAtRest(const std::string& name, const std::function<void()>& work);
    void restBackground();
    void flushAsBackground();
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
    std::mutex persistorMutex; ///< Guards `persistor`.
    std::shared_ptr<IDataPersistor> persistor;
};

} // namespace ZelUnified
