#include "CallSteps.h"

#include "KeyNames.h"
#include "ModelUrl.h"
#include "StoreRecord.h"

#include <algorithm>
#include <limits>
#include <memory>

namespace config_model {

namespace {

using Kind = Call::Kind;
using Task = HistoryState::Task;

const std::string urlStore = "UrlProvisioningConfigStore";

std::string copyNameOf(const std::string& storeName) {
    return "cached" + storeName + ".dat";
}

/// Returns the pairs as they are read from a document, with keys in lower case.
Pairs readBack(const Pairs& pairs) {
    Pairs result;
    for (const auto& [key, value] : pairs) {
        result.emplace_back(toSmallLetters(key), value);
    }
    return result;
}

StoreShape makeCopyShape(const std::string& name, int priority, const Pairs& pairs) {
    return {.kind = StoreShape::Kind::Copy, .name = name, .priority = priority, .pairs = pairs};
}

} // namespace

template <class Work>
StepResult CallSteps::step(const Work& work) {
    if (position < results.size()) {
        return results[position++];
    }
    if (hasRun) {
        hasMore = true;
        return {};
    }
    hasRun = true;
    ++position;
    results.push_back(work());
    return results.back();
}

template <class Work>
void CallSteps::change(const Work& work) {
    step([&] {
        work();
        return StepResult();
    });
}

template <class Work>
bool CallSteps::test(const Work& work) {
    return step([&] { return StepResult{.yes = work()}; }).yes;
}

template <class Work>
std::wstring CallSteps::read(const Work& work) {
    return step([&] { return StepResult{.text = work()}; }).text;
}

bool CallSteps::runNext(const Call& call) {
    position = 0;
    hasRun = false;
    hasMore = false;
    isBlocked = false;
    state.enter(onServicesThread);
    answer = perform(call);
    state.chain.takeLog();
    return !isBlocked;
}

std::string CallSteps::runAll(HistoryState& state, const Call& call) {
    std::vector<StepResult> results;
    CallSteps steps(state, 0, true, results);
    do {
        steps.runNext(call);
    } while (!steps.isFinished());
    return steps.getAnswer();
}

std::string CallSteps::perform(const Call& call) {
    switch (call.kind) {
    case Kind::AddStore:
        return addStore(call.store);
    case Kind::RemoveStore:
        return say(removeStore(call.name));
    case Kind::IsStorePresent:
        return say(test([&] { return state.started; }) && test([&] { return state.chain.hasStore(call.name); }));
    case Kind::RemoveAllCachedStores:
        removeAllCachedStores();
        return "none";
    case Kind::SetMdmConfig:
        setMdmConfig(call.pairs);
        return "none";
    case Kind::GetConfig:
        return narrow(
            read([&] { return widen(describeLookup(call.key, state.chain.getValue(call.key, call.flag, ""))); }));
    case Kind::GetValueOfStore:
        return narrow(read([&] { return state.chain.getValueOfStore(call.name, call.key); }));
    case Kind::SetConfig:
        return say(test([&] { return state.chain.storeValue(call.key, call.value); }));
    case Kind::SetConfigMap:
        return say(test([&] { return state.chain.storeValues(call.pairs); }));
    case Kind::SetInMemoryConfig:
        return say(test([&] { return state.chain.setInMemoryValue(call.key, call.value); }));
    case Kind::ResetConfig:
        change([&] { state.chain.removeValue(call.key); });
        return "none";
    case Kind::Provision:
        return say(provision(call.value));
    case Kind::ResetProvisioning:
        return say(resetProvisioning());
    case Kind::SetKeySensitive:
        setKeySensitive(call.key);
        return "none";
    case Kind::IsKeySensitive:
        return say(test([&] { return state.chain.isKeySensitive(call.key); }));
    case Kind::RegisterObserver:
        change([&] { state.chain.registerStoreObserver(call.number); });
        return "none";
    case Kind::UnregisterObserver:
        change([&] { state.chain.unregisterStoreObserver(call.number); });
        return "none";
    case Kind::Report:
        return report();
    case Kind::GetRecord:
        return narrow(read([&] { return widen(describe(state.records.get(call.key, false))); }));
    case Kind::IsRecordSensitive:
        return say(test([&] { return state.isRecordSensitive(call.key); }));
    case Kind::RunPosted:
        runPosted(call.number);
        return "none";
    case Kind::RunBackground:
        return runBackground();
    default:
        return performLife(call);
    }
}

std::string CallSteps::performLife(const Call& call) {
    switch (call.kind) {
    case Kind::Start:
        start();
        break;
    case Kind::Stop:
        stop();
        break;
    case Kind::Refresh:
        refresh();
        break;
    case Kind::ResetAllData:
        resetAllData();
        break;
    case Kind::PowerDown:
        powerDown();
        break;
    case Kind::IsStarted:
        return say(test([&] {
            if (state.lifeHolder) {
                block();
            }
            return state.started;
        }));
    default:
        break;
    }
    return "none";
}

// Stores.

std::string CallSteps::addStore(const StoreShape& shape) {
    if (!test([&] { return state.started; })) {
        return "none";
    }
    change([&] { state.chain.addStore(shape); });
    if (shape.caching) {
        cacheStore(shape);
    }
    removeValuesIfPolicySet();
    if (shape.name == "TftpStore") {
        deriveFlags();
    }
    return "none";
}

void CallSteps::cacheStore(const StoreShape& shape) {
    const ModelStore store(shape);
    change([&] {
        state.chain.storeValue(L"PrimaryConfigStores", recordWith(state.valueOf(L"PrimaryConfigStores"), shape.name,
                                                                  store.getCachedPriority()));
    });
    change([&] {
        state.copies[copyNameOf(shape.name)] = store.shape.pairs;
        state.chain.placeCachedFile(copyNameOf(shape.name));
    });
}

bool CallSteps::removeStore(const std::string& name) {
    if (!test([&] { return state.started; })) {
        return false;
    }
    const bool removed =
        test([&] { return state.chain.hasStore(name); }) && test([&] { return state.chain.removeStore(name); });
    change([&] {
        state.chain.storeValue(L"PrimaryConfigStores", recordWithout(state.valueOf(L"PrimaryConfigStores"), name));
    });
    return removed;
}

void CallSteps::removeAllCachedStores() {
    for (const auto& file : listCachedFiles()) {
        change([&] { state.chain.removeCachedFiles(file); });
    }
}

std::vector<std::string> CallSteps::listCachedFiles() {
    const auto list = step([&] {
        StepResult result;
        for (const auto& file : state.chain.listCachedFiles()) {
            result.pairs.emplace_back(widen(file), L"");
        }
        return result;
    });
    std::vector<std::string> files;
    for (const auto& [file, unused] : list.pairs) {
        files.push_back(narrow(file));
    }
    return files;
}

void CallSteps::removeValuesIfPolicySet() {
    if (isSame(read([&] { return state.valueOf(L"Customize_Phone_Server"); }), L"false")) {
        for (const std::wstring key : {L"TFTPPrimaryServer", L"CtiServer1", L"SabrelServer1"}) {
            change([&] { state.chain.removeValue(key); });
        }
    }
}

/// The scripts hold no key of voicemail and meetings, so that these flags are always false.
void CallSteps::deriveFlags() {
    const bool isLeftToDerivation = test([&] {
        const auto reading = state.chain.getValue(L"Telephony_Enabled", true, "");
        return isSame(narrow(reading.store), "lumora-config-defaults.xml");
    });
    if (isLeftToDerivation) {
        const auto server = read([&] { return state.valueOf(L"CtiServer1"); });
        change([&] { state.chain.setInMemoryValue(L"Telephony_Enabled", server.empty() ? L"false" : L"true"); });
    }
    change([&] { state.chain.setInMemoryValue(L"Voicemail_Enabled", L"false"); });
    change([&] { state.chain.setInMemoryValue(L"Meetings_Enabled", L"false"); });
}

void CallSteps::setMdmConfig(const Pairs& pairs) {
    // Unlike elsewhere, the first of two elements of one key wins.
    change([&] {
        state.chain.addStore(StoreShape{.kind = StoreShape::Kind::DeviceManagement,
                                        .name = "MdmConfigStore",
                                        .priority = 500,
                                        .pairs = readBack(Pairs(pairs.rbegin(), pairs.rend()))});
    });
}

// Values.

bool CallSteps::provision(const std::wstring& url) {
    if (isSame(read([&] { return state.valueOf(L"AllowUrlProvisioning"); }), L"false")) {
        return false;
    }
    return test([&] {
        const auto pairs = readProvisioningUrl(url);
        if (!pairs.empty()) {
            state.copies[copyNameOf(urlStore)] = pairs;
        }
        return state.chain.setUrlProvisioningData(url);
    });
}

bool CallSteps::resetProvisioning() {
    return isSame(read([&] { return state.valueOf(L"AllowUrlProvisioning"); }), L"false") &&
           test([&] { return state.chain.removeValue(L"AllowUrlProvisioning"); });
}

void CallSteps::setKeySensitive(const std::wstring& key) {
    change([&] { state.chain.setKeySensitive(key); });
    change([&] {
        if (onServicesThread) {
            state.makeRecordSensitive(key);
        } else {
            state.post(Task::ofKey(Task::Kind::MakeSensitive, key));
        }
    });
}

std::string CallSteps::report() {
    return narrow(read([&] {
        std::wstring text;
        for (const auto& store : state.chain.getStores()) {
            const auto& shape = store->shape;
            if (shape.name == "lumora-config-defaults.xml" || shape.pairs.empty()) {
                continue;
            }
            text += L"[" + widen(shape.name) + L" " + std::to_wstring(shape.priority) + L"]";
            for (const auto& [key, value] : shape.pairs) {
                text += L" " + key + L"=" + value;
            }
        }
        return text;
    }));
}

// The life of the feature set.

void CallSteps::acquireLife() {
    if (state.lifeHolder) {
        block();
    }
    state.lifeHolder = event;
}

void CallSteps::start() {
    const bool isNew = test([&] {
        acquireLife();
        if (state.started) {
            releaseLife();
        }
        return !state.started;
    });
    if (!isNew) {
        return;
    }
    if (!test([&] { return state.chain.hasStore("InMemoryConfigStore"); })) {
        addMemoryStore();
    }
    if (!test([&] { return state.chain.hasStore("LocalFileConfigStore"); })) {
        addUserStore();
    }
    change([&] {
        state.started = true;
        releaseLife();
    });
}

void CallSteps::stop() {
    const bool wasStarted = test([&] {
        acquireLife();
        if (!state.started) {
            releaseLife();
        }
        return state.started;
    });
    if (!wasStarted) {
        return;
    }
    change([&] {
        if (onServicesThread) {
            state.run({.kind = Task::Kind::RemoveNonLocalStores});
        } else {
            state.post({.kind = Task::Kind::RemoveNonLocalStores});
        }
    });
    change([&] {
        if (!state.stopRan) {
            block();
        }
        state.stopRan = false;
        state.started = false;
        releaseLife();
    });
}

void CallSteps::refresh() {
    change([&] {
        acquireLife();
        state.chain.removeNonLocalStores();
    });
    rebuild();
    change([&] { releaseLife(); });
}

void CallSteps::rebuild() {
    addMemoryStore();
    addUserStore();
    change([&] {
        state.chain.addStore(StoreShape{.kind = StoreShape::Kind::Registry,
                                        .name = "RegistryConfigStore",
                                        .priority = 33,
                                        .pairs = state.policy,
                                        .local = false});
    });
    initialiseCachedStores();
    const auto files = listCachedFiles();
    if (std::count(files.begin(), files.end(), copyNameOf("TftpStore")) > 0) {
        deriveFlags();
    }
    removeValuesIfPolicySet();
}

void CallSteps::addMemoryStore() {
    change([&] {
        state.chain.addStore(StoreShape{
            .kind = StoreShape::Kind::Memory, .name = "InMemoryConfigStore", .priority = 600, .readOnly = false});
    });
}

void CallSteps::addUserStore() {
    const auto content = step([&] { return StepResult{.pairs = readBack(state.userFile.value_or(Pairs()))}; }).pairs;
    change([&] {
        state.chain.addStore(StoreShape{.kind = StoreShape::Kind::UserFile,
                                        .name = "LocalFileConfigStore",
                                        .priority = 20,
                                        .pairs = content,
                                        .readOnly = false,
                                        .local = false});
    });
}

void CallSteps::initialiseCachedStores() {
    const auto record = read([&] { return state.valueOf(L"PrimaryConfigStores"); });
    for (const auto& [name, priority] : readRecord(record)) {
        addCopy(narrow(name), readPriority(priority));
    }
    const auto allowed = read([&] { return state.chain.getValueOfStore("MdmConfigStore", L"AllowUrlProvisioning"); });
    if (isSame(allowed, L"false")) {
        removeStore(urlStore);
    } else {
        addCopy(urlStore, 499);
    }
}

void CallSteps::addCopy(const std::string& name, int priority) {
    const auto content = step([&] {
        const bool exists = state.chain.getCachedFiles().contains(copyNameOf(name));
        return StepResult{.pairs = exists ? readBack(state.copies[copyNameOf(name)]) : Pairs()};
    });
    change([&] { state.chain.addStore(makeCopyShape(name, priority, content.pairs)); });
}

void CallSteps::resetAllData() {
    change([&] {
        acquireLife();
        if (state.writingUserFile) {
            block(); // the reset of the user's store waits for a write of its file
        }
        state.chain.resetConfigData();
    });
    const bool hasUserFile = test([&] { return state.userFile.has_value(); });
    for (const auto& file : listCachedFiles()) {
        if (!isSame(file, copyNameOf(urlStore))) {
            change([&] { state.chain.removeCachedFiles(file); });
        }
    }
    if (hasUserFile) {
        change([&] { state.userFile.reset(); });
    }
    change([&] {
        state.policy.clear();
        state.chain.removeNonLocalStores();
    });
    rebuild();
    change([&] { releaseLife(); });
}

void CallSteps::powerDown() {
    change([&] {
        acquireLife();
        state.chain.destroyStores();
    });
    change([&] {
        state.started = false;
        releaseLife();
    });
}

// Tasks of the dispatchers.

void CallSteps::runPosted(std::size_t place) {
    change([&] {
        const auto found = state.queue.find(place);
        if (found == state.queue.end()) {
            block();
            return;
        }
        const auto task = found->second;
        state.queue.erase(found);
        state.run(task);
    });
}

std::string CallSteps::runBackground() {
    const auto firstOf = [this]() -> const ChainModel::Task& { return state.chain.getTasks().front(); };
    const auto removeFirst = [this] {
        state.chain.removeFirstTask();
        ++state.backgroundRun;
    };
    const auto told = read([&]() -> std::wstring {
        if (state.chain.getTasks().empty()) {
            block();
            return L"";
        }
        const auto task = firstOf();
        if (task.store && task.store->shape.kind == StoreShape::Kind::UserFile &&
            task.store->lastPersisted != task.store->shape.pairs) {
            return L"write"; // the file follows
        }
        removeFirst();
        return widen(task.store ? task.name : "observer " + std::to_string(task.observer) + " " + task.arrived);
    });
    if (told != L"write") {
        return narrow(told);
    }
    const auto content = step([&] {
        auto& store = *firstOf().store;
        store.lastPersisted = store.shape.pairs;
        const auto& stores = state.chain.getStores();
        state.writingUserFile = std::count(stores.begin(), stores.end(), firstOf().store) > 0;
        return StepResult{.yes = !store.destroyed, .pairs = store.shape.pairs};
    });
    change([&] {
        if (content.yes) {
            state.userFile = content.pairs;
        }
        state.writingUserFile = false;
        removeFirst();
    });
    return "ConfigStore::persistValues";
}

// Before and after a history.

HistoryState makeStartedState(const Pairs& policy, const std::vector<Call>& before) {
    HistoryState state(policy);
    const auto run = [&state](const Call& call) { CallSteps::runAll(state, call); };
    state.chain.addStore(StoreShape{.kind = StoreShape::Kind::Defaults,
                                    .name = "lumora-config-defaults.xml",
                                    .priority = std::numeric_limits<int>::max(),
                                    .pairs = shippedDefaults});
    run({.kind = Kind::Refresh});
    run({.kind = Kind::Start});
    for (const auto& key : watchedKeys) {
        state.records.get(key, false);
    }
    for (const auto& call : before) {
        run(call);
    }
    while (!state.chain.getTasks().empty()) {
        run({.kind = Kind::RunBackground});
    }
    state.takeFired();
    state.takePosted();
    state.backgroundRun = 0;
    return state;
}

std::string describeLookup(const std::wstring& key, const Reading& reading) {
    return narrow(key) + (reading.found ? " found " : " missed ") + narrow(reading.value) + " [" +
           narrow(reading.store) + "]" + (reading.fromLegacyKey ? " old name" : "");
}

std::vector<std::string> describeEnd(HistoryState& state) {
    std::vector<std::string> lines;
    for (const auto& key : watchedKeys) {
        lines.push_back(describe(state.records.get(key, false)));
        lines.push_back(describeLookup(key, state.chain.getValue(key, false, "")));
    }
    for (const auto& file : state.chain.getCachedFiles()) {
        lines.push_back("file: " + file);
    }
    return lines;
}

} // namespace config_model
