#include "ServiceLife.h"

#include "TracedConfigStore.h"
#include "services/impl/entry/InjectConfigService.h"

#include <kyr/FunctionTask.h>

#include <ConfigFeatureSet.h>
#include <ConfigServiceIds.h>
#include <ConfigStoreAddedObserver.h>
#include <ConfigValue.h>
#include <gtest/gtest.h>

#include <atomic>
#include <utility>

namespace long_life {

using namespace ZelUnified;

namespace {

const std::wstring watchedKey = L"watched";
const std::string arrivingStore = "Downloaded";

/// Returns a different value of equal length for each cycle.
std::wstring valueOf(std::size_t number) {
    return L"value " + std::to_wstring(1000 + number % 1000);
}

} // namespace

/// Counts the announcements of one record.
class ServiceLife::RecordObserver final : public ConfigValueObserver {
public:
    void OnKeyChanged() override {}
    void OnValueChanged() override { ++announcements; }
    void OnOriginalValueChanged() override {}
    void OnisOverriddenChanged() override {}
    void OnisDefinedChanged() override {}
    void OnValueStoreNameChanged() override {}
    void OnOriginalValueStoreNameChanged() override {}

    int announcements = 0;
};

/// Counts the arrivals of one store.
class ServiceLife::ArrivalObserver final : public ConfigStoreAddedObserver {
public:
    void OnConfigStoreAdded(const std::string& storeName) override { arrivals += storeName == arrivingStore ? 1 : 0; }

    std::atomic<int> arrivals = 0;
};

ServiceLife::ServiceLife(testing_host::CountedTimers& processTimers) : timers(processTimers) {
    files.emplace();
    factory->Init();
    onDispatcher([this] { InjectConfigService(factory); });
    service = factory->getServiceByType<ConfigService>();
    adapter = std::dynamic_pointer_cast<ConfigAdapter>(factory->getFeatureSetByType<ConfigFeatureSet>());
}

ServiceLife::~ServiceLife() {
    factory->Destroy();
}

void ServiceLife::playCycle(std::size_t number) {
    constexpr std::size_t round = 8;
    const std::size_t place = number % round;
    chooseFiles(number);
    timers.setWait(place < round / 2 ? testing_host::CountedTimers::Wait::None
                                     : testing_host::CountedTimers::Wait::AsAsked);
    factory->StartFeatureSet(configServiceId, nullptr);
    onDispatcher([this] { adapter->refreshConfigFeatureSet(); });
    letStoreArrive(valueOf(number));
    write(valueOf(number));
    if (place == 1) {
        provision(valueOf(number));
    }
    if (place == 2) {
        onDispatcher([this] { EXPECT_FALSE(service->getAllConfigForPRT().empty()); });
    }
    EXPECT_TRUE(adapter->removeConfigStore(arrivingStore));
    rest();
    EXPECT_EQ(timers.getPendingCount(), place < round / 2 ? 0U : 1U);
    if (place == round - 1) {
        factory->invokeResetData(ResetDataOptionEnum::ResetAll);
        EXPECT_EQ(timers.getPendingCount(), 0U);
    }
    factory->StopFeatureSet(configServiceId, nullptr);
    rest();
}

/// Syncing takes most of the time of a cycle, so only some cycles do it.
void ServiceLife::chooseFiles(std::size_t number) {
    constexpr std::size_t oneIn = 32;
    if (number % oneIn == 0) {
        files.reset();
    } else if (!files) {
        files.emplace();
    }
}

void ServiceLife::letStoreArrive(const std::wstring& value) {
    const auto observer = std::make_shared<ArrivalObserver>();
    adapter->registerConfigStoreAddedObserver(observer);
    adapter->addConfigStore(std::make_shared<config_model::TracedConfigStore>(
        config_model::StoreShape{
            .name = arrivingStore, .priority = 40, .pairs = {{L"downloaded", value}}, .local = false, .caching = true},
        [](const std::string&) {}));
    rest();
    EXPECT_EQ(observer->arrivals, 1);
    adapter->unregisterConfigStoreAddedObserver(observer);
}

void ServiceLife::write(const std::wstring& value) {
    const auto observer = std::make_shared<RecordObserver>();
    const std::weak_ptr<ConfigValueObserver> held = observer;
    onDispatcher([&] { service->getConfig(watchedKey)->addObserver(held); });
    adapter->setConfig(watchedKey, value);
    rest();
    onDispatcher([&] {
        EXPECT_EQ(service->getConfig(L"policy")->getValue(), L"in force");
        const auto record = service->getConfig(watchedKey);
        EXPECT_EQ(record->getValue(), value);
        record->removeObserver(held);
    });
    EXPECT_EQ(observer->announcements, 1);
}

void ServiceLife::provision(const std::wstring& value) {
    adapter->resetAllowUriProvisioningData();
    EXPECT_TRUE(adapter->setUrlProvisioningData(L"lumora://provision?ServicesDomain=" + value));
}

void ServiceLife::onDispatcher(const std::function<void()>& work) {
    factory->getServicesDispatcher()->enqueueBlock(std::make_shared<KyrCoreUtils::FunctionTask>(work, "long life"),
                                                   false);
}

/// A write may set a timer, which may cause a write.
void ServiceLife::rest() {
    factory->flushBackgroundDispatcher();
    EXPECT_TRUE(timers.settle());
    factory->flushBackgroundDispatcher();
    EXPECT_TRUE(timers.settle());
    onDispatcher([] {});
}

} // namespace long_life
