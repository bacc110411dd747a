#include "HistoryState.h"

#include "ChainStep.h"

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

HistoryState::HistoryState(const Pairs& administratorsPolicy) : policy(administratorsPolicy) {
    connect();
    for (const auto& key : watchedKeys) {
        records.watch(key);
    }
}

HistoryState::HistoryState(const HistoryState& other)
    : chain(other.chain),
      records(other.records),
      queue(other.queue),
      policy(other.policy),
      userFile(other.userFile),
      copies(other.copies),
      started(other.started),
      backgroundRun(other.backgroundRun),
      lifeHolder(other.lifeHolder),
      stopRan(other.stopRan),
      writingUserFile(other.writingUserFile),
      sensitiveRecords(other.sensitiveRecords) {
    connect();
}

void HistoryState::connect() {
    records.fired = [this](const std::wstring& key, const std::string& property) {
        fired.push_back(property + " of " + config_model::describe(records.get(key, false)));
    };
    chain.changed = [this](const Change& change) {
        if (!onServicesThread) {
            post({.kind = Task::Kind::Change, .change = change});
            return;
        }
        // A change on the services thread overtakes those that are queued. They must not restore an older value.
        for (auto& [position, task] : queue) {
            task.outdated = task.outdated || (task.kind == Task::Kind::Change && isSame(task.change.key, change.key));
        }
        records.change(change, false);
    };
    chain.mayFire = [this](const std::wstring& key) {
        if (onServicesThread) {
            records.fire(key);
        } else {
            post(Task::ofKey(Task::Kind::Fire, key));
        }
    };
    // Adding a sensitive key and announcing it are two steps, and the caller makes the second one.
    chain.madeSensitive = [](const std::wstring&) {};
    chain.told = [](const std::string&) {};
}

void HistoryState::run(const Task& task) {
    switch (task.kind) {
    case Task::Kind::Change:
        if (!task.outdated) {
            records.change(task.change, false);
        }
        break;
    case Task::Kind::Fire:
        records.fire(task.change.key);
        break;
    case Task::Kind::MakeSensitive:
        makeRecordSensitive(task.change.key);
        break;
    case Task::Kind::RemoveNonLocalStores:
        chain.removeNonLocalStores();
        stopRan = true;
        break;
    }
}

bool HistoryState::isRecordSensitive(const std::wstring& key) const {
    return std::any_of(sensitiveRecords.begin(), sensitiveRecords.end(),
                       [&](const auto& each) { return isSame(each, key); });
}

std::string HistoryState::describe() const {
    std::string text = records.describe();
    for (const auto& store : chain.getStores()) {
        text += store->shape.name + std::to_string(store->shape.priority) + (store->destroyed ? "!" : "") +
                config_model::describe(store->shape.pairs) + config_model::describe(store->lastPersisted) + "\n";
    }
    for (const auto& task : chain.getTasks()) {
        text += task.name + std::to_string(task.observer) + task.arrived;
        if (task.store) {
            const auto& stores = chain.getStores();
            text += std::count(stores.begin(), stores.end(), task.store) > 0 ? "+" : "-";
            text += config_model::describe(task.store->shape.pairs) + config_model::describe(task.store->lastPersisted);
        }
    }
    for (const auto number : chain.getStoreObservers()) {
        text += "#" + std::to_string(number);
    }
    for (const auto& list : {chain.getSensitiveKeys(), sensitiveRecords}) {
        for (const auto& key : list) {
            text += "$" + narrow(key);
        }
        text += '/';
    }
    for (const auto& [position, task] : queue) {
        text += "@" + std::to_string(position) + (task.outdated ? "-" : "") + narrow(task.change.key) + "=" +
                narrow(task.change.value) + narrow(task.change.originalValue) + narrow(task.change.valueStoreName);
    }
    for (const auto& file : chain.getCachedFiles()) {
        text += "&" + file;
    }
    for (const auto& [file, pairs] : copies) {
        text += file + config_model::describe(pairs);
    }
    text += (userFile ? config_model::describe(*userFile) : "none") + config_model::describe(policy) +
            (started ? "s" : "-") + (stopRan ? "r" : "-") + (writingUserFile ? "w" : "-");
    return text + (lifeHolder ? std::to_string(*lifeHolder) : "");
}

} // namespace config_model
