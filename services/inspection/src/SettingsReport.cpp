#include "SettingsReport.h"

#include <ConfigCatalogue.h>

#include <utility>

namespace inspection {

using KyrCoreUtils::toString;
using KyrCoreUtils::toWideString;
using Code = RequestError::Code;
namespace ConfigKeys = ZelUnified::ConfigKeys;

namespace {

/// Few enough that a slice takes a fraction of a millisecond.
constexpr std::size_t valuesPerSlice = 64;

constexpr auto user = "user";
constexpr auto effective = "effective";
constexpr auto administrator = "administrator";

} // namespace

SettingsReport::SettingsReport(std::shared_ptr<const ConfigInspector> configInspector, const InspectionRequest& request)
    : inspector(std::move(configInspector)),
      showSecrets(request.showSecrets),
      administrators(request.source == administrator),
      report{{"type", "dump"}, {"source", request.source}, {"values", Json::array()}} {
    const bool isUsers = request.source == user;
    if (request.source.empty() == request.store.empty() ||
        (request.store.empty() && !isUsers && !administrators && request.source != effective)) {
        throw RequestError(Code::Usage,
                           "a dump needs the field \"store\", or \"source\" with user, effective or administrator");
    }
    if (!isUsers && request.store.empty()) {
        return;
    }
    const auto name = isUsers ? std::string(ConfigKeys::localFileConfigStore) : request.store;
    store = inspector->getFeatureSet().getConfigStoreByName(name);
    if (!store) {
        throw RequestError(Code::Refused, "there is no store '" + name + "'");
    }
    const auto held = store->getKeys();
    keys = ZelUnified::ConfigKeySet(held.begin(), held.end());
    if (isUsers) {
        keys.erase(std::wstring(ConfigKeys::primaryConfigStores)); // describes other files of the profile
    } else {
        report["source"] = store->getName();
    }
}

bool SettingsReport::proceed() {
    return store ? readStored() : readRecords();
}

bool SettingsReport::readRecords() {
    const auto before = last;
    const auto records = inspector->getRecords().getRecordsAfter(last, valuesPerSlice);
    for (const auto& record : records) {
        last = record->getKey();
        if (!record->getisDefined()) {
            continue;
        }
        if (!administrators) {
            add(last, record->getValue(), record->getValueStoreName());
        } else if (const auto reading = inspector->read(last, true)) {
            add(last, reading->value, reading->storeName);
        }
    }
    // The report ends although the client adds records: each slice begins behind the last one.
    return records.size() == valuesPerSlice && KyrCoreUtils::caseInsensitiveStringCompare(before, last) < 0;
}

bool SettingsReport::readStored() {
    const auto storeName = toWideString(store->getName());
    std::wstring value;
    for (std::size_t count = 0; count < valuesPerSlice && !keys.empty(); ++count) {
        const auto key = keys.extract(keys.begin()).value();
        if (store->getValue(key, value)) {
            add(key, value, storeName);
        }
    }
    return !keys.empty();
}

void SettingsReport::add(const std::wstring& key, const std::wstring& value, const std::wstring& storeName) {
    const bool sensitive = inspector->isSensitive(key);
    const bool hidden = sensitive && !showSecrets;
    report["values"].push_back({{"key", toString(ConfigKeys::spellKey(key))},
                                {"value", hidden ? Json() : Json(toString(value))},
                                {"store", toString(storeName)},
                                {"sensitive", sensitive},
                                {"hidden", hidden}});
}

} // namespace inspection
