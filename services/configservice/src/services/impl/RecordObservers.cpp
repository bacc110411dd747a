#include "RecordObservers.h"

#include <zel/ZelLog.h>

#include <exception>
#include <string>
#include <utility>

namespace ZelUnified {

namespace {

ZelLogger& observersLogger = ZelLogger_getLogger("ConfigService-RecordObservers");

ConfigRecordState stateOf(ConfigValueImpl& record) {
    return {record.getValue(),     record.getOriginalValue(),  record.getisOverridden(),
            record.getisDefined(), record.getValueStoreName(), record.getOriginalValueStoreName()};
}

void notify(ConfigRecordObserver& observer, const std::wstring& key, const ConfigRecordState& before,
            const ConfigRecordState& after) {
    try {
        observer.OnRecordChanged(key, before, after);
    } catch (const std::exception& failure) {
        // An inspecting service must not keep a change from the observers of the record.
        ZelLog(observersLogger, ZelLogLevel::Error, ZEL_HERE, std::string("An observer failed: ") + failure.what());
    }
}

} // namespace

void RecordObservers::add(std::weak_ptr<ConfigRecordObserver> observer) {
    observers.push_back(std::move(observer));
}

void RecordObservers::remove(const std::weak_ptr<ConfigRecordObserver>& observer) {
    const auto removed = observer.lock();
    std::erase_if(observers, [&](const auto& held) { return held.expired() || held.lock() == removed; });
}

std::optional<ConfigRecordState> RecordObservers::beginChange(ConfigValueImpl& record) const {
    return observers.empty() ? std::nullopt : std::optional(stateOf(record));
}

void RecordObservers::endChange(ConfigValueImpl& record, const std::optional<ConfigRecordState>& before) const {
    if (!before) {
        return;
    }
    const auto after = stateOf(record);
    if (after == *before) {
        return;
    }
    const auto key = record.getKey();
    const auto called = observers; // a callback may change the list
    for (const auto& weak : called) {
        if (const auto observer = weak.lock()) {
            notify(*observer, key, *before, after);
        }
    }
}

} // namespace ZelUnified
