#pragma once

#include "ModelStore.h"

#include <functional>
#include <string>
#include <vector>

namespace config_model {

/// What a record of one key shows.
struct RecordView {
    std::wstring key;
    std::wstring value;
    std::wstring originalValue;
    bool isOverridden = false;
    bool isDefined = false;
    std::wstring valueStoreName;
    std::wstring originalValueStoreName;
};

/// The whole service on a profile of its own as a script drives it: the model, or the product. Nothing is loaded until
/// restart(); what was queued has run whenever a call returns.
class Service {
public:
    virtual ~Service() = default;

    /// Ends the run, if there is one, and begins the next on the same profile. The records of the keys are watched.
    virtual void restart(const std::vector<std::wstring>& watchedKeys) = 0;
    virtual void start() = 0;
    virtual void stop() = 0;
    virtual void refresh() = 0;
    virtual void powerDown() = 0;
    virtual void resetAllData() = 0;

    virtual void addStore(const StoreShape& shape) = 0;
    virtual void updateStore(const StoreShape& shape, const std::vector<std::wstring>& oldKeys) = 0;
    virtual bool removeStore(const std::string& name) = 0;
    virtual bool isStorePresent(const std::string& name) = 0;
    virtual std::string findStore(const std::string& name) = 0;
    virtual void removeAllCachedStores() = 0;
    virtual void setMdmConfig(const Pairs& pairs) = 0;

    virtual bool getConfig(const std::wstring& key, std::wstring& value, std::wstring& store, bool& fromLegacyKey,
                           bool skipLocal) = 0;
    virtual std::wstring getValueOfStore(const std::string& store, const std::wstring& key) = 0;
    virtual bool setConfig(const std::wstring& key, const std::wstring& value) = 0;
    virtual bool setConfig(const Pairs& pairs) = 0;
    virtual bool setInMemoryConfig(const std::wstring& key, const std::wstring& value) = 0;
    virtual void resetConfig(const std::wstring& key) = 0;
    virtual void resetStore(const std::string& name) = 0;
    virtual bool provision(const std::wstring& url) = 0;
    virtual bool resetProvisioning() = 0;
    virtual void setKeySensitive(const std::wstring& key) = 0;
    /// As the feature set says, and as the service says.
    virtual bool isKeySensitive(const std::wstring& key) = 0;
    virtual bool isRecordSensitive(const std::wstring& key) = 0;
    virtual bool isStarted() = 0;

    /// What the platform has: the policy takes effect when the registry is read again.
    virtual void setPolicy(const std::wstring& key, const std::wstring& value) = 0;
    virtual void setFipsMode(bool on) = 0;

    virtual RecordView getRecord(const std::wstring& key) = 0;
    virtual std::vector<std::string> listCachedFiles() = 0;

    /// Hears each property that a watched record fires.
    std::function<void(const std::wstring& key, const std::string& property)> fired;
};

} // namespace config_model
