#pragma once

#include <unified/FeatureSet.h>
#include <unified/FeatureSetAdapter.h>
#include <unified/ServicesDispatcher.h>
#include <unified/TaskDispatcher.h>
#include <unified/TypeMap.h>
#include <unified/UnifiedService.h>

#include <memory>
#include <mutex>
#include <set>
#include <string>

namespace ZelUnified {

class IDataPersistor;
class ResourceMonitor;

/// The host's object: it holds the services and the feature sets, gives the dispatchers, and loads plug-ins.
/// Services, feature sets and records hold it by shared pointer, a cycle that only Destroy() breaks.
class LUMORA_HOST_API UnifiedFactory : public FeatureSetAdapter, public std::enable_shared_from_this<UnifiedFactory> {
public:
    // The six operations of FeatureSetAdapter come first; they forward to the feature set filed under the id.
    virtual ~UnifiedFactory() = default;

    /// Starts the dispatchers.
    virtual void Init() = 0;
    /// Keeps answering after Destroy(), with a dispatcher that does not run.
    virtual std::shared_ptr<Processing::ServicesDispatcher> getServicesDispatcher() = 0;
    virtual std::shared_ptr<Processing::TaskDispatcher> getBackgroundDispatcher() = 0;
    virtual std::shared_ptr<ResourceMonitor> getResourceMonitor() = 0;
    virtual void setDataPersistor(std::shared_ptr<IDataPersistor> persistor) = 0;
    virtual std::shared_ptr<IDataPersistor> getDataPersistor() = 0;
    /// Empty when no feature set is filed under the id.
    virtual std::shared_ptr<FeatureSetAdapter> getFeatureSetAdapter(unsigned int id) = 0;

    TypeMap<UnifiedService>& getServices() { return services; }
    TypeMap<FeatureSet>& getFeatureSets() { return featureSets; }

    /// The service that provides `T`, loading a plug-in for it once. Empty when there is none. Any thread; while one
    /// thread loads, another gets what the registry holds.
    template <class T>
    std::shared_ptr<T> getServiceByType() {
        if (auto service = services.template getItem<T>()) {
            return service;
        }
        const std::string& name = readableTypeName<T>();
        if (!triedServices.insert(name)) {
            return nullptr;
        }
        loadService(name);
        return services.template getItem<T>();
    }

    /// The same for feature sets.
    template <class T>
    std::shared_ptr<T> getFeatureSetByType() {
        if (auto featureSet = featureSets.template getItem<T>()) {
            return featureSet;
        }
        const std::string& name = readableTypeName<T>();
        if (!triedFeatureSets.insert(name)) {
            return nullptr;
        }
        loadFeatureSet(name);
        return featureSets.template getItem<T>();
    }

protected:
    TypeMap<UnifiedService> services;
    TypeMap<FeatureSet> featureSets;

private:
    /// Type names for which a load was tried; never emptied, so that a late lookup does not load again.
    class TriedNames {
    public:
        /// False when the name was there already.
        bool insert(const std::string& name) {
            const std::lock_guard lock(mutex);
            return names.insert(name).second;
        }

    private:
        std::mutex mutex;
        std::set<std::string> names;
    };

    /// Try to load a plug-in that provides the named interface. Called without a lock.
    virtual void loadService(const std::string& typeName) = 0;
    virtual void loadFeatureSet(const std::string& typeName) = 0;

    TriedNames triedServices;
    TriedNames triedFeatureSets;
};

} // namespace ZelUnified
