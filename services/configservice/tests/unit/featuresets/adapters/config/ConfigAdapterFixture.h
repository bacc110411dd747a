#pragma once

#include "featuresets/adapters/config/ConfigAdapter.h"
#include "featuresets/adapters/config/chain/FakeConfigStore.h"
#include "services/impl/entry/InjectConfigService.h"

#include <zel/FipsUtils.h>
#include <zel/SystemMonitorFactory.h>

#include <ConfigFeatureSet.h>
#include <ConfigService.h>
#include <DefaultsFile.h>
#include <InMemoryRegistry.h>
#include <LogRecorder.h>
#include <RecordingFactory.h>
#include <TemporaryProfile.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace ZelUnified {

/// Records the observers of power events; never fires on its own.
class FakeSystemMonitor final : public ZelSystemMonitor::SystemMonitor {
public:
    void addPowerEventObserver(std::weak_ptr<ZelSystemMonitor::PowerEventObserver> observer) override {
        observers.push_back(std::move(observer));
    }
    void removePowerEventObserver(std::weak_ptr<ZelSystemMonitor::PowerEventObserver> observer) override {
        std::erase_if(observers, [&](const auto& known) { return known.lock() == observer.lock(); });
    }
    void announce(ZelSystemMonitor::PowerEventTypeEnum::PowerEventType type) {
        for (const auto& observer : std::vector(observers)) {
            if (const auto alive = observer.lock()) {
                alive->onPowerEvent(type);
            }
        }
    }

    std::vector<std::weak_ptr<ZelSystemMonitor::PowerEventObserver>> observers;
};

/// A whole service on a temporary profile, on a factory without threads: the test's thread is the services
/// dispatcher's, and background tasks wait until the test runs them.
class ConfigAdapterFixture : public testing::Test {
protected:
    static constexpr const char* loggerName = "ConfigService-ConfigAdapter";
    static constexpr const wchar_t* policyPath =
        L"Software\\Policies\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC";

    ConfigAdapterFixture() { ZelSystemMonitor::SystemMonitorFactory::overrideInstance(monitor); }
    ~ConfigAdapterFixture() override {
        unload();
        ZelSystemMonitor::SystemMonitorFactory::overrideInstance(nullptr);
        zel::common::FipsUtils::overrideFipsMode(std::nullopt);
    }

    /// Writes the shipped defaults. Call before load().
    void givenDefaults(const ConfigMap& values) { testing_host::writeDefaults(profile.resources(), values); }
    void givenPolicy(const std::wstring& key, const std::wstring& value) {
        registry->setText(zel::registry::HKEY_CURRENT_USER, policyPath, key, value);
    }

    /// Loads the plug-in as the host does.
    void load() {
        InjectConfigService(factory);
        adapter = std::dynamic_pointer_cast<ConfigAdapter>(factory->getFeatureSetByType<ConfigFeatureSet>());
        service = factory->getServiceByType<ConfigService>();
    }
    void start() { adapter->StartFeatureSet(configServiceId, nullptr); }
    void loadAndStart() {
        load();
        start();
        log.clear();
    }
    /// Runs all queued tasks and ends the run. load() starts the next run on the same profile.
    void unload() {
        adapter.reset();
        service.reset();
        factory->backgroundDispatcher->runAll();
        factory->Destroy();
        factory = std::make_shared<testing_host::RecordingFactory>();
    }

    /// Returns the effective value from the chain.
    std::wstring valueOf(const std::wstring& key) {
        std::wstring value;
        return adapter->getConfig(key, value, false) ? value : L"(none)";
    }
    /// Returns the value of the record.
    std::wstring recordOf(const std::wstring& key) { return service->getConfig(key)->getValue(); }
    bool inChain(const std::string& name) { return adapter->getConfigStoreByName(name) != nullptr; }

    std::filesystem::path cacheFile(const std::string& storeName) const {
        return profile.config() / "Cache" / ("cached" + storeName + ".dat");
    }
    static std::shared_ptr<FakeConfigStore> makeCachingStore(const std::string& name, int priority,
                                                             ConfigMap values = {}) {
        auto store = makeReadOnlyStore(name, priority, std::move(values));
        store->caching = true;
        store->local = false;
        return store;
    }

    std::vector<std::string> logged() const { return log.getTexts(loggerName); }
    /// Returns the level of the first line with that text. Fails the test if there is none.
    ZelLogLevel levelOf(const std::string& text) const {
        for (const auto& record : log.getRecords()) {
            if (record.logger == loggerName && record.text == text) {
                return record.level;
            }
        }
        ADD_FAILURE() << "not logged: " << text;
        return ZelLogLevel::Debug;
    }
    long countLogged(const std::string& text) const {
        const auto lines = logged();
        return std::count(lines.begin(), lines.end(), text);
    }

    testing_host::TemporaryProfile profile;
    testing_host::InMemoryRegistry::Installed registry;
    testing_host::LogRecorder log;
    const std::shared_ptr<FakeSystemMonitor> monitor = std::make_shared<FakeSystemMonitor>();
    std::shared_ptr<testing_host::RecordingFactory> factory = std::make_shared<testing_host::RecordingFactory>();
    std::shared_ptr<ConfigAdapter> adapter;
    std::shared_ptr<ConfigService> service;
};

} // namespace ZelUnified
