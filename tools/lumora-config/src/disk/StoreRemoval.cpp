#include "StoreRemoval.h"

#include "DiskCheck.h"
#include "output/Failure.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>

#include <CachedCopyRecord.h>
#include <ConfigKeys.h>

#include <algorithm>
#include <array>

namespace lumora_config {

using KyrCoreUtils::caseInsensitiveStringEquals;
using KyrCoreUtils::FileUtils;
using KyrCoreUtils::toWideString;
using ZelUnified::CachedCopyRecord;
namespace ConfigKeys = ZelUnified::ConfigKeys;

namespace {

const std::wstring& recordKey() {
    static const std::wstring key(ConfigKeys::primaryConfigStores);
    return key;
}

/// Returns true for the stores that the product creates at each start.
bool isCreatedAtEachStart(const std::string& name) {
    constexpr std::array ownStores{ConfigKeys::localFileConfigStore, ConfigKeys::registryConfigStore,
                                   ConfigKeys::urlProvisioningConfigStore, ConfigKeys::inMemoryConfigStore,
                                   ConfigKeys::configDefaultsFile};
    return std::ranges::any_of(ownStores, [&](std::string_view own) { return caseInsensitiveStringEquals(own, name); });
}

} // namespace

StoreRemoval::StoreRemoval(const ConfigHost& configHost, const std::string& storeName)
    : host(configHost), name(storeName) {
    if (!host.isStarted()) {
        throw Failure(ExitCode::NotFound, "a store can be removed only while the feature set is started");
    }
    host.onServices("lumora-config: find store", [&] {
        const auto featureSet = host.getFeatureSet();
        const auto store = featureSet->getConfigStoreByName(storeName);
        if (!store && !featureSet->isConfigStorePresent("cached" + storeName + ".dat")) {
            throw Failure(ExitCode::NotFound, "there is no store '" + storeName + "'");
        }
        if (store) {
            name = store->getName();
        }
        // The copy was written under the spelling in the record, which may be an older one.
        copies = {name, storeName};
        if (const auto entry = CachedCopyRecord(readUsersRecord()).find(toWideString(name))) {
            copies.push_back(KyrCoreUtils::toString(entry->name));
        }
    });
}

void StoreRemoval::run() {
    for (const auto& copy : copies) {
        const auto path = CachedCopyRecord::findCopyPath(host.getConfigDirectory(), copy);
        hadCopy = hadCopy || (path && FileUtils::fileExists(*path));
    }
    host.onServices("lumora-config: remove-store", [this] { removeOnServices(); });
    deleteCopies();
    if (remainingRecord) {
        DiskCheck(host).requireRecord(*remainingRecord);
    }
}

/// The service erases the name from the record at its first occurrence, which may be inside another entry. In that
/// case, inserts a malformed part at the front for the service to erase. The extra part does not change the meaning of
/// the record, even if the process ends before it is erased.
void StoreRemoval::removeOnServices() {
    const auto storeName = toWideString(name);
    const auto featureSet = host.getFeatureSet();
    const CachedCopyRecord record(readUsersRecord());
    const auto remaining = record.without(storeName);
    if (!isUsersStore() && !record.canBeErasedByService(storeName)) {
        featureSet->setConfig(recordKey(), storeName + L';' + remaining);
    }
    host.getService()->removeConfigStoreAndCache(storeName);
    if (!findUsersStore()) {
        return;
    }
    // The service reads the record from the whole chain; a store of higher priority than the user's may hold another
    // one.
    if (readUsersRecord() != remaining) {
        featureSet->setConfig(recordKey(), remaining);
    }
    remainingRecord = remaining;
}

/// The service deletes the copy of a live store only, not that of a store read from its copy. Deleting also drops a
/// copy that could not be written yet, so this is called even if there is no file.
void StoreRemoval::deleteCopies() {
    host.settle();
    for (const auto& copy : copies) {
        if (const auto path = CachedCopyRecord::findCopyPath(host.getConfigDirectory(), copy)) {
            FileUtils::removeFile(*path);
            DiskCheck(host).requireGone(*path);
        }
    }
}

std::string StoreRemoval::describe() const {
    const std::string copy = hadCopy ? "; its copy on the disk is deleted" : "; it has no copy on the disk";
    return name + (isCreatedAtEachStart(name) ? " removed for this run; the next start creates it again" : " removed") +
           copy;
}

bool StoreRemoval::isUsersStore() const {
    return caseInsensitiveStringEquals(name, ConfigKeys::localFileConfigStore);
}

std::shared_ptr<ZelUnified::ConfigStore> StoreRemoval::findUsersStore() const {
    return host.getFeatureSet()->getConfigStoreByName(std::string(ConfigKeys::localFileConfigStore));
}

std::wstring StoreRemoval::readUsersRecord() const {
    std::wstring record;
    if (const auto store = findUsersStore()) {
        store->getValue(recordKey(), record);
    }
    return record;
}

} // namespace lumora_config
