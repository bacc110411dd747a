#include "ServiceModel.h"

#include "ModelUrl.h"
#include "StoreRecord.h"

#include <algorithm>
#include <limits>

namespace config_model {

namespace {

using Kind = StoreShape::Kind;

const std::string urlStore = "UrlProvisioningConfigStore";
const std::string presenceStore = "PresenceConfigStore";
const std::string mainFile = "lumoraLocalConfig.dat";
const std::string backupFile = "lumoraLocalConfig_backup.dat";

const std::wstring firstSensitiveKeys[] = {
    L"Initial_Info",
    L"Addtional_Info",
    L"connectionpassword",
    L"connectionusername",
    L"BDIConnectionPassword",
    L"BDIConnectionUsername",
    L"BDIConnectionUserDn",
    L"Mrx_MeetingList_OfflineData",
    L"Mrx_MeetingList_OnlineData",
};

bool beginsWith(const std::string& text, const std::string& beginning) {
    return isSame(std::string_view(text).substr(0, beginning.size()), beginning);
}

std::string copyNameOf(const std::string& storeName) {
    return "cached" + storeName + ".dat";
}

} // namespace

// Start and stop.

void ServiceModel::restart(const std::vector<std::wstring>& watchedKeys) {
    connect();
    for (const auto& key : firstSensitiveKeys) {
        setKeySensitive(key);
    }
    chain->addStore(StoreShape{.kind = Kind::Defaults,
                               .name = "lumora-config-defaults.xml",
                               .priority = std::numeric_limits<int>::max(),
                               .pairs = defaults});
    addMemoryStore();
    addUserStore(Backup::Scheduled);
    addRegistryStore();
    initialiseCachedStores();
    removeValuesIfPolicySet();
    if (hasCachedServerData()) {
        deriveFlags();
    }
    chain->runTasks();
    for (const auto& key : watchedKeys) {
        records.get(key, fips);
        records.watch(key);
    }
}

void ServiceModel::connect() {
    started = false;
    files = getFiles();
    moveDamagedFilesAside();
    chain = std::make_unique<ChainModel>();
    chain->setFipsMode(fips);
    for (const auto& [file, pairs] : files.copies) {
        chain->placeCachedFile(file);
    }
    isBackupDue = false;
    records = ServiceRecords();
    records.fired = [this](const auto& key, const auto& property) { fired(key, property); };
    sensitiveRecords.clear();
    chain->changed = [this](const Change& change) { records.change(change, fips); };
    chain->mayFire = [this](const std::wstring& key) { records.fire(key); };
    chain->madeSensitive = [this](const std::wstring& key) { sensitiveRecords.push_back(key); };
    chain->told = [](const std::string&) {};
    chain->persisted = [this](ModelStore& store) { persist(store); };
}

void ServiceModel::moveDamagedFilesAside() {
    std::erase_if(files.damaged, [this](const auto& entry) {
        const auto& [name, damage] = entry;
        if (damage == Files::Damage::StaysInPlace) {
            return false;
        }
        files.user.erase(name);
        files.copies.erase(name);
        return true;
    });
}

void ServiceModel::start() {
    if (started) {
        return;
    }
    if (!chain->hasStore("InMemoryConfigStore")) {
        addMemoryStore();
    }
    if (!chain->hasStore("LocalFileConfigStore")) {
        addUserStore(Backup::Never);
    }
    started = true;
    chain->runTasks();
}

void ServiceModel::stop() {
    if (started) {
        chain->removeNonLocalStores();
        started = false;
    }
}

void ServiceModel::refresh() {
    chain->removeNonLocalStores();
    addMemoryStore();
    addUserStore(Backup::Scheduled);
    addRegistryStore();
    initialiseCachedStores();
    if (hasCachedServerData()) {
        deriveFlags();
    }
    removeValuesIfPolicySet();
    chain->runTasks();
}

void ServiceModel::powerDown() {
    chain->destroyStores();
    started = false;
}

void ServiceModel::resetAllData() {
    chain->resetConfigData();
    for (const auto& file : chain->listCachedFiles()) {
        if (!isSame(file, copyNameOf(urlStore))) {
            chain->removeCachedFiles(file);
            files.damaged.erase(file);
        }
    }
    for (const auto& [file, pairs] : files.user) {
        files.damaged.erase(file);
    }
    files.user.clear();
    isBackupDue = false;
    policy.clear();
    refresh();
}

// Stores.

void ServiceModel::addMemoryStore() {
    chain->addStore(
        StoreShape{.kind = Kind::Memory, .name = "InMemoryConfigStore", .priority = 600, .readOnly = false});
}

void ServiceModel::addUserStore(Backup kind) {
    StoreShape shape{.kind = Kind::Memory, .name = "LocalFileConfigStore", .priority = 20, .readOnly = false};
    if (!isSdkMode()) {
        shape.kind = Kind::UserFile;
        shape.local = false;
        for (const auto& [key, value] : readUserFile()) {
            shape.pairs.emplace_back(toSmallLetters(key), value);
        }
    }
    const auto store = std::make_shared<ModelStore>(shape);
    if (kind == Backup::Scheduled) {
        storeWithBackup = store;
    }
    chain->addStore(store);
}

Pairs ServiceModel::readUserFile() const {
    for (const auto& name : {mainFile, backupFile}) {
        if (const auto file = files.user.find(name); file != files.user.end() && !files.damaged.contains(name)) {
            return file->second;
        }
    }
    return {};
}

void ServiceModel::persist(ModelStore& store) {
    if (store.shape.kind != Kind::UserFile || store.lastPersisted == store.shape.pairs) {
        return;
    }
    writeUserFile(store, mainFile, backupFile);
    if (storeWithBackup.lock().get() == &store && !isBackupDue) {
        isBackupDue = true;
        storeToBackUp = storeWithBackup;
    }
}

/// A readable file is not replaced while the other one is unreadable.
void ServiceModel::writeUserFile(ModelStore& store, const std::string& target, const std::string& counterpart) {
    if (files.damaged.contains(counterpart) && !files.damaged.contains(target)) {
        return;
    }
    if (target == mainFile) {
        store.lastPersisted = store.shape.pairs;
    }
    if (!store.destroyed) {
        files.user[target] = store.shape.pairs;
        files.damaged.erase(target);
    }
}

void ServiceModel::passTime() {
    if (const auto store = storeToBackUp.lock(); store && isBackupDue) {
        writeUserFile(*store, backupFile, mainFile);
    }
    isBackupDue = false;
}

void ServiceModel::addRegistryStore() {
    Pairs pairs = administratorPolicy;
    pairs.insert(pairs.end(), policy.begin(), policy.end());
    chain->addStore(StoreShape{
        .kind = Kind::Registry, .name = "RegistryConfigStore", .priority = 33, .pairs = pairs, .local = false});
}

void ServiceModel::addCopy(const std::string& name, int priority) {
    const auto present = chain->listCachedFiles();
    const auto file = copyNameOf(name);
    const bool there = std::count(present.begin(), present.end(), file) > 0 && !files.damaged.contains(file);
    chain->addStore(StoreShape{.kind = Kind::Copy,
                               .name = name,
                               .priority = priority,
                               .pairs = there ? readBack(files.copies[file]) : Pairs()});
}

void ServiceModel::initialiseCachedStores() {
    std::wstring presencePriority;
    bool presence = false;
    for (const auto& [name, priority] : readRecord(valueOf(L"PrimaryConfigStores"))) {
        if (isSame(narrow(name), presenceStore)) {
            presence = true;
            presencePriority = priority;
        } else if (!isSdkMode() && mayHaveCopy(narrow(name))) {
            addCopy(narrow(name), readPriority(priority));
        }
    }
    if (presence && isSame(valueOf(L"ProductMode"), L"Phone_Mode")) {
        removeFromRecord(presenceStore);
    } else if (presence && !isSdkMode()) {
        addCopy(presenceStore, readPriority(presencePriority));
    }
    if (isSame(chain->getValueOfStore("MdmConfigStore", L"AllowUrlProvisioning"), L"false")) {
        removeStore(urlStore);
    } else {
        addCopy(urlStore, 499);
    }
}

void ServiceModel::addStore(const StoreShape& shape) {
    if (!started) {
        return;
    }
    const auto store = std::make_shared<ModelStore>(shape);
    chain->addStore(store);
    if (shape.caching) {
        cacheStore(*store);
    }
    removeValuesIfPolicySet();
    for (const auto& beginning : {"Garn", "PresenceConfigStore", "Tftp", "TaviLyncRegistryConfigStore"}) {
        if (beginsWith(shape.name, beginning)) {
            deriveFlags();
            break;
        }
    }
    chain->runTasks();
}

void ServiceModel::updateStore(const StoreShape& shape, const std::vector<std::wstring>& oldKeys) {
    if (!started) {
        return;
    }
    const auto store = std::make_shared<ModelStore>(shape);
    chain->updateExistingStore(store, oldKeys);
    if (shape.caching) {
        cacheStore(*store);
    }
    chain->runTasks();
}

void ServiceModel::cacheStore(const ModelStore& store) {
    if (isSdkMode() || !mayHaveCopy(store.shape.name)) {
        return;
    }
    const auto fileName = copyNameOf(store.shape.name);
    files.copies[fileName] = store.shape.pairs;
    files.damaged.erase(fileName);
    // The record may be written to the same store, so the copy contains the values before that write.
    writeRecord(store.shape.name, store.getCachedPriority());
    chain->placeCachedFile(fileName);
    chain->removeStore(fileName);
}

void ServiceModel::writeRecord(const std::string& name, int priority) {
    chain->storeValue(L"PrimaryConfigStores", recordWith(valueOf(L"PrimaryConfigStores"), name, priority));
}

void ServiceModel::removeFromRecord(const std::string& name) {
    chain->storeValue(L"PrimaryConfigStores", recordWithout(valueOf(L"PrimaryConfigStores"), name));
}

bool ServiceModel::removeStore(const std::string& name) {
    if (!started) {
        return false;
    }
    bool removed = false;
    if (chain->removeStore(copyNameOf(name))) {
        chain->removeCachedFiles(copyNameOf(name));
        removed = true;
    }
    removed = chain->removeStore(name) || removed;
    removeFromRecord(name);
    chain->runTasks();
    return removed;
}

void ServiceModel::setMdmConfig(const Pairs& pairs) {
    // Unlike elsewhere, the first of two elements of one key wins.
    chain->addStore(StoreShape{.kind = Kind::DeviceManagement,
                               .name = "MdmConfigStore",
                               .priority = 500,
                               .pairs = readBack(Pairs(pairs.rbegin(), pairs.rend()))});
}

Pairs ServiceModel::readBack(const Pairs& pairs) const {
    Pairs result;
    for (const auto& [key, value] : pairs) {
        const auto name = toSmallLetters(key);
        result.emplace_back(name, fips && name == L"telephony_p2p_enabled" ? L"false" : value);
    }
    return result;
}

// Files.

ServiceModel::Files ServiceModel::getFiles() const {
    Files present = files;
    const auto listed = chain ? chain->listCachedFiles() : std::vector<std::string>();
    std::erase_if(present.copies,
                  [&](const auto& entry) { return std::count(listed.begin(), listed.end(), entry.first) == 0; });
    std::erase_if(present.damaged, [&](const auto& entry) {
        return !present.copies.contains(entry.first) && !present.user.contains(entry.first);
    });
    return present;
}

void ServiceModel::setFiles(const Files& newFiles) {
    for (const auto& file : chain->listCachedFiles()) {
        chain->removeCachedFiles(file);
    }
    for (const auto& [file, pairs] : newFiles.copies) {
        chain->placeCachedFile(file);
    }
    files = newFiles;
}

// Values.

bool ServiceModel::getConfig(const std::wstring& key, std::wstring& value, std::wstring& store, bool& fromLegacyKey,
                             bool skipLocal) {
    const auto reading = chain->getValue(key, skipLocal, "");
    value = reading.value;
    store = reading.store;
    fromLegacyKey = reading.fromLegacyKey;
    return reading.found;
}

bool ServiceModel::setConfig(const std::wstring& key, const std::wstring& value) {
    const bool stored = chain->storeValue(key, value);
    chain->runTasks();
    return stored;
}

bool ServiceModel::setConfig(const Pairs& pairs) {
    const bool stored = chain->storeValues(pairs);
    chain->runTasks();
    return stored;
}

void ServiceModel::resetConfig(const std::wstring& key) {
    chain->removeValue(key);
    chain->runTasks();
}

bool ServiceModel::provision(const std::wstring& url) {
    if (isSame(valueOf(L"AllowUrlProvisioning"), L"false")) {
        return false;
    }
    const auto pairs = readProvisioningUrl(url);
    if (!pairs.empty()) {
        files.copies[copyNameOf(urlStore)] = ModelStore({.name = urlStore, .pairs = pairs}).shape.pairs;
        files.damaged.erase(copyNameOf(urlStore));
    }
    const bool done = chain->setUrlProvisioningData(url);
    chain->runTasks();
    return done;
}

bool ServiceModel::resetProvisioning() {
    const bool removed =
        isSame(valueOf(L"AllowUrlProvisioning"), L"false") && chain->removeValue(L"AllowUrlProvisioning");
    chain->runTasks();
    return removed;
}

bool ServiceModel::isRecordSensitive(const std::wstring& key) {
    return std::any_of(sensitiveRecords.begin(), sensitiveRecords.end(),
                       [&](const auto& each) { return isSame(each, key); });
}

void ServiceModel::setPolicy(const std::wstring& key, const std::wstring& value) {
    policy.emplace_back(key, value);
}

void ServiceModel::setFipsMode(bool on) {
    fips = on;
    if (chain) {
        chain->setFipsMode(on);
    }
}

// Policy switches and derived flags.

bool ServiceModel::isSdkMode() {
    const auto mode = valueOf(L"Lumora_SDK_Mode");
    return isSame(mode, L"true") || mode == L"1";
}

bool ServiceModel::isSwitchedOff(const std::wstring& key) {
    const auto reading = chain->getValue(key, false, "");
    return reading.found && isSame(reading.value, L"false");
}

void ServiceModel::removeValuesIfPolicySet() {
    if (isSwitchedOff(L"Customize_Voicemail_Server")) {
        chain->removeValue(L"VoicemailPrimaryServer");
    }
    if (isSwitchedOff(L"Customize_Phone_Server")) {
        chain->removeValue(L"TFTPPrimaryServer");
        chain->removeValue(L"CtiServer1");
        chain->removeValue(L"SabrelServer1");
    }
}

void ServiceModel::deriveFlags() {
    deriveFlag(L"Telephony_Enabled", !valueOf(L"CtiServer1").empty() || !valueOf(L"SabrelServer1").empty());
    deriveFlag(L"Voicemail_Enabled",
               !valueOf(L"VoicemailPrimaryServer").empty() || !valueOf(L"VVM_Mailstore_Server_0").empty());
    bool meetings = false;
    for (const std::wstring suffix : {L"", L"_Backup", L"_Backup2"}) {
        const auto type = valueOf(L"Meeting_Server_Type" + suffix);
        const bool address = !valueOf(L"Meeting_Server_Address" + suffix).empty();
        meetings = meetings || (address && (type.empty() || isSame(type, L"Mirrox")));
    }
    deriveFlag(L"Meetings_Enabled", meetings);
}

void ServiceModel::deriveFlag(const std::wstring& key, bool flag) {
    if (isSame(narrow(chain->getValue(key, true, "").store), "lumora-config-defaults.xml")) {
        chain->setInMemoryValue(key, flag ? L"true" : L"false");
    }
}

bool ServiceModel::hasCachedServerData() {
    const auto present = chain->listCachedFiles();
    return std::any_of(present.begin(), present.end(), [](const auto& file) {
        return beginsWith(file, "cachedGarn") || beginsWith(file, "cachedPresenceConfigStore") ||
               beginsWith(file, "cachedTftp");
    });
}

} // namespace config_model
