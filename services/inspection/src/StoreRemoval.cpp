#include "StoreRemoval.h"

#include "RequestError.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>

#include <CachedCopyRecord.h>
#include <ConfigKeys.h>

#include <algorithm>
#include <array>
#include <utility>

namespace inspection {

using KyrCoreUtils::caseInsensitiveStringEquals;
using KyrCoreUtils::FileUtils;
using KyrCoreUtils::toWideString;
using ZelUnified::CachedCopyRecord;
namespace ConfigKeys = ZelUnified::ConfigKeys;

namespace {

/// Returns true for the stores that the product creates at each start.
bool isCreatedAtEachStart(const std::string& name) {
    constexpr std::array ownStores{ConfigKeys::localFileConfigStore, ConfigKeys::registryConfigStore,
                                   ConfigKeys::urlProvisioningConfigStore, ConfigKeys::inMemoryConfigStore,
                                   ConfigKeys::configDefaultsFile};
    return std::ranges::any_of(ownStores, [&](std::string_view own) { return caseInsensitiveStringEquals(own, name); });
}

} // namespace

StoreRemoval::StoreRemoval(std::shared_ptr<const ConfigInspector> configInspector, const std::string& storeName)
    : inspector(std::move(configInspector)), name(storeName) {
    auto& featureSet = inspector->getFeatureSet();
    const auto store = featureSet.getConfigStoreByName(storeName);
    if (!store && !featureSet.isConfigStorePresent("cached" + storeName + ".dat")) {
        throw RequestError(RequestError::Code::Refused, "there is no store '" + storeName + "'");
    }
    if (store) {
        name = store->getName();
    }
    // The copy was written under the spelling in the record, which may be an older one.
    copies = {name, storeName};
    if (const auto entry = CachedCopyRecord(readUsersRecord()).find(toWideString(name))) {
        copies.push_back(KyrCoreUtils::toString(entry->name));
    }
}

/// The service erases the name from the record at its first occurrence, which may be inside another entry. In that
/// case, inserts a malformed part at the front for the service to erase. The extra part does not change the meaning of
/// the record, even if the process ends before it is erased.
void StoreRemoval::removeFromChain() {
    for (const auto& copy : copies) {
        const auto path = CachedCopyRecord::findCopyPath(FileUtils::getConfigDirectory(), copy);
        hadCopy = hadCopy || (path && FileUtils::fileExists(*path));
    }
    const std::wstring recordKey(ConfigKeys::primaryConfigStores);
    const auto storeName = toWideString(name);
    const CachedCopyRecord record(readUsersRecord());
    const auto remaining = record.without(storeName);
    if (!isUsersStore() && !record.canBeErasedByService(storeName)) {
        inspector->getFeatureSet().setConfig(recordKey, storeName + L';' + remaining);
    }
    inspector->getService().removeConfigStoreAndCache(storeName);
    if (!findUsersStore()) {
        return;
    }
    // The service reads the record from the whole chain; a store of higher priority than the user's may hold another
    // one.
    if (readUsersRecord() != remaining) {
        inspector->getFeatureSet().setConfig(recordKey, remaining);
    }
    changedRecord = remaining != record.getText();
}

/// The service deletes the copy of a live store only, not that of a store read from its copy. Deleting also drops a
/// copy that could not be written yet, so a file need not exist.
void StoreRemoval::deleteCopies() const {
    for (const auto& copy : copies) {
        const auto path = CachedCopyRecord::findCopyPath(FileUtils::getConfigDirectory(), copy);
        if (!path) {
            continue;
        }
        FileUtils::removeFile(*path);
        if (FileUtils::fileExists(*path)) {
            throw RequestError(RequestError::Code::Environment,
                               "the store is removed for this run only, because its copy cannot be deleted: " + *path);
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
    return inspector->getFeatureSet().getConfigStoreByName(std::string(ConfigKeys::localFileConfigStore));
}

std::wstring StoreRemoval::readUsersRecord() const {
    std::wstring record;
    if (const auto store = findUsersStore()) {
        store->getValue(std::wstring(ConfigKeys::primaryConfigStores), record);
    }
    return record;
}

} // namespace inspection
