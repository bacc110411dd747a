#pragma once

#include "ModelStore.h"

#include <functional>
#include <string>
#include <vector>

namespace config_model {

/// The result of a lookup of the effective value.
struct Reading {
    bool found = false;
    std::wstring value;
    std::wstring store;
    bool fromLegacyKey = false;
};

/// The result of a lookup of the original value, without the user's settings.
struct OriginalReading {
    bool hasOverride = false;
    std::wstring value;
    std::wstring store;
    bool fromLegacyKey = false;
};

/// The arguments of onConfigAddedOrUpdated().
struct Change {
    std::wstring key;
    std::wstring value;
    std::wstring originalValue;
    bool isOverridden = false;
    bool isDefined = false;
    std::wstring valueStoreName;
    std::wstring originalValueStoreName;
    bool deferFire = false;
};

/// The operations of a chain that a script calls. Implemented by the model and by the product's manager.
class Chain {
public:
    virtual ~Chain() = default;

    virtual void addStore(const StoreShape& shape) = 0;
    virtual void updateExistingStore(const StoreShape& shape, const std::vector<std::wstring>& oldKeys) = 0;
    virtual bool removeStore(const std::string& name) = 0;
    virtual void removeNonLocalStores() = 0;
    virtual void destroyStores() = 0;
    virtual bool hasStore(const std::string& name) = 0;
    /// Returns the name in the store's own spelling, or "" if there is no such store.
    virtual std::string findStore(const std::string& name) = 0;

    /// Observers have numbers; number 0 is null.
    virtual void registerStoreObserver(std::size_t number) = 0;
    virtual void unregisterStoreObserver(std::size_t number) = 0;
    /// Destroys the observer and registers another one under its number.
    virtual void renewStoreObserver(std::size_t number) = 0;

    virtual Reading getValue(const std::wstring& key, bool skipLocal, const std::string& filter) = 0;
    virtual std::wstring getValueOfStore(const std::string& filter, const std::wstring& key) = 0;
    virtual OriginalReading getOriginalValue(const std::wstring& key) = 0;
    virtual void setKeySensitive(const std::wstring& key) = 0;
    virtual bool isKeySensitive(const std::wstring& key) = 0;

    virtual bool storeValue(const std::wstring& key, const std::wstring& value) = 0;
    virtual bool storeValues(const Pairs& values) = 0;
    virtual bool setInMemoryValue(const std::wstring& key, const std::wstring& value) = 0;
    virtual bool removeValue(const std::wstring& key) = 0;
    virtual bool setUrlProvisioningData(const std::wstring& url) = 0;

    virtual void resetConfigData() = 0;
    virtual void resetConfigData(const std::string& name) = 0;
    virtual void removeAllCachedStores() = 0;
    virtual bool removeCachedFiles(const std::string& fileName) = 0;

    /// Sets the FIPS mode of the machine.
    virtual void setFipsMode(bool on) = 0;
    /// Creates a file in the folder of cached copies.
    virtual void placeCachedFile(const std::string& fileName) = 0;
    virtual std::vector<std::string> listCachedFiles() = 0;

    /// Returns the names of the pending background tasks, in order. Running them reports their effects through `told`.
    virtual std::vector<std::string> getTaskNames() = 0;
    virtual void runTasks() = 0;
    /// Returns the lines logged since the last call.
    virtual std::vector<std::string> takeLog() = 0;

    /// Called for each announcement.
    std::function<void(const Change&)> changed;
    std::function<void(const std::wstring& key)> mayFire;
    std::function<void(const std::wstring& key)> madeSensitive;
    /// Called for each operation on stores and store-added observers.
    std::function<void(const std::string& line)> told;
};

} // namespace config_model
