#pragma once

#include "ModelStore.h"

#include <functional>
#include <string>
#include <vector>

namespace config_model {

/// What a lookup of the value in force answers.
struct Reading {
    bool found = false;
    std::wstring value;
    std::wstring store;
    bool fromLegacyKey = false;
};

/// What the reading beneath the user's settings answers.
struct OriginalReading {
    bool hasOverride = false;
    std::wstring value;
    std::wstring store;
    bool fromLegacyKey = false;
};

/// What onConfigAddedOrUpdated() says.
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

/// A chain of stores as a script drives it: the model, or the product's manager behind the same operations.
class Chain {
public:
    virtual ~Chain() = default;

    virtual void addStore(const StoreShape& shape) = 0;
    virtual void updateExistingStore(const StoreShape& shape, const std::vector<std::wstring>& oldKeys) = 0;
    virtual bool removeStore(const std::string& name) = 0;
    virtual void removeNonLocalStores() = 0;
    virtual void destroyStores() = 0;
    virtual bool hasStore(const std::string& name) = 0;
    /// The name in the store's own spelling; empty when there is none.
    virtual std::string findStore(const std::string& name) = 0;

    /// The observers have numbers; number 0 is the null one.
    virtual void registerStoreObserver(std::size_t number) = 0;
    virtual void unregisterStoreObserver(std::size_t number) = 0;
    /// The observer dies, and another one takes its number.
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

    /// From here on the machine is, or is not, in the FIPS mode.
    virtual void setFipsMode(bool on) = 0;
    /// Puts a file in the folder of cached copies.
    virtual void placeCachedFile(const std::string& fileName) = 0;
    virtual std::vector<std::string> listCachedFiles() = 0;

    /// The names of the background tasks that wait, in order; and their run, which says what they did by `told`.
    virtual std::vector<std::string> getTaskNames() = 0;
    virtual void runTasks() = 0;
    /// What was logged since the last call.
    virtual std::vector<std::string> takeLog() = 0;

    /// The announcements.
    std::function<void(const Change&)> changed;
    std::function<void(const std::wstring& key)> mayFire;
    std::function<void(const std::wstring& key)> madeSensitive;
    /// Hears what stores and store-added observers were asked to do.
    std::function<void(const std::string& line)> told;
};

} // namespace config_model
