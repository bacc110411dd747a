#pragma once

#include <kyr/AnnotatedMutex.h>
#include <kyr/LockGuard.h>
#include <unified/FeatureSet.h>
#include <unified/FeatureSetAdapter.h>
#include <unified/ServicesDispatcher.h>
#include <unified/TaskDispatcher.h>
#include <unified/TypeMap.h>
#include <unified/UnifiedService.h>

#include <memory>
#include <set>
#include <string>

namespace ZelUnified {

class IDataPersistor;
class ResourceMonitor;

/// The central object of the host: holds the services and the feature sets, returns the dispatchers, and loads
/// plug-ins. Services, feature sets and records hold it by shared pointer; only Destroy() breaks this cycle.
class LUMORA_HOST_API UnifiedFactory : public FeatureSetAdapter, public std::enable_shared_from_this<UnifiedFactory> {
public:
    // The six inherited operations of FeatureSetAdapter precede these; they forward to the feature set registered under
    // the id.
    virtual ~UnifiedFactory() = default;

    /// Starts the dispatchers.
    virtual void Init() = 0;
    /// Returns the services dispatcher. After Destroy(), it is one that does not run.
    virtual std::shared_ptr<Processing::ServicesDispatcher> getServicesDispatcher() = 0;
    virtual std::shared_ptr<Processing::TaskDispatcher> getBackgroundDispatcher() = 0;
    virtual std::shared_ptr<ResourceMonitor> getResourceMonitor() = 0;
    virtual void setDataPersistor(std::shared_ptr<IDataPersistor> persistor) = 0;
    virtual std::shared_ptr<IDataPersistor> getDataPersistor() = 0;
    /// Returns the adapter registered under `id`; null if there is none.
    virtual std::shared_ptr<FeatureSetAdapter> getFeatureSetAdapter(unsigned int id) = 0;

    TypeMap<UnifiedService>& getServices() { return services; }
    TypeMap<FeatureSet>& getFeatureSets() { return featureSets; }

    /// Returns the service that implements `T`; null if there is none. The first lookup of an unregistered type tries
    /// to load a plug-in. Any thread; while one thread loads, other threads get the current entry of the registry.
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

    /// Returns the feature set that implements `T`, like getServiceByType().
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
    /// The type names for which a load was tried. Never cleared, so that a later lookup does not load again.
    class TriedNames {
    public:
        /// Returns false if the set contains the name already.
        bool insert(const std::string& name) {
            const KyrCoreUtils::LockGuard lock(mutex);
            return names.insert(name).second;
        }

    private:
        KyrCoreUtils::AnnotatedMutex<> mutex;
        std::set<std::string> names LUMORA_GUARDED_BY(mutex);
    };

    /// Tries to load a plug-in that provides the named interface. Called without a lock.
    virtual void loadService(const std::string& typeName) = 0;
    virtual void loadFeatureSet(const std::string& typeName) = 0;

    TriedNames triedServices;
    TriedNames triedFeatureSets;
};

} // namespace ZelUnified
