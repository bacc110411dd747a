#include "ServiceUnderStress.h"

#include "TracedConfigStore.h"
#include "services/impl/entry/InjectConfigService.h"

#include <kyr/FunctionTask.h>
#include <unified/UpdateAccessError.h>

#include <ConfigFeatureSet.h>
#include <ConfigServiceIds.h>
#include <ConfigStoreAddedObserver.h>
#include <ConfigValue.h>

#include <mutex>
#include <thread>

namespace config_model {

using namespace ZelUnified;

namespace {

// In a store that is never removed: every reader finds it at any time.
const std::wstring anchorKey = L"anchor";
const std::wstring anchorValue = L"fixed";

const std::wstring keys[] = {L"TftpServer1", L"TFTPPrimaryServer", L"watched",           L"other",
                             L"ProductMode", L"CtiServer1",        L"Telephony_Enabled", L"Customize_Phone_Server"};
const std::wstring values[] = {L"one", L"two", L"", L"false"};
const std::string stores[] = {"TftpStore", "GarnStore", "Alpha", "ALPHA", "PresenceConfigStore"};

std::shared_ptr<ConfigStore> makeStore(const StoreShape& shape) {
    return std::make_shared<TracedConfigStore>(shape, [](const std::string&) {});
}

} // namespace

/// Calls the operations that an observer of a record may call.
class ServiceUnderStress::RecordObserver final : public ConfigValueObserver {
public:
    explicit RecordObserver(ServiceUnderStress& subject) : owner(subject) {}
    void OnKeyChanged() override {}
    void OnValueChanged() override { owner.react(); }
    void OnOriginalValueChanged() override { owner.react(); }
    void OnisOverriddenChanged() override {}
    void OnisDefinedChanged() override {}
    void OnValueStoreNameChanged() override {}
    void OnOriginalValueStoreNameChanged() override {}

private:
    ServiceUnderStress& owner;
};

/// Reads the store that arrived.
class ServiceUnderStress::ArrivalObserver final : public ConfigStoreAddedObserver {
public:
    explicit ArrivalObserver(std::weak_ptr<ConfigAdapter> featureSet) : adapter(std::move(featureSet)) {}
    void OnConfigStoreAdded(const std::string& storeName) override {
        if (const auto alive = adapter.lock()) {
            alive->getConfigStoreByName(storeName);
            alive->isConfigStorePresent(storeName);
        }
    }

private:
    const std::weak_ptr<ConfigAdapter> adapter;
};

ServiceUnderStress::ServiceUnderStress(std::uint32_t seed) : firstSeed(seed) {
    factory->Init();
    onDispatcher([this] { InjectConfigService(factory); });
    factory->StartFeatureSet(configServiceId, nullptr);
    service = factory->getServiceByType<ConfigService>();
    adapter = std::dynamic_pointer_cast<ConfigAdapter>(factory->getFeatureSetByType<ConfigFeatureSet>());
    adapter->addConfigStore(
        makeStore({.name = "BootstrapConfigStore", .priority = 1, .pairs = {{anchorKey, anchorValue}}}));
    arrivalObserver = std::make_shared<ArrivalObserver>(adapter);
    adapter->registerConfigStoreAddedObserver(arrivalObserver);
    onDispatcher([this] {
        for (const auto& key : keys) {
            recordObservers.push_back(std::make_shared<RecordObserver>(*this));
            service->getConfig(key)->addObserver(std::weak_ptr<ConfigValueObserver>(recordObservers.back()));
        }
    });
}

ServiceUnderStress::~ServiceUnderStress() {
    destroyOnce();
}

void ServiceUnderStress::live(std::size_t callsOfOneThread) {
    using Work = void (ServiceUnderStress::*)(ByteSource&);
    const Work works[] = {&ServiceUnderStress::read,         &ServiceUnderStress::read,
                          &ServiceUnderStress::write,        &ServiceUnderStress::write,
                          &ServiceUnderStress::changeStores, &ServiceUnderStress::changeStores,
                          &ServiceUnderStress::changeLife};
    constexpr std::size_t bytesOfOneCall = 4;
    const std::size_t half = callsOfOneThread * std::size(works) / 2;
    std::atomic<std::size_t> calls = 0;
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < std::size(works); ++number) {
        threads.emplace_back([&, number] {
            const auto source =
                makeBytes(firstSeed + static_cast<std::uint32_t>(number), callsOfOneThread * bytesOfOneCall);
            ByteSource bytes(source);
            for (std::size_t call = 0; call < callsOfOneThread; ++call) {
                (this->*works[number])(bytes);
                if (++calls == half) {
                    destroyOnce();
                }
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
}

void ServiceUnderStress::read(ByteSource& bytes) {
    std::wstring value;
    switch (bytes.below(6)) {
    case 0:
        onDispatcher([this, key = bytes.pick(keys)] { service->getConfig(key)->getValue(); });
        break;
    case 1:
        onDispatcher([this] { service->getAllConfig(); });
        break;
    case 2:
        onDispatcher([this] { service->getAllConfigForPRT(); });
        break;
    case 3:
        adapter->getConfig(bytes.pick(keys), value, bytes.flip());
        break;
    case 4:
        adapter->getConfigStoreByName(bytes.pick(stores));
        break;
    default:
        if (!adapter->getConfig(anchorKey, value, true) || value != anchorValue) {
            complain("the anchor was not found");
        }
    }
}

void ServiceUnderStress::write(ByteSource& bytes) {
    const auto& key = bytes.pick(keys);
    const auto& value = bytes.pick(values);
    switch (bytes.below(6)) {
    case 0:
        onDispatcher([&] { service->setConfig(key, value); });
        break;
    case 1:
        adapter->setConfig(ConfigMap{{key, value}, {L"other", L"three"}});
        break;
    case 2:
        adapter->setInMemoryConfig(key, value);
        break;
    case 3:
        adapter->resetConfig(key);
        break;
    case 4:
        adapter->setKeySensitive(key);
        break;
    default:
        adapter->setConfig(key, value);
    }
}

void ServiceUnderStress::changeStores(ByteSource& bytes) {
    StoreShape shape{.name = bytes.pick(stores), .priority = 30 + static_cast<int>(bytes.below(4))};
    shape.pairs = {{bytes.pick(keys), L"arrived"}, {L"TftpServer1", L"server"}};
    shape.local = false;
    shape.caching = shape.priority == 30;
    switch (bytes.below(5)) {
    case 0:
        adapter->removeConfigStore(shape.name);
        break;
    case 1:
        adapter->updateExistingConfigStore(makeStore(shape), {L"watched"});
        break;
    case 2:
        adapter->setMdmConfig("<root><group><watched>pushed</watched></group></root>");
        break;
    default:
        adapter->addConfigStore(makeStore(shape));
    }
}

void ServiceUnderStress::changeLife(ByteSource& bytes) {
    switch (bytes.below(5)) {
    case 0:
        factory->StopFeatureSet(configServiceId, nullptr);
        break;
    case 1:
        onDispatcher([this] { adapter->refreshConfigFeatureSet(); });
        break;
    case 2:
        factory->invokeResetData(ResetDataOptionEnum::ResetAll);
        break;
    case 3:
        onDispatcher([this] { adapter->onPowerEvent(ZelSystemMonitor::PowerEventTypeEnum::PowerDown); });
        break;
    default:
        factory->IsFeatureSetStarted(configServiceId);
    }
    factory->StartFeatureSet(configServiceId, nullptr);
}

void ServiceUnderStress::react() {
    const int number = ++reactions;
    // A change made here calls this function again.
    if (++reactionDepth <= 2) {
        std::wstring value;
        adapter->getConfig(L"watched", value, number % 2 == 0);
        const auto name = "Nested" + std::to_string(number % 3);
        switch (number % 7) {
        case 0:
            service->setInMemoryConfig(L"nested", value);
            break;
        case 1:
            adapter->addConfigStore(makeStore({.name = name, .priority = 50, .pairs = {{L"watched", L"nested"}}}));
            break;
        case 2:
            adapter->removeConfigStore(name);
            break;
        case 3:
            service->getAllConfigForPRT();
            break;
        case 4: {
            const auto& observer = recordObservers[static_cast<std::size_t>(number) % recordObservers.size()];
            const auto record = service->getConfig(L"other");
            record->addObserver(std::weak_ptr<ConfigValueObserver>(observer));
            record->removeObserver(std::weak_ptr<ConfigValueObserver>(observer));
            break;
        }
        case 5:
            service->resetConfig(L"other");
            break;
        default:
            service->setConfig(L"other", std::to_wstring(number));
        }
    }
    --reactionDepth;
}

void ServiceUnderStress::onDispatcher(const std::function<void()>& work) {
    const auto guarded = [&work] {
        try {
            work();
        } catch (const UpdateAccessError&) {
            // After the dispatcher has ended, no thread has access any more.
        }
    };
    factory->getServicesDispatcher()->enqueueBlock(std::make_shared<KyrCoreUtils::FunctionTask>(guarded, "stress"),
                                                   false);
}

void ServiceUnderStress::destroyOnce() {
    if (!destroyed.exchange(true)) {
        factory->Destroy();
    }
}

void ServiceUnderStress::complain(const std::string& text) {
    const std::lock_guard lock(complaintsMutex);
    complaints.push_back(text);
}

std::vector<std::string> ServiceUnderStress::getComplaints() const {
    const std::lock_guard lock(complaintsMutex);
    return complaints;
}

bool ServiceUnderStress::end() {
    destroyOnce();
    const std::weak_ptr<ConfigService> watchedService = service;
    const std::weak_ptr<ConfigAdapter> watchedAdapter = adapter;
    service.reset();
    adapter.reset();
    return watchedService.expired() && watchedAdapter.expired();
}

} // namespace config_model
