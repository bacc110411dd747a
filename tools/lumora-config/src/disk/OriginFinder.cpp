#include "OriginFinder.h"

#include "SettingsOnDisk.h"
#include "output/Failure.h"
#include "output/TimeText.h"
#include "stores/BootstrapKeyFinder.h"
#include "stores/PolicyKeyFinder.h"
#include "stores/XmlKeyFinder.h"
#include "stores/XmlSettings.h"

#include <kyr/FileUtils.h>
#include <kyr/Paths.h>
#include <kyr/StringUtils.h>
#include <registry/RegistryFiles.h>

#include <CachedCopyRecord.h>
#include <ConfigCatalogue.h>

#include <filesystem>
#include <utility>

namespace lumora_config {

using KyrCoreUtils::caseInsensitiveStringEquals;
using KyrCoreUtils::FileUtils;
namespace ConfigKeys = ZelUnified::ConfigKeys;

namespace {

bool isNamed(const std::string& storeName, std::string_view known) {
    return caseInsensitiveStringEquals(std::string_view(storeName), known);
}

KeyPlaces readXml(const std::string& path, XmlKeyFinder::Form form) {
    try {
        return XmlKeyFinder::find(readWholeFile(path), path, form);
    } catch (const Failure&) {
        return {}; // the file is gone, so its lines are unknown
    }
}

KeyPlaces readProtectedXml(const std::string& path, XmlKeyFinder::Form form) {
    KeyPlaces places;
    readDocument(path, [&](std::string_view clear) { places = XmlKeyFinder::find(clear, path, form); });
    return places;
}

KeyPlaces readBootstrap(const std::string& path) {
    try {
        return findBootstrapKeys(readWholeFile(path), path);
    } catch (const Failure&) {
        return {};
    }
}

std::string timeOfFile(const std::string& path) {
    std::error_code error;
    const auto time = std::filesystem::last_write_time(KyrCoreUtils::toPath(path), error);
    if (error) {
        return {};
    }
    const auto known = std::chrono::file_clock::to_sys(time);
    return formatTime(std::chrono::time_point_cast<std::chrono::system_clock::duration>(known));
}

} // namespace

OriginFinder::OriginFinder(std::shared_ptr<ZelUnified::ConfigFeatureSet> adapter, const StoreArrivals& knownArrivals,
                           std::string directory)
    : featureSet(std::move(adapter)), arrivals(&knownArrivals), configDirectory(std::move(directory)) {}

OriginFinder::OriginFinder(const std::vector<StoreFacts>& listed, std::string directory)
    : arrivals(nullptr), configDirectory(std::move(directory)) {
    for (const auto& store : listed) {
        clientsStores[store.name] = store.local;
    }
}

Origin OriginFinder::find(const std::string& storeName, const std::wstring& name) {
    const auto& known = originsOf(storeName);
    auto origin = known.others;
    if (const auto place = known.places.find(name); place != known.places.end()) {
        origin.file = place->second.file;
        origin.line = place->second.line;
    } else if (isNamed(storeName, ConfigKeys::localFileConfigStore)) {
        origin.how = "set in this run, not in the file";
    }
    if (known.store && isNamed(storeName, ConfigKeys::inMemoryConfigStore)) {
        origin.when = arrivals->findTimeOfValue(known.store, name);
        origin.how = origin.when.empty() ? "set by the service in this run" : "set in memory";
    }
    if (!featureSet && !origin.isKnown()) {
        origin.how = isNamed(storeName, ConfigKeys::inMemoryConfigStore)
                         ? "set in memory in this run"
                         : "in the memory of the client, which does not report the source";
    }
    return origin;
}

void OriginFinder::locate(const std::wstring& key, Reading& reading) {
    const auto names = ConfigKeys::getKeyNames(key);
    const auto& name = reading.underOldName && names.oldName ? *names.oldName : names.newName;
    reading.origin = find(KyrCoreUtils::toString(reading.storeName), name);
}

void OriginFinder::locate(Explanation& explanation) {
    for (auto* reading : {&explanation.inForce, &explanation.administrators}) {
        if (*reading) {
            locate(explanation.key, **reading);
        }
    }
    for (auto& opinion : explanation.opinions) {
        for (auto& holding : opinion.holdings) {
            holding.origin = find(opinion.store.name, holding.name);
        }
    }
}

const OriginFinder::StoreOrigins& OriginFinder::originsOf(const std::string& storeName) {
    const auto known = stores.find(storeName);
    return known != stores.end() ? known->second : stores.emplace(storeName, read(storeName)).first->second;
}

OriginFinder::StoreOrigins OriginFinder::read(const std::string& storeName) const {
    StoreOrigins origins;
    origins.store = featureSet ? featureSet->getConfigStoreByName(storeName) : nullptr;
    if (const auto* arrival = arrivals == nullptr ? nullptr : arrivals->find(origins.store)) {
        readArrival(*arrival, origins);
    } else if (isNamed(storeName, ConfigKeys::mdmConfigStore)) {
        origins.others.how = "pushed by device management in this run";
    }
    if (isNamed(storeName, ConfigKeys::localFileConfigStore)) {
        origins.places = readUsersFile();
    } else if (isNamed(storeName, ConfigKeys::configDefaultsFile)) {
        origins.places = readDefaults();
    } else if (isNamed(storeName, ConfigKeys::registryConfigStore)) {
        origins.places = PolicyKeyFinder::find(zel::registry::findRegistryFiles(zel::registry::HKEY_CURRENT_USER));
    } else if (origins.places.empty() && mayBeCopy(storeName, origins.store.get())) {
        readCopy(storeName, origins);
    }
    return origins;
}

/// Cached copies are local stores; the documents of other services are not.
bool OriginFinder::mayBeCopy(const std::string& storeName, ZelUnified::ConfigStore* store) const {
    const auto known = clientsStores.find(storeName);
    const bool isLocal = store != nullptr ? store->isLocal() : known != clientsStores.end() && known->second;
    return isLocal && !isNamed(storeName, ConfigKeys::inMemoryConfigStore) &&
           !isNamed(storeName, ConfigKeys::mdmConfigStore);
}

void OriginFinder::readArrival(const StoreArrivals::Arrival& arrival, StoreOrigins& origins) const {
    switch (arrival.kind) {
    case StoreArrivals::Kind::Document:
        origins.places = readXml(arrival.file, XmlKeyFinder::Form::Both);
        break;
    case StoreArrivals::Kind::Bootstrap:
        origins.places = readBootstrap(arrival.file);
        break;
    case StoreArrivals::Kind::DeviceManagement:
        origins.places = readXml(arrival.file, XmlKeyFinder::Form::Elements);
        origins.others.how = "pushed by device management";
        origins.others.when = arrival.when;
        break;
    case StoreArrivals::Kind::ProvisioningUrl:
        origins.others.how = "set by a provisioning URL";
        origins.others.when = arrival.when;
        break;
    }
}

/// Reads the cached copy of a store, which may be that of a provisioning URL.
void OriginFinder::readCopy(const std::string& storeName, StoreOrigins& origins) const {
    const auto path = ZelUnified::CachedCopyRecord::findCopyPath(configDirectory, storeName);
    if (!path) {
        return;
    }
    origins.places = readProtectedXml(*path, XmlKeyFinder::Form::Elements);
    if (isNamed(storeName, ConfigKeys::urlProvisioningConfigStore) && origins.others.how.empty()) {
        origins.others.how = "set by a provisioning URL";
        origins.others.when = timeOfFile(*path);
    }
}

/// Reads the user's file like the next start: the backup if the file is unreadable.
KeyPlaces OriginFinder::readUsersFile() const {
    const auto folder = configDirectory + FileUtils::FileSeparator();
    KeyPlaces places;
    for (const auto name : {ConfigKeys::localConfigFile, ConfigKeys::localConfigBackupFile}) {
        const auto path = folder + std::string(name);
        const auto state = readDocument(path, [&](std::string_view clear) {
            places = XmlKeyFinder::find(clear, path, XmlKeyFinder::Form::UserConfig);
        });
        if (state == zel::storage::ReadResult::Ok) {
            break;
        }
    }
    // The service renames this key when it reads the file.
    if (auto old = places.extract(std::wstring(ConfigKeys::vvmMailstoreServer0)); !old.empty()) {
        old.key() = ConfigKeys::voicemailPrimaryServer;
        places.insert(std::move(old));
    }
    return places;
}

KeyPlaces OriginFinder::readDefaults() const {
    const auto path =
        FileUtils::getResourcesDirectory() + FileUtils::FileSeparator() + std::string(ConfigKeys::configDefaultsFile);
    return readXml(path, XmlKeyFinder::Form::UserConfig);
}

} // namespace lumora_config
