#include "CallSteps.h"

#include "ModelUrl.h"
#include "StartedState.h"
#include "StoreRecord.h"

namespace config_model {

namespace {

using Kind = Call::Kind;
using Task = HistoryState::Task;

} // namespace

bool CallSteps::runNext(const Call& call) {
    position = 0;
    hasRun = false;
    hasMore = false;
    isBlocked = false;
    state.enter(onServicesThread);
    answer = perform(call);
    state.data.chain.takeLog();
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
        return toText(removeStore(call.name));
    case Kind::IsStorePresent:
        return toText(test([&] { return state.data.started; }) &&
                      test([&] { return state.data.chain.hasStore(call.name); }));
    case Kind::RemoveAllCachedStores:
        removeAllCachedStores();
        return "none";
    case Kind::SetMdmConfig:
        setMdmConfig(call.pairs);
        return "none";
    case Kind::GetConfig:
        return narrow(read(
            [&] { return widen(describeLookup(call.key, state.data.chain.getValue(call.key, call.skipLocal, ""))); }));
    case Kind::GetValueOfStore:
        return narrow(read([&] { return state.data.chain.getValueOfStore(call.name, call.key); }));
    case Kind::SetConfig:
        return toText(test([&] { return state.data.chain.storeValue(call.key, call.value); }));
    case Kind::SetConfigMap:
        return toText(test([&] { return state.data.chain.storeValues(call.pairs); }));
    case Kind::SetInMemoryConfig:
        return toText(test([&] { return state.data.chain.setInMemoryValue(call.key, call.value); }));
    case Kind::ResetConfig:
        change([&] { state.data.chain.removeValue(call.key); });
        return "none";
    case Kind::Provision:
        return toText(provision(call.value));
    case Kind::ResetProvisioning:
        return toText(resetProvisioning());
    case Kind::SetKeySensitive:
        setKeySensitive(call.key);
        return "none";
    case Kind::IsKeySensitive:
        return toText(test([&] { return state.data.chain.isKeySensitive(call.key); }));
    case Kind::RegisterObserver:
        change([&] { state.data.chain.registerStoreObserver(call.observer); });
        return "none";
    case Kind::UnregisterObserver:
        change([&] { state.data.chain.unregisterStoreObserver(call.observer); });
        return "none";
    case Kind::Report:
        return report();
    case Kind::GetRecord:
        return narrow(read([&] { return widen(describe(state.data.records.get(call.key, false))); }));
    case Kind::IsRecordSensitive:
        return toText(test([&] { return state.isRecordSensitive(call.key); }));
    case Kind::RunPosted:
        runPosted(call.position);
        return "none";
    case Kind::RunBackground:
        return runBackground();
    default:
        return performLifecycle(call);
    }
}

std::string CallSteps::copyNameOf(const std::string& storeName) {
    return "cached" + storeName + ".dat";
}

Pairs CallSteps::readBack(const Pairs& pairs) {
    Pairs result;
    for (const auto& [key, value] : pairs) {
        result.emplace_back(toSmallLetters(key), value);
    }
    return result;
}

// Stores.

std::string CallSteps::addStore(const StoreShape& shape) {
    if (!test([&] { return state.data.started; })) {
        return "none";
    }
    change([&] { state.data.chain.addStore(shape); });
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
        state.data.chain.storeValue(L"PrimaryConfigStores", recordWith(state.valueOf(L"PrimaryConfigStores"),
                                                                       shape.name, store.getCachedPriority()));
    });
    change([&] {
        state.data.copies[copyNameOf(shape.name)] = store.shape.pairs;
        state.data.chain.placeCachedFile(copyNameOf(shape.name));
    });
}

bool CallSteps::removeStore(const std::string& name) {
    if (!test([&] { return state.data.started; })) {
        return false;
    }
    const bool removed = test([&] { return state.data.chain.hasStore(name); }) &&
                         test([&] { return state.data.chain.removeStore(name); });
    change([&] {
        state.data.chain.storeValue(L"PrimaryConfigStores", recordWithout(state.valueOf(L"PrimaryConfigStores"), name));
    });
    return removed;
}

void CallSteps::removeAllCachedStores() {
    for (const auto& file : listCachedFiles()) {
        change([&] { state.data.chain.removeCachedFiles(file); });
    }
}

std::vector<std::string> CallSteps::listCachedFiles() {
    const auto list = step([&] {
        StepResult result;
        for (const auto& file : state.data.chain.listCachedFiles()) {
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
            change([&] { state.data.chain.removeValue(key); });
        }
    }
}

/// The scripts hold no key of voicemail and meetings, so that these flags are always false.
void CallSteps::deriveFlags() {
    const bool isLeftToDerivation = test([&] {
        const auto reading = state.data.chain.getValue(L"Telephony_Enabled", true, "");
        return isSame(narrow(reading.store), "lumora-config-defaults.xml");
    });
    if (isLeftToDerivation) {
        const auto server = read([&] { return state.valueOf(L"CtiServer1"); });
        change([&] { state.data.chain.setInMemoryValue(L"Telephony_Enabled", server.empty() ? L"false" : L"true"); });
    }
    change([&] { state.data.chain.setInMemoryValue(L"Voicemail_Enabled", L"false"); });
    change([&] { state.data.chain.setInMemoryValue(L"Meetings_Enabled", L"false"); });
}

void CallSteps::setMdmConfig(const Pairs& pairs) {
    // Unlike elsewhere, the first of two elements of one key wins.
    change([&] {
        state.data.chain.addStore(StoreShape{.kind = StoreShape::Kind::DeviceManagement,
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
            state.data.copies[copyNameOf(urlStore)] = pairs;
        }
        return state.data.chain.setUrlProvisioningData(url);
    });
}

bool CallSteps::resetProvisioning() {
    return isSame(read([&] { return state.valueOf(L"AllowUrlProvisioning"); }), L"false") &&
           test([&] { return state.data.chain.removeValue(L"AllowUrlProvisioning"); });
}

void CallSteps::setKeySensitive(const std::wstring& key) {
    change([&] { state.data.chain.setKeySensitive(key); });
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
        for (const auto& store : state.data.chain.getStores()) {
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

// Tasks of the dispatchers.

void CallSteps::runPosted(std::size_t place) {
    change([&] {
        const auto found = state.data.queue.find(place);
        if (found == state.data.queue.end()) {
            block();
            return;
        }
        const auto task = found->second;
        state.data.queue.erase(found);
        state.run(task);
    });
}

std::string CallSteps::runBackground() {
    const auto firstOf = [this]() -> const ChainModel::Task& { return state.data.chain.getTasks().front(); };
    const auto removeFirst = [this] {
        state.data.chain.removeFirstTask();
        ++state.data.backgroundRun;
    };
    const auto effect = read([&]() -> std::wstring {
        if (state.data.chain.getTasks().empty()) {
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
    if (effect != L"write") {
        return narrow(effect);
    }
    const auto content = step([&] {
        auto& store = *firstOf().store;
        store.lastPersisted = store.shape.pairs;
        state.data.writingUserFile = true;
        return StepResult{.yes = !store.destroyed, .pairs = store.shape.pairs};
    });
    change([&] {
        if (content.yes) {
            state.data.userFile = content.pairs;
        }
        state.data.writingUserFile = false;
        removeFirst();
    });
    return "ConfigStore::persistValues";
}

} // namespace config_model
