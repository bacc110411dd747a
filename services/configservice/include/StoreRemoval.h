#pragma once

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>

#include <CachedCopyRecord.h>
#include <ConfigFeatureSet.h>
#include <ConfigKeys.h>
#include <ConfigService.h>
#include <ConfigStore.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ZelUnified {

/// Removes one store from the chain, and its entry from the record of cached copies. The entries of all other stores
/// are unchanged. This is a header for tools and for services that inspect the configuration; the service itself does
/// not use it. All functions are inline, because tools do not link the plug-in. Holds no references. Services
/// dispatcher's thread, except for the operations marked otherwise.
class StoreRemoval {
public:
    /// Returns nothing if there is no store of this name (case-insensitive) and no cached copy of one.
    static std::optional<StoreRemoval> find(ConfigFeatureSet& featureSet, const std::string& configDirectory,
                                            const std::string& storeName) {
        const auto store = featureSet.getConfigStoreByName(storeName);
        if (!store && !featureSet.isConfigStorePresent("cached" + storeName + ".dat")) {
            return std::nullopt;
        }
        StoreRemoval removal(store ? store->getName() : storeName);
        // The copy was written under the spelling in the record, which may be an older one.
        std::vector<std::string> spellings{removal.name, storeName};
        const CachedCopyRecord record(readRecord(featureSet));
        if (const auto entry = record.find(KyrCoreUtils::toWideString(removal.name))) {
            spellings.push_back(KyrCoreUtils::toString(entry->name));
        }
        for (const auto& spelling : spellings) {
            if (auto path = CachedCopyRecord::findCopyPath(configDirectory, spelling)) {
                removal.copyPaths.push_back(std::move(*path));
            }
        }
        return removal;
    }

    /// Removes the store and its entry. Afterwards, the caller must delete the files of getCopyPaths() when the queued
    /// writes have been carried out: the service deletes the copy of a live store only, not that of a store read from
    /// its copy.
    void removeFromChain(ConfigFeatureSet& featureSet, ConfigService& service) {
        hadCopy = std::ranges::any_of(copyPaths, KyrCoreUtils::FileUtils::fileExists);
        const std::wstring recordKey(ConfigKeys::primaryConfigStores);
        const auto wideName = KyrCoreUtils::toWideString(name);
        const CachedCopyRecord record(readRecord(featureSet));
        const auto remaining = record.without(wideName);
        if (!isUsersStore() && !record.canBeErasedByService(wideName)) {
            // The service erases the record from the first occurrence of the name to the next ";", which may damage
            // another entry. Inserts a part without a priority at the front for it to erase: to remove "AB" from
            // "CAB:4;AB:5;", the record becomes "AB;CAB:4;". Readers ignore such a part, so the record is valid even if
            // the process ends before the service has erased it.
            featureSet.setConfig(recordKey, wideName + L';' + remaining);
        }
        service.removeConfigStoreAndCache(wideName);
        if (!findUsersStore(featureSet)) {
            return;
        }
        // The service reads the record from the whole chain; a store of higher priority than the user's may hold
        // another one.
        if (readRecord(featureSet) != remaining) {
            featureSet.setConfig(recordKey, remaining);
        }
        recordIsChanged = remaining != record.getText();
        remainingRecord = remaining;
    }

    /// Returns the paths of the cached copies, which need not exist. Deleting them also drops copies that could not be
    /// written yet. Any thread.
    const std::vector<std::string>& getCopyPaths() const noexcept { return copyPaths; }
    /// Returns the record after removeFromChain(); nothing if the user's store is not in the chain. Any thread.
    const std::optional<std::wstring>& getRemainingRecord() const noexcept { return remainingRecord; }
    /// Returns true if removeFromChain() changed the record in the user's settings. Any thread.
    bool hasChangedRecord() const noexcept { return recordIsChanged; }
    /// Returns what happened to the store and its copy, for the user. Any thread.
    std::string describe() const {
        const std::string copy = hadCopy ? "; its copy on the disk is deleted" : "; it has no copy on the disk";
        return name + (isCreatedAtEachStart() ? " removed for this run; the next start creates it again" : " removed") +
               copy;
    }

private:
    explicit StoreRemoval(std::string storeName) : name(std::move(storeName)) {}

    bool isUsersStore() const {
        return KyrCoreUtils::caseInsensitiveStringEquals(name, ConfigKeys::localFileConfigStore);
    }

    bool isCreatedAtEachStart() const {
        constexpr std::array storesOfTheService{ConfigKeys::localFileConfigStore, ConfigKeys::registryConfigStore,
                                                ConfigKeys::urlProvisioningConfigStore, ConfigKeys::inMemoryConfigStore,
                                                ConfigKeys::configDefaultsFile};
        return std::ranges::any_of(storesOfTheService, [&](std::string_view store) {
            return KyrCoreUtils::caseInsensitiveStringEquals(store, name);
        });
    }

    static std::shared_ptr<ConfigStore> findUsersStore(ConfigFeatureSet& featureSet) {
        return featureSet.getConfigStoreByName(std::string(ConfigKeys::localFileConfigStore));
    }

    static std::wstring readRecord(ConfigFeatureSet& featureSet) {
        std::wstring record;
        if (const auto store = findUsersStore(featureSet)) {
            store->getValue(std::wstring(ConfigKeys::primaryConfigStores), record);
        }
        return record;
    }

    std::string name; ///< In the spelling of the store.
    std::vector<std::string> copyPaths;
    std::optional<std::wstring> remainingRecord;
    bool hadCopy = false;
    bool recordIsChanged = false;
};

} // namespace ZelUnified
