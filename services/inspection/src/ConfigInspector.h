#pragma once

#include "Json.h"

#include <unified/UnifiedFactory.h>

#include <ConfigChainView.h>
#include <ConfigFeatureSet.h>
#include <ConfigRecords.h>
#include <ConfigService.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace inspection {

/// Reads the configuration through its public interfaces and returns what the program prints with --json. Creates no
/// records. Services dispatcher's thread, except for the operations marked otherwise.
class ConfigInspector {
public:
    using Stores = std::vector<std::shared_ptr<ZelUnified::ConfigStore>>;

    /// The effective value of a key.
    struct Reading {
        std::wstring value;
        std::wstring storeName;
        bool underOldName = false;
    };

    /// Marks the policies whose names look like passwords as sensitive. Any thread.
    explicit ConfigInspector(const std::shared_ptr<ZelUnified::UnifiedFactory>& factory);

    /// Returns false if the host has no configuration service, or one without the interfaces for inspection. Any
    /// thread.
    bool isUsable() const noexcept { return service && featureSet && records && chain; }

    std::optional<Reading> read(const std::wstring& key, bool administratorsOnly) const;
    /// Returns the value of one store. Throws RequestError (Refused) if there is no such store.
    std::optional<Reading> readStore(const std::string& storeName, const std::wstring& key) const;
    Json showValue(const std::wstring& key, std::optional<Reading> reading, bool showSecrets) const;

    /// Returns the explanation of a key without the stores' opinions.
    Json beginExplanation(const std::wstring& key, bool showSecrets) const;
    /// Returns what one store holds for the key; `winner` is the effective value.
    Json showOpinion(ZelUnified::ConfigStore& store, const std::wstring& key, const std::optional<Reading>& winner,
                     bool showSecrets) const;
    /// Returns the names under which the store holds the key, with their values; an empty array if it does not.
    Json showHoldings(ZelUnified::ConfigStore& store, const std::wstring& key, const std::optional<Reading>& winner,
                      bool showSecrets) const;
    Json showRecord(ZelUnified::ConfigValue& record, bool showSecrets) const;
    /// Returns the value of one store as a line of a list, or null if the store does not hold the key.
    Json showStored(ZelUnified::ConfigStore& store, const std::wstring& key, bool showSecrets) const;
    /// Returns what is known about the key, and its value; null if neither the catalogue nor a store contains it.
    Json describe(const std::wstring& key, bool showSecrets) const;
    static Json showStore(ZelUnified::ConfigStore& store);

    /// Returns whether the user's own settings contain the key.
    bool userHolds(const std::wstring& key) const;
    /// Returns the value in the user's own settings.
    std::optional<std::wstring> readUsersValue(const std::wstring& key) const;
    /// Returns a text that says which value applies now and where it comes from.
    std::string describeOutcome(const std::wstring& key) const;
    /// Returns false if the administrator forbids changes by other processes.
    bool administratorAllowsChanges() const;

    Stores getStores() const { return chain->getConfigStores(); }
    /// Returns true if the key is sensitive under its old or its new name. Any thread.
    bool isSensitive(const std::wstring& key) const;

    ZelUnified::ConfigService& getService() const { return *service; }
    ZelUnified::ConfigFeatureSet& getFeatureSet() const { return *featureSet; }
    ZelUnified::ConfigRecords& getRecords() const { return *records; }

private:
    std::wstring mask(const std::wstring& key, const std::wstring& value, bool showSecrets) const;
    Json showReading(const std::wstring& key, const std::optional<Reading>& reading, bool showSecrets) const;

    const std::shared_ptr<ZelUnified::ConfigService> service;
    const std::shared_ptr<ZelUnified::ConfigFeatureSet> featureSet;
    const std::shared_ptr<ZelUnified::ConfigRecords> records;
    const std::shared_ptr<ZelUnified::ConfigChainView> chain;
};

} // namespace inspection
