#include "ServiceRecords.h"

#include "KeyNames.h"

#include <algorithm>

namespace config_model {

namespace {

const std::string firingOrder[] = {"Value",     "OriginalValue",  "isOverridden",
                                   "isDefined", "ValueStoreName", "OriginalValueStoreName"};

} // namespace

std::string describe(const RecordView& record) {
    return narrow(record.key) + ": " + narrow(record.value) + " [" + narrow(record.valueStoreName) + "] | " +
           narrow(record.originalValue) + " [" + narrow(record.originalValueStoreName) + "]" +
           (record.isOverridden ? " overridden" : "") + (record.isDefined ? "" : " undefined");
}

void ServiceRecords::change(const Change& change, bool fips) {
    auto& record = find(change.key);
    if (!isSame(valueOf(record, fips), change.value)) {
        record.value = change.value;
        note(record, "Value");
    }
    if (!isSame(record.originalValue, change.originalValue)) {
        record.originalValue = change.originalValue;
        note(record, "OriginalValue");
    }
    if (record.isOverridden != change.isOverridden) {
        record.isOverridden = change.isOverridden;
        note(record, "isOverridden");
    }
    if (record.isDefined != change.isDefined) {
        record.isDefined = change.isDefined;
        note(record, "isDefined");
    }
    if (record.valueStoreName != change.valueStoreName) {
        record.valueStoreName = change.valueStoreName;
        note(record, "ValueStoreName");
    }
    if (record.originalValueStoreName != change.originalValueStoreName) {
        record.originalValueStoreName = change.originalValueStoreName;
        note(record, "OriginalValueStoreName");
    }
    if (!change.deferFire) {
        fire(change.key);
    }
}

void ServiceRecords::fire(const std::wstring& key) {
    auto& record = find(key);
    const bool watched =
        std::any_of(watchedKeys.begin(), watchedKeys.end(), [&](const auto& each) { return isSame(each, record.key); });
    for (const auto& property : firingOrder) {
        if (std::erase(record.pending, property) > 0 && watched) {
            fired(record.key, property);
        }
    }
}

RecordView ServiceRecords::get(const std::wstring& key, bool fips) {
    const auto& record = find(key);
    RecordView view = record;
    view.value = valueOf(record, fips);
    return view;
}

ServiceRecords::Record& ServiceRecords::find(const std::wstring& key) {
    const auto newName = findNewName(key);
    auto* record = newName.empty() ? nullptr : findExactly(newName);
    record = record ? record : findExactly(key);
    if (record) {
        return *record;
    }
    Record fresh;
    fresh.key = newName.empty() ? key : newName;
    records.push_back(fresh);
    return records.back();
}

ServiceRecords::Record* ServiceRecords::findExactly(const std::wstring& key) {
    for (auto& record : records) {
        if (isSame(record.key, key)) {
            return &record;
        }
    }
    return nullptr;
}

std::wstring ServiceRecords::valueOf(const Record& record, bool fips) {
    return fips && isSame(record.key, L"Telephony_P2P_Enabled") ? L"false" : record.value;
}

void ServiceRecords::note(Record& record, const std::string& property) {
    if (std::count(record.pending.begin(), record.pending.end(), property) == 0) {
        record.pending.push_back(property);
    }
}

} // namespace config_model
