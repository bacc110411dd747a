#include "CallSteps.h"
#include "StoreRecord.h"

#include <algorithm>

namespace config_model {

namespace {

using Kind = Call::Kind;
using Task = HistoryState::Task;

StoreShape makeCopyShape(const std::string& name, int priority, const Pairs& pairs) {
    return {.kind = StoreShape::Kind::Copy, .name = name, .priority = priority, .pairs = pairs};
}

} // namespace

std::string CallSteps::performLifecycle(const Call& call) {
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
        return toText(test([&] {
            if (state.data.lifecycleHolder) {
                block();
            }
            return state.data.started;
        }));
    default:
        break;
    }
    return "none";
}

void CallSteps::acquireLifecycleLock() {
    if (state.data.lifecycleHolder) {
        block();
    }
    state.data.lifecycleHolder = event;
}

void CallSteps::start() {
    const bool isNew = test([&] {
        acquireLifecycleLock();
        if (state.data.started) {
            releaseLifecycleLock();
        }
        return !state.data.started;
    });
    if (!isNew) {
        return;
    }
    if (!test([&] { return state.data.chain.hasStore("InMemoryConfigStore"); })) {
        addMemoryStore();
    }
    if (!test([&] { return state.data.chain.hasStore("LocalFileConfigStore"); })) {
        addUserStore();
    }
    change([&] {
        state.data.started = true;
        releaseLifecycleLock();
    });
}

void CallSteps::stop() {
    const bool wasStarted = test([&] {
        acquireLifecycleLock();
        if (!state.data.started) {
            releaseLifecycleLock();
        }
        return state.data.started;
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
        if (!state.data.stopRan) {
            block();
        }
        state.data.stopRan = false;
        state.data.started = false;
        releaseLifecycleLock();
    });
}

void CallSteps::refresh() {
    change([&] {
        acquireLifecycleLock();
        state.data.chain.removeNonLocalStores();
    });
    rebuild();
    change([&] { releaseLifecycleLock(); });
}

void CallSteps::rebuild() {
    addMemoryStore();
    addUserStore();
    change([&] {
        state.data.chain.addStore(StoreShape{.kind = StoreShape::Kind::Registry,
                                             .name = "RegistryConfigStore",
                                             .priority = 33,
                                             .pairs = state.data.policy,
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
        state.data.chain.addStore(StoreShape{
            .kind = StoreShape::Kind::Memory, .name = "InMemoryConfigStore", .priority = 600, .readOnly = false});
    });
}

void CallSteps::addUserStore() {
    const auto content =
        step([&] { return StepResult{.pairs = readBack(state.data.userFile.value_or(Pairs()))}; }).pairs;
    change([&] {
        state.data.chain.addStore(StoreShape{.kind = StoreShape::Kind::UserFile,
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
    const auto allowed =
        read([&] { return state.data.chain.getValueOfStore("MdmConfigStore", L"AllowUrlProvisioning"); });
    if (isSame(allowed, L"false")) {
        removeStore(urlStore);
    } else {
        addCopy(urlStore, 499);
    }
}

void CallSteps::addCopy(const std::string& name, int priority) {
    const auto content = step([&] {
        const bool exists = state.data.chain.getCachedFiles().contains(copyNameOf(name));
        return StepResult{.pairs = exists ? readBack(state.data.copies[copyNameOf(name)]) : Pairs()};
    });
    change([&] { state.data.chain.addStore(makeCopyShape(name, priority, content.pairs)); });
}

void CallSteps::resetAllData() {
    change([&] {
        acquireLifecycleLock();
        state.data.chain.resetConfigData();
    });
    change([&] {
        if (state.data.writingUserFile) {
            block(); // the reset waits for the write, whether or not the store is in the chain
        }
        emptyUserStoresWithQueuedWrites();
    });
    const bool hasUserFile = test([&] { return state.data.userFile.has_value(); });
    for (const auto& file : listCachedFiles()) {
        if (!isSame(file, copyNameOf(urlStore))) {
            change([&] { state.data.chain.removeCachedFiles(file); });
        }
    }
    if (hasUserFile) {
        change([&] { state.data.userFile.reset(); });
    }
    change([&] {
        state.data.policy.clear();
        state.data.chain.removeNonLocalStores();
    });
    rebuild();
    change([&] { releaseLifecycleLock(); });
}

void CallSteps::emptyUserStoresWithQueuedWrites() {
    for (const auto& task : state.data.chain.getTasks()) {
        if (task.store && task.store->shape.kind == StoreShape::Kind::UserFile) {
            task.store->removeAllValues();
        }
    }
}

void CallSteps::powerDown() {
    change([&] {
        acquireLifecycleLock();
        state.data.chain.destroyStores();
    });
    change([&] {
        state.data.started = false;
        releaseLifecycleLock();
    });
}

} // namespace config_model
