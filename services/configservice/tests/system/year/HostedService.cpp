#include "HostedService.h"

#include "CachedFolder.h"
#include "KeyNames.h"
#include "ProductTypes.h"

#include <kyr/FunctionTask.h>
#include <registry/RegistryFiles.h>
#include <unified/ProviderResetDataCallback.h>
#include <unified/TypeName.h>
#include <zel/EncryptFileUtils.h>
#include <zel/FipsUtils.h>
#include <zel/PowerEventObserver.h>

#include <ConfigServiceIds.h>
#include <DefaultsFile.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace simulated_year {

using namespace ZelUnified;
using config_model::Pairs;
using config_model::RecordObserver;
using config_model::RecordView;
using config_model::StoreShape;
using zel::storage::EncryptFileUtils;

namespace {

constexpr const char* policyKey = "[HKEY_CURRENT_USER\\Software\\Policies\\Ventrix Systems, Inc."
                                  "\\Unified Communications\\VentrixUC]\n";

constexpr ResetDataOptionEnum::ResetDataOption resetOptions[] = {
    ResetDataOptionEnum::ResetAll, ResetDataOptionEnum::ResetUserData, ResetDataOptionEnum::ResetOnSignOut};

std::string makeRegistryText(const Pairs& pairs) {
    std::string text = std::string("Windows Registry Editor Version 5.00\n\n") + policyKey;
    for (const auto& [key, value] : pairs) {
        text += config_model::narrow(L"\"" + key + L"\"=\"" + value + L"\"\n");
    }
    return text;
}

/// Replaces the file, so that its time and its size cannot both stay the same.
void replaceFile(const std::filesystem::path& path, std::string_view content) {
    std::filesystem::remove(path);
    testing_host::writeFile(path, content);
}

} // namespace

FolderContent readFolder(const std::filesystem::path& folder) {
    FolderContent content;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) {
            content[entry.path().lexically_relative(folder).generic_string()] = testing_host::readFile(entry.path());
        }
    }
    return content;
}

HostedService::HostedService(const Pairs& shippedDefaults) {
    setFipsMode(false);
    setDefaults(shippedDefaults);
    setDiskThatFillsUp(false);
}

HostedService::~HostedService() {
    shutDown();
    setDiskThatFillsUp(false);
    zel::registry::overrideRegistry(nullptr);
    zel::common::FipsUtils::overrideFipsMode(std::nullopt);
}

// The host.

void HostedService::restart(const std::vector<std::wstring>& watchedKeys) {
    shutDown();
    zel::registry::overrideRegistry(zel::registry::makeFileRegistry({(profile.root() / "administrator").string(), {}}));
    lock.emplace(profile.config().string(), profile.state().string());
    EXPECT_TRUE(lock->isHeld()) << lock->getProblem();
    UnifiedFactoryOptions options;
    options.servicesThread = servicesThread;
    options.openedForWriting = true;
    options.lastRetries = std::chrono::milliseconds(0);
    options.pluginFolder = PLUGIN_FOLDER;
    options.plugins = {{readableTypeName<ConfigService>(), SERVICE_LIBRARY},
                       {readableTypeName<ConfigFeatureSet>(), SERVICE_LIBRARY}};
    factory = std::make_shared<UnifiedFactoryImpl>(std::move(options));
    hasBeenStarted = false;
    log.clear();
    filesBeforeStart = readFolder(profile.config());
    factory->Init();
    filesAfterStart = readFolder(profile.config());
    onServices([this] {
        service = factory->getServiceByType<ConfigService>();
        featureSet = factory->getFeatureSetByType<ConfigFeatureSet>();
    });
    settle();
    onServices([&] {
        for (const auto& key : watchedKeys) {
            const auto record = service->getConfig(key);
            observers.push_back(std::make_shared<RecordObserver>(
                [this, name = record->getKey()](const std::string& property) { fired(name, property); }));
            record->addObserver(std::weak_ptr<ConfigValueObserver>(observers.back()));
        }
    });
}

void HostedService::shutDown() {
    if (!factory) {
        return;
    }
    onServices([this] { observers.clear(); });
    featureSet.reset();
    service.reset();
    factory->Destroy();
    factory.reset();
    lock.reset();
}

void HostedService::start() {
    factory->StartFeatureSet(configServiceId, nullptr);
    hasBeenStarted = true;
    settle();
}

void HostedService::stop() {
    factory->StopFeatureSet(configServiceId, nullptr);
    settle();
}

void HostedService::refresh() {
    onServices([this] { featureSet->refreshConfigFeatureSet(); });
    settle();
}

void HostedService::powerDown() {
    using namespace ZelSystemMonitor;
    const auto observer = std::dynamic_pointer_cast<PowerEventObserver>(featureSet);
    onServices([&] { observer->onPowerEvent(PowerEventTypeEnum::PowerDown); });
}

void HostedService::resetAllData() {
    const auto option = resetOptions[resets++ % std::size(resetOptions)];
    if (hasBeenStarted) {
        factory->invokeResetData(option);
    } else { // the host does not know the feature set yet
        const auto callback = std::dynamic_pointer_cast<ProviderResetDataCallback>(featureSet);
        onServices([&] { callback->InvokeResetData(option); });
    }
    policy.clear();
    settle();
}

bool HostedService::isStarted() {
    return factory->IsFeatureSetStarted(configServiceId);
}

void HostedService::onServices(const std::function<void()>& work) const {
    factory->getServicesDispatcher()->enqueueBlock(std::make_shared<KyrCoreUtils::FunctionTask>(work, "simulated year"),
                                                   false);
}

void HostedService::settle() const {
    factory->flushBackgroundDispatcher();
    onServices([] {});
    factory->pumpAllDispatcherTasks();
}

// Stores.

void HostedService::addStore(const StoreShape& shape) {
    onServices([&] { featureSet->addConfigStore(config_model::makeStore(shape)); });
    settle();
}

void HostedService::updateStore(const StoreShape&, const std::vector<std::wstring>&) {
    ADD_FAILURE() << "a host cannot call it: it is no operation of the feature set's interface";
}

bool HostedService::removeStore(const std::string& name) {
    bool removed = false;
    onServices([&] { removed = service->removeConfigStoreAndCache(config_model::widen(name)); });
    settle();
    return removed;
}

bool HostedService::isStorePresent(const std::string& name) {
    return featureSet->isConfigStorePresent(name);
}

std::string HostedService::findStore(const std::string& name) {
    const auto store = featureSet->getConfigStoreByName(name);
    return store ? store->getName() : "";
}

void HostedService::removeAllCachedStores() {
    onServices([&] { service->removeAllCachedConfigStores(); });
    settle();
}

void HostedService::setMdmConfig(const Pairs& pairs) {
    onServices([&] { service->setMdmConfig(config_model::toMdmDocument(pairs)); });
    settle();
}

std::vector<std::string> HostedService::listCachedFiles() {
    auto names = config_model::listFolder(profile.config() / "Cache");
    std::erase_if(names, [](const std::string& name) { return name.find(".unreadable") != std::string::npos; });
    for (const auto& file : disk ? EncryptFileUtils::health(profile.config().string()).files
                                 : std::vector<zel::storage::ProtectedFileHealth>()) {
        const std::filesystem::path path(file.path);
        if (file.pending && path.parent_path().filename() == "Cache") {
            names.push_back(path.filename().string());
        }
    }
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

// Values.

bool HostedService::getConfig(const std::wstring& key, std::wstring& value, std::wstring& store, bool& fromLegacyKey,
                              bool skipLocal) {
    return featureSet->getConfig(key, value, store, fromLegacyKey, skipLocal);
}

std::wstring HostedService::getValueOfStore(const std::string& store, const std::wstring& key) {
    std::wstring value;
    onServices([&] { value = service->getValueFromConfigStore(store, key); });
    return value;
}

bool HostedService::setConfig(const std::wstring& key, const std::wstring& value) {
    bool stored = false;
    onServices([&] { stored = featureSet->setConfig(key, value); });
    settle();
    return stored;
}

bool HostedService::setConfig(const Pairs& pairs) {
    bool stored = false;
    onServices([&] { stored = featureSet->setConfig(config_model::toConfigMap(pairs)); });
    settle();
    return stored;
}

bool HostedService::setInMemoryConfig(const std::wstring& key, const std::wstring& value) {
    bool stored = false;
    onServices([&] { stored = featureSet->setInMemoryConfig(key, value); });
    return stored;
}

void HostedService::resetConfig(const std::wstring& key) {
    onServices([&] { service->resetConfig(key); });
    settle();
}

void HostedService::resetStore(const std::string& name) {
    onServices([&] { featureSet->resetConfigData(name); });
    settle();
}

bool HostedService::provision(const std::wstring& url) {
    bool done = false;
    onServices([&] { done = service->setUrlProvisioningData(url); });
    settle();
    return done;
}

bool HostedService::resetProvisioning() {
    bool removed = false;
    onServices([&] { removed = service->resetAllowUriProvisioningData(); });
    settle();
    return removed;
}

void HostedService::setKeySensitive(const std::wstring& key) {
    onServices([&] { service->setKeySensitive(key); });
}

bool HostedService::isKeySensitive(const std::wstring& key) {
    return featureSet->isKeySensitive(key);
}

bool HostedService::isRecordSensitive(const std::wstring& key) {
    bool sensitive = false;
    onServices([&] { sensitive = service->isKeySensitive(key); });
    return sensitive;
}

void HostedService::setPolicy(const std::wstring& key, const std::wstring& value) {
    policy.emplace_back(key, value);
    replaceFile(profile.data() / "registry" / "policy.reg", makeRegistryText(policy));
}

void HostedService::setFipsMode(bool on) {
    zel::common::FipsUtils::overrideFipsMode(on);
}

RecordView HostedService::getRecord(const std::wstring& key) {
    RecordView view;
    onServices([&] { view = config_model::toRecordView(*service->getConfig(key)); });
    return view;
}

std::vector<std::string> HostedService::findRecordsThatDiffer() {
    std::vector<RecordView> records;
    onServices([&] {
        const auto all = service->getAllConfig();
        for (const auto& record : *all) {
            records.push_back(config_model::toRecordView(*record));
        }
    });
    std::vector<std::string> lines;
    for (const auto& record : records) {
        if (!config_model::findNewName(record.key).empty() || !config_model::findOldName(record.key).empty()) {
            continue;
        }
        std::wstring value;
        std::wstring store;
        bool fromLegacyKey = false;
        const bool found = featureSet->getConfig(record.key, value, store, fromLegacyKey, false);
        if (found != record.isDefined || !config_model::isSame(value, record.value) || store != record.valueStoreName) {
            lines.push_back(describe(record) + ", but the lookup returns " + config_model::narrow(value) + " [" +
                            config_model::narrow(store) + "]");
        }
    }
    return lines;
}

// The world around the host.

void HostedService::setDiskThatFillsUp(bool fillsUp) {
    unsyncedFiles.reset();
    disk.reset();
    if (!fillsUp) {
        unsyncedFiles.emplace();
        return;
    }
    disk = std::make_shared<testing_host::FaultInjectingFileLayer>();
    EncryptFileUtils::overrideFileLayer(disk);
}

void HostedService::fillDisk(std::size_t freeBytes) {
    disk->setFreeSpace(freeBytes);
}

void HostedService::emptyDisk() {
    disk->heal();
    settle();
}

void HostedService::passTime(std::int64_t seconds) {
    clock.advance(seconds);
    settle();
}

void HostedService::setDefaults(const Pairs& pairs) {
    testing_host::writeDefaults(profile.resources(), pairs);
}

void HostedService::setAdministratorPolicy(const Pairs& pairs) {
    replaceFile(profile.root() / "administrator" / "HKEY_CURRENT_USER" / "policy.reg", makeRegistryText(pairs));
}

} // namespace simulated_year
