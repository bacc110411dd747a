#include "ConcurrentService.h"

#include "CachedFolder.h"
#include "DeliveredStore.h"
#include "KeyNames.h"
#include "ProductTypes.h"
#include "StartedState.h"
#include "services/impl/entry/InjectConfigService.h"

#include <ConfigFeatureSet.h>
#include <ConfigServiceIds.h>
#include <ConfigStoreAddedObserver.h>
#include <DefaultsFile.h>

#include <algorithm>
#include <thread>
#include <utility>

namespace config_model {

using namespace ZelUnified;

namespace {

using Kind = Call::Kind;

constexpr const wchar_t* policyPath = L"Software\\Policies\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC";

/// Returns the text between two marks, and removes it with all that precedes it. Returns "" if a mark is missing.
std::string cutBetween(std::string& text, const std::string& begin, const std::string& end) {
    const auto first = text.find(begin);
    const auto last = first == text.npos ? text.npos : text.find(end, first + begin.size());
    if (last == text.npos) {
        return "";
    }
    const auto found = text.substr(first + begin.size(), last - first - begin.size());
    text.erase(0, last + end.size());
    return found;
}

} // namespace

class ConcurrentService::ArrivalObserver final : public ConfigStoreAddedObserver {
public:
    ArrivalObserver(ConcurrentService& subject, std::size_t itsNumber) : owner(subject), number(itsNumber) {}
    void OnConfigStoreAdded(const std::string& storeName) override {
        owner.arrivals.push_back("observer " + std::to_string(number) + " " + storeName);
    }

private:
    ConcurrentService& owner;
    const std::size_t number;
};

ConcurrentService::ConcurrentService(const Pairs& policy) {
    testing_host::writeDefaults(profile.resources(), shippedDefaults);
    for (const auto& [key, value] : policy) {
        registry->setText(zel::registry::HKEY_CURRENT_USER, policyPath, key, value);
    }
    InjectConfigService(factory);
    adapter = std::dynamic_pointer_cast<ConfigAdapter>(factory->getFeatureSetByType<ConfigFeatureSet>());
    service = factory->getServiceByType<ConfigService>();
    adapter->StartFeatureSet(configServiceId, nullptr);
    for (std::size_t number = 0; number <= 2; ++number) {
        arrivalObservers.push_back(std::make_shared<ArrivalObserver>(*this, number));
    }
}

ConcurrentService::~ConcurrentService() {
    recordObservers.clear();
    adapter.reset();
    service.reset();
    factory->Destroy();
}

History ConcurrentService::run(const Script& script) {
    observeRecords();
    runScript(script);
    History history{.policy = script.policy, .before = script.before};
    for (auto& events : recorded) {
        history.events.insert(history.events.end(), events.begin(), events.end());
    }
    std::sort(history.events.begin(), history.events.end(),
              [](const auto& a, const auto& b) { return a.start < b.start; });
    history.posted = assignToEvents(history.events, factory->recordedServices->queue);
    history.background = assignToEvents(history.events, factory->recordedBackground->queue);
    history.end = describeEnd();
    return history;
}

void ConcurrentService::observeRecords() {
    for (const auto& key : watchedKeys) {
        recordObservers.push_back(std::make_shared<RecordObserver>(
            [this, key](const std::string& property) { fired.push_back(property + " of " + readRecord(key)); }));
        service->getConfig(key)->addObserver(std::weak_ptr<ConfigValueObserver>(recordObservers.back()));
    }
}

void ConcurrentService::runScript(const Script& script) {
    recorded.resize(script.threads.size());
    threadIds.resize(script.threads.size());
    for (const auto& call : script.before) {
        performAndRecord(0, call);
    }
    while (runOneBackground(0)) {
    }
    recorded[0].clear();
    factory->recordedBackground->queue.forget();

    std::latch begin(static_cast<std::ptrdiff_t>(script.threads.size()));
    std::atomic<std::size_t> running = script.threads.size() - 1;
    std::vector<std::thread> threads;
    for (std::size_t thread = 1; thread < script.threads.size(); ++thread) {
        threads.emplace_back([&, thread] {
            begin.arrive_and_wait();
            runOtherThread(thread, script.threads[thread]);
            if (--running == 0) {
                factory->recordedServices->queue.close();
            }
        });
        threadIds[thread] = threads.back().get_id();
    }
    threadIds[0] = std::this_thread::get_id();
    begin.arrive_and_wait();
    runServicesThread(script.threads[0]);
    for (auto& thread : threads) {
        thread.join();
    }
    while (runOneBackground(1)) {
    }
}

void ConcurrentService::runOtherThread(std::size_t thread, const std::vector<Call>& calls) {
    for (const auto& call : calls) {
        performAndRecord(thread, call);
        if (thread == 1) {
            runOneBackground(thread);
        }
    }
}

void ConcurrentService::runServicesThread(const std::vector<Call>& calls) {
    for (const auto& call : calls) {
        performAndRecord(0, call);
        runOnePosted();
    }
    while (factory->recordedServices->queue.wait()) {
        runOnePosted();
    }
}

bool ConcurrentService::runOnePosted() {
    Call call{.kind = Kind::RunPosted};
    const auto task = factory->recordedServices->queue.take(call.position);
    if (!task) {
        return false;
    }
    const auto start = ++clock;
    task->run();
    recorded[0].push_back({0, call, start, ++clock, "none", std::exchange(fired, {})});
    return true;
}

bool ConcurrentService::runOneBackground(std::size_t thread) {
    std::size_t position = 0;
    const auto start = ++clock;
    const auto task = factory->recordedBackground->queue.take(position);
    if (!task) {
        return false;
    }
    task->run();
    const auto answers = std::exchange(arrivals, {});
    recorded[thread].push_back(
        {thread, {.kind = Kind::RunBackground}, start, ++clock, answers.empty() ? task->getName() : answers.front()});
    return true;
}

void ConcurrentService::performAndRecord(std::size_t thread, const Call& call) {
    const auto start = ++clock;
    auto answer = perform(call);
    const auto end = ++clock;
    recorded[thread].push_back({thread, call, start, end, std::move(answer)});
    if (thread == 0) {
        recorded[0].back().fired = std::exchange(fired, {});
    }
}

std::string ConcurrentService::perform(const Call& call) {
    switch (call.kind) {
    case Kind::AddStore:
        adapter->addConfigStore(std::make_shared<DeliveredStore>(call.store));
        return "none";
    case Kind::RemoveStore:
        return toText(adapter->removeConfigStore(call.name));
    case Kind::IsStorePresent:
        return toText(adapter->isConfigStorePresent(call.name));
    case Kind::RemoveAllCachedStores:
        adapter->removeAllCachedConfigStores();
        return "none";
    case Kind::SetMdmConfig:
        adapter->setMdmConfig(toMdmDocument(call.pairs));
        return "none";
    case Kind::GetConfig:
        return lookUp(call.key, call.skipLocal);
    case Kind::GetValueOfStore:
        return narrow(adapter->getValueFromConfigStore(call.name, call.key));
    case Kind::SetConfig:
        return toText(adapter->setConfig(call.key, call.value));
    case Kind::SetConfigMap:
        return toText(adapter->setConfig(toConfigMap(call.pairs)));
    case Kind::SetInMemoryConfig:
        return toText(adapter->setInMemoryConfig(call.key, call.value));
    case Kind::ResetConfig:
        adapter->resetConfig(call.key);
        return "none";
    case Kind::Provision:
        return toText(adapter->setUrlProvisioningData(call.value));
    case Kind::ResetProvisioning:
        return toText(adapter->resetAllowUriProvisioningData());
    case Kind::SetKeySensitive:
        adapter->setKeySensitive(call.key);
        return "none";
    case Kind::IsKeySensitive:
        return toText(adapter->isKeySensitive(call.key));
    case Kind::RegisterObserver:
        adapter->registerConfigStoreAddedObserver(arrivalObservers[call.observer]);
        return "none";
    case Kind::UnregisterObserver:
        adapter->unregisterConfigStoreAddedObserver(arrivalObservers[call.observer]);
        return "none";
    case Kind::Report:
        return report();
    case Kind::GetRecord:
        return readRecord(call.key);
    case Kind::IsRecordSensitive:
        return toText(service->isKeySensitive(call.key));
    default:
        return performLifecycle(call);
    }
}

std::string ConcurrentService::performLifecycle(const Call& call) {
    switch (call.kind) {
    case Kind::Start:
        adapter->StartFeatureSet(configServiceId, nullptr);
        break;
    case Kind::Stop:
        adapter->StopFeatureSet(configServiceId, nullptr);
        break;
    case Kind::Refresh:
        adapter->refreshConfigFeatureSet();
        break;
    case Kind::ResetAllData:
        adapter->InvokeResetData(ResetDataOptionEnum::ResetAll);
        break;
    case Kind::PowerDown:
        adapter->onPowerEvent(ZelSystemMonitor::PowerEventTypeEnum::PowerDown);
        break;
    case Kind::IsStarted:
        return toText(adapter->IsFeatureSetStarted(configServiceId));
    default:
        break;
    }
    return "none";
}

std::string ConcurrentService::readRecord(const std::wstring& key) {
    return describe(toRecordView(*service->getConfig(key)));
}

std::string ConcurrentService::lookUp(const std::wstring& key, bool skipLocal) {
    Reading reading;
    reading.found = adapter->getConfig(key, reading.value, reading.store, reading.fromLegacyKey, skipLocal);
    return describeLookup(key, reading);
}

std::string ConcurrentService::report() {
    std::wstring document;
    adapter->getAllConfigForPRT(document);
    auto text = narrow(document);
    std::string stores;
    for (auto name = cutBetween(text, "<store name=\"", "\""); !name.empty();
         name = cutBetween(text, "<store name=\"", "\"")) {
        stores += "[" + name + " " + cutBetween(text, "priority=\"", "\">") + "]";
        auto content = cutBetween(text, "\n", "</store>");
        for (auto key = cutBetween(content, "<", ">"); !key.empty(); key = cutBetween(content, "<", ">")) {
            auto value = content.substr(0, content.find('<'));
            stores += " " + key + "=" + value;
            cutBetween(content, "</", ">");
        }
    }
    return stores;
}

std::vector<Posted> ConcurrentService::assignToEvents(const std::vector<Event>& events,
                                                      const RecordedQueue& queue) const {
    std::vector<Posted> result;
    for (const auto& entry : queue.getEntries()) {
        const auto poster = std::find_if(events.begin(), events.end(), [&](const auto& event) {
            return event.start < entry.time && entry.time < event.end && threadIds[event.thread] == entry.thread;
        });
        Posted posted{.name = entry.name};
        if (poster != events.end()) {
            posted.event = static_cast<std::size_t>(poster - events.begin());
        }
        result.push_back(std::move(posted));
    }
    return result;
}

std::vector<std::string> ConcurrentService::describeEnd() {
    std::vector<std::string> lines;
    for (const auto& key : watchedKeys) {
        lines.push_back(readRecord(key));
        lines.push_back(lookUp(key, false));
    }
    for (const auto& file : listFolder(profile.config() / "Cache")) {
        lines.push_back("file: " + file);
    }
    return lines;
}

/// A record of a key that was renamed may be left behind: no announcement is made under an old name while a store holds
/// the new one.
std::vector<std::string> ConcurrentService::findStaleRecords() {
    std::vector<std::string> stale;
    for (const auto& key : watchedKeys) {
        if (!findOldName(key).empty()) {
            continue;
        }
        const auto record = service->getConfig(key);
        std::wstring value;
        std::wstring store;
        bool fromLegacyKey = false;
        const bool found = adapter->getConfig(key, value, store, fromLegacyKey, false);
        // A change of the case alone does not change the record.
        if (found != record->getisDefined() || !isSame(value, record->getValue()) ||
            store != record->getValueStoreName()) {
            stale.push_back(readRecord(key) + ", but " + lookUp(key, false));
        }
    }
    return stale;
}

} // namespace config_model
