#include "LoadedService.h"

#include "CachedFolder.h"
#include "ProductTypes.h"
#include "services/impl/entry/InjectConfigService.h"

#include <zel/FipsUtils.h>

#include <ConfigFeatureSet.h>
#include <ConfigServiceIds.h>
#include <DefaultsFile.h>

namespace config_model {

using namespace ZelUnified;

namespace {

constexpr const wchar_t* policyPath = L"Software\\Policies\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC";

} // namespace

LoadedService::LoadedService(const Pairs& shippedDefaults) {
    setFipsMode(false);
    testing_host::writeDefaults(profile.resources(), shippedDefaults);
}

LoadedService::~LoadedService() {
    unload();
    zel::common::FipsUtils::overrideFipsMode(std::nullopt);
}

void LoadedService::unload() {
    observers.clear();
    adapter.reset();
    service.reset();
    runTasks();
    factory->Destroy();
}

void LoadedService::restart(const std::vector<std::wstring>& watchedKeys) {
    unload();
    factory = std::make_shared<testing_host::RecordingFactory>();
    InjectConfigService(factory);
    adapter = std::dynamic_pointer_cast<ConfigAdapter>(factory->getFeatureSetByType<ConfigFeatureSet>());
    service = factory->getServiceByType<ConfigService>();
    runTasks();
    for (const auto& key : watchedKeys) {
        const auto record = service->getConfig(key);
        observers.push_back(std::make_shared<RecordObserver>(
            [this, name = record->getKey()](const std::string& property) { fired(name, property); }));
        record->addObserver(std::weak_ptr<ConfigValueObserver>(observers.back()));
    }
}

void LoadedService::start() {
    adapter->StartFeatureSet(configServiceId, nullptr);
    runTasks();
}

void LoadedService::stop() {
    adapter->StopFeatureSet(configServiceId, nullptr);
}

void LoadedService::refresh() {
    adapter->refreshConfigFeatureSet();
    runTasks();
}

void LoadedService::powerDown() {
    adapter->onPowerEvent(ZelSystemMonitor::PowerEventTypeEnum::PowerDown);
}

void LoadedService::resetAllData() {
    adapter->InvokeResetData(ResetDataOptionEnum::ResetAll);
    runTasks();
}

void LoadedService::addStore(const StoreShape& shape) {
    adapter->addConfigStore(makeStore(shape));
    runTasks();
}

void LoadedService::updateStore(const StoreShape& shape, const std::vector<std::wstring>& oldKeys) {
    adapter->updateExistingConfigStore(makeStore(shape), oldKeys);
    runTasks();
}

bool LoadedService::removeStore(const std::string& name) {
    const bool removed = service->removeConfigStoreAndCache(widen(name));
    runTasks();
    return removed;
}

std::string LoadedService::findStore(const std::string& name) {
    const auto store = adapter->getConfigStoreByName(name);
    return store ? store->getName() : "";
}

void LoadedService::setMdmConfig(const Pairs& pairs) {
    service->setMdmConfig(toMdmDocument(pairs));
}

bool LoadedService::setConfig(const std::wstring& key, const std::wstring& value) {
    const bool stored = adapter->setConfig(key, value);
    runTasks();
    return stored;
}

bool LoadedService::setConfig(const Pairs& pairs) {
    const bool stored = adapter->setConfig(toConfigMap(pairs));
    runTasks();
    return stored;
}

void LoadedService::resetConfig(const std::wstring& key) {
    service->resetConfig(key);
    runTasks();
}

bool LoadedService::provision(const std::wstring& url) {
    const bool done = service->setUrlProvisioningData(url);
    runTasks();
    return done;
}

bool LoadedService::resetProvisioning() {
    const bool removed = service->resetAllowUriProvisioningData();
    runTasks();
    return removed;
}

bool LoadedService::isStarted() {
    return adapter->IsFeatureSetStarted(configServiceId);
}

void LoadedService::setPolicy(const std::wstring& key, const std::wstring& value) {
    registry->setText(zel::registry::HKEY_CURRENT_USER, policyPath, key, value);
}

void LoadedService::setFipsMode(bool on) {
    zel::common::FipsUtils::overrideFipsMode(on);
}

RecordView LoadedService::getRecord(const std::wstring& key) {
    return toRecordView(*service->getConfig(key));
}

std::vector<std::string> LoadedService::listCachedFiles() {
    return listFolder(profile.config() / "Cache");
}

} // namespace config_model
