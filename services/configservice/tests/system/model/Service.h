#pragma once

#include "ModelStore.h"

#include <functional>
#include <string>
#include <vector>

namespace config_model {

/// The properties of the record of one key.
struct RecordView {
    std::wstring key;
    std::wstring value;
    std::wstring originalValue;
    bool isOverridden = false;
    bool isDefined = false;
    std::wstring valueStoreName;
    std::wstring originalValueStoreName;
};

std::string describe(const RecordView& record);

/// The operations of the whole service on a temporary profile that a script calls. Implemented by the model and by the
/// product. Nothing is loaded until restart(). Each call runs all queued tasks before it returns.
class Service {
public:
    virtual ~Service() = default;

    /// Ends the current run, if any, and starts the next one on the same profile. Observes the records of the keys.
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
    /// Returns the answers of the feature set and of the service.
    virtual bool isKeySensitive(const std::wstring& key) = 0;
    virtual bool isRecordSensitive(const std::wstring& key) = 0;
    virtual bool isStarted() = 0;

    /// Sets a value of the platform's policy. It takes effect when the registry is read again.
    virtual void setPolicy(const std::wstring& key, const std::wstring& value) = 0;
    virtual void setFipsMode(bool on) = 0;

    virtual RecordView getRecord(const std::wstring& key) = 0;
    virtual std::vector<std::string> listCachedFiles() = 0;

    /// Called for each property that an observed record fires.
    std::function<void(const std::wstring& key, const std::string& property)> fired;
};

} // namespace config_model
