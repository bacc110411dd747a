#include "HistoryState.h"

#include <algorithm>

namespace config_model {

const std::vector<std::wstring> watchedKeys = {
    L"TFTPPrimaryServer",
    L"CTIPrimaryServer",
    L"Zed",
    L"_mark",
    L"Telephony_Enabled",
    L"Voicemail_Enabled",
    L"Meetings_Enabled",
    L"ServicesDomain",
    L"Customize_Phone_Server",
    L"AllowUrlProvisioning",
    L"ip_mode",
    L"PrimaryConfigStores",
};

const Pairs shippedDefaults = {
    {L"telephony_enabled", L"true"},
    {L"voicemail_enabled", L""},
    {L"meetings_enabled", L"false"},
    {L"zed", L"shipped"},
};

namespace {

template <class Texts>
void addAll(StateHash& hash, const Texts& texts) {
    hash.add(texts.size());
    for (const auto& text : texts) {
        hash.add(text);
    }
}

} // namespace

HistoryState::Task HistoryState::Task::ofKey(Kind kind, const std::wstring& key) {
    Task task{.kind = kind};
    task.change.key = key;
    return task;
}

std::string HistoryState::Task::getName() const {
    switch (kind) {
    case Kind::Fire:
        return "ConfigServiceImpl::FireIfRequired - " + narrow(change.key);
    case Kind::RemoveNonLocalStores:
        return "ConfigStoreManager::reset";
    case Kind::Change:
    case Kind::MakeSensitive:
        break;
    }
    return "ConfigServiceImpl::OnConfigChanged";
}

HistoryState::HistoryState(const Pairs& administratorsPolicy) {
    data.policy = administratorsPolicy;
    connect();
    for (const auto& key : watchedKeys) {
        data.records.watch(key);
    }
}

void HistoryState::connect() {
    data.records.fired = [this](const std::wstring& key, const std::string& property) {
        data.fired.push_back(property + " of " + config_model::describe(data.records.get(key, false)));
    };
    data.chain.changed = [this](const Change& change) {
        if (!data.onServicesThread) {
            post({.kind = Task::Kind::Change, .change = change});
            return;
        }
        // A change on the services thread overtakes those that are queued. They must not restore an older value.
        for (auto& [position, task] : data.queue) {
            task.outdated = task.outdated || (task.kind == Task::Kind::Change && isSame(task.change.key, change.key));
        }
        data.records.change(change, false);
    };
    data.chain.mayFire = [this](const std::wstring& key) {
        if (data.onServicesThread) {
            data.records.fire(key);
        } else {
            post(Task::ofKey(Task::Kind::Fire, key));
        }
    };
    // Adding a sensitive key and announcing it are two steps, and the caller makes the second one.
    data.chain.madeSensitive = [](const std::wstring&) {};
    data.chain.told = [](const std::string&) {};
}

void HistoryState::run(const Task& task) {
    switch (task.kind) {
    case Task::Kind::Change:
        if (!task.outdated) {
            data.records.change(task.change, false);
        }
        break;
    case Task::Kind::Fire:
        data.records.fire(task.change.key);
        break;
    case Task::Kind::MakeSensitive:
        makeRecordSensitive(task.change.key);
        break;
    case Task::Kind::RemoveNonLocalStores:
        data.chain.removeNonLocalStores();
        data.stopRan = true;
        break;
    }
}

bool HistoryState::isRecordSensitive(const std::wstring& key) const {
    return std::any_of(data.sensitiveRecords.begin(), data.sensitiveRecords.end(),
                       [&](const auto& each) { return isSame(each, key); });
}

void HistoryState::addTo(StateHash& hash) const {
    addChainTo(hash);
    hash.add(data.records.getRecords().size());
    for (const auto& record : data.records.getRecords()) {
        for (const auto* const text : {&record.key, &record.value, &record.originalValue, &record.valueStoreName,
                                       &record.originalValueStoreName}) {
            hash.add(*text);
        }
        hash.add(record.isOverridden);
        hash.add(record.isDefined);
        addAll(hash, record.pending);
    }
    addAll(hash, data.sensitiveRecords);
    hash.add(data.queue.size());
    for (const auto& [position, task] : data.queue) {
        hash.add(position);
        hash.add(static_cast<std::uint64_t>(task.kind));
        hash.add(task.outdated);
        for (const auto* const text : {&task.change.key, &task.change.value, &task.change.originalValue,
                                       &task.change.valueStoreName, &task.change.originalValueStoreName}) {
            hash.add(*text);
        }
        for (const bool flag : {task.change.isOverridden, task.change.isDefined, task.change.deferFire}) {
            hash.add(flag);
        }
    }
    hash.add(data.copies.size());
    for (const auto& [file, pairs] : data.copies) {
        hash.add(file);
        hash.add(pairs);
    }
    hash.add(data.userFile.has_value());
    hash.add(data.userFile.value_or(Pairs()));
    hash.add(data.policy);
    hash.add(data.started);
    hash.add(data.stopRan);
    hash.add(data.writingUserFile);
    hash.add(data.backgroundRun);
    hash.add(data.lifecycleHolder.has_value());
    hash.add(data.lifecycleHolder.value_or(0));
}

void HistoryState::addChainTo(StateHash& hash) const {
    const auto addStore = [&hash](const ModelStore& store) {
        const auto& shape = store.shape;
        hash.add(static_cast<std::uint64_t>(shape.kind));
        hash.add(shape.name);
        hash.add(static_cast<std::uint64_t>(shape.priority));
        for (const bool flag : {shape.readOnly, shape.local, shape.caching, shape.refusesWrites, store.destroyed}) {
            hash.add(flag);
        }
        hash.add(shape.pairs);
        hash.add(store.lastPersisted);
    };
    const auto& stores = data.chain.getStores();
    hash.add(stores.size());
    for (const auto& store : stores) {
        addStore(*store);
    }
    hash.add(data.chain.getTasks().size());
    for (const auto& task : data.chain.getTasks()) {
        hash.add(task.name);
        hash.add(task.observer);
        hash.add(task.arrived);
        hash.add(task.store != nullptr);
        if (task.store) {
            hash.add(std::count(stores.begin(), stores.end(), task.store) > 0);
            addStore(*task.store);
        }
    }
    hash.add(data.chain.getStoreObservers().size());
    for (const auto number : data.chain.getStoreObservers()) {
        hash.add(number);
    }
    addAll(hash, data.chain.getSensitiveKeys());
    addAll(hash, data.chain.getCachedFiles());
}

} // namespace config_model
