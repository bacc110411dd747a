#include "ConfigInspector.h"

#include "KeyReport.h"
#include "RequestError.h"

#include <ConfigCatalogue.h>
#include <SensitivePolicies.h>

#include <algorithm>
#include <utility>

namespace inspection {

using KyrCoreUtils::caseInsensitiveStringEquals;
using KyrCoreUtils::toString;
using ZelUnified::ConfigStore;
using ZelUnified::ConfigKeys::getKeyNames;
using ZelUnified::ConfigKeys::spellKey;

ConfigInspector::ConfigInspector(const std::shared_ptr<ZelUnified::UnifiedFactory>& factory)
    : service(factory->getServiceByType<ZelUnified::ConfigService>()),
      featureSet(factory->getFeatureSetByType<ZelUnified::ConfigFeatureSet>()),
      records(std::dynamic_pointer_cast<ZelUnified::ConfigRecords>(service)),
      chain(std::dynamic_pointer_cast<ZelUnified::ConfigChainView>(featureSet)) {
    if (isUsable()) {
        ZelUnified::markSensitiveKeys(*featureSet);
    }
}

std::optional<ConfigInspector::Reading> ConfigInspector::read(const std::wstring& key, bool administratorsOnly) const {
    Reading reading;
    if (!featureSet->getConfig(key, reading.value, reading.storeName, reading.underOldName, administratorsOnly)) {
        return std::nullopt;
    }
    return reading;
}

std::optional<ConfigInspector::Reading> ConfigInspector::readStore(const std::string& storeName,
                                                                   const std::wstring& key) const {
    const auto store = featureSet->getConfigStoreByName(storeName);
    if (!store) {
        throw RequestError(RequestError::Code::Refused, "there is no store '" + storeName + "'");
    }
    const auto names = getKeyNames(key);
    for (const auto& name : names.getAll()) {
        std::wstring value;
        if (store->getValue(name, value)) {
            return Reading{service->getValueFromConfigStore(storeName, key),
                           KyrCoreUtils::toWideString(store->getName()), name == names.oldName};
        }
    }
    return std::nullopt;
}

Json ConfigInspector::showValue(const std::wstring& key, std::optional<Reading> reading, bool showSecrets) const {
    Json object{{"type", "value"}, {"key", toString(key)}};
    object.update(showReading(key, reading, showSecrets));
    return object;
}

Json ConfigInspector::beginExplanation(const std::wstring& key, bool showSecrets) const {
    const auto names = getKeyNames(key);
    Json object{{"type", "explanation"}, {"key", toString(spellKey(key))}, {"newName", toString(names.newName)}};
    object["oldName"] = names.oldName ? Json(toString(*names.oldName)) : Json();
    object.update(showReading(key, read(key, false), showSecrets));
    object["stores"] = Json::array();
    object["administrator"] = showReading(key, read(key, true), showSecrets);
    const auto record = records->findRecord(key);
    object["defined"] = record && record->getisDefined();
    object["overridden"] = record && record->getisOverridden();
    object["originalValue"] = toString(mask(key, record ? record->getOriginalValue() : L"", showSecrets));
    object["originalStore"] = record ? toString(record->getOriginalValueStoreName()) : "";
    return object;
}

Json ConfigInspector::showOpinion(ConfigStore& store, const std::wstring& key, const std::optional<Reading>& winner,
                                  bool showSecrets) const {
    auto object = showStore(store);
    auto holdings = showHoldings(store, key, winner, showSecrets);
    object["wins"] = std::ranges::any_of(holdings, [](const Json& holding) { return holding["wins"].get<bool>(); });
    object["holds"] = std::move(holdings);
    return object;
}

Json ConfigInspector::showHoldings(ConfigStore& store, const std::wstring& key, const std::optional<Reading>& winner,
                                   bool showSecrets) const {
    const auto names = getKeyNames(key);
    const bool storeWins =
        winner && caseInsensitiveStringEquals(KyrCoreUtils::toWideString(store.getName()), winner->storeName);
    Json holdings = Json::array();
    for (const auto& name : names.getAll()) {
        std::wstring value;
        if (store.getValue(name, value)) {
            holdings.push_back({{"name", toString(name)},
                                {"value", toString(mask(key, value, showSecrets))},
                                {"wins", storeWins && (name == names.oldName) == winner->underOldName}});
        }
    }
    return holdings;
}

Json ConfigInspector::showRecord(ZelUnified::ConfigValue& record, bool showSecrets) const {
    const auto key = record.getKey();
    return {{"key", toString(spellKey(key))},
            {"value", toString(mask(key, record.getValue(), showSecrets))},
            {"store", toString(record.getValueStoreName())},
            {"overridden", record.getisOverridden()}};
}

Json ConfigInspector::showStored(ConfigStore& store, const std::wstring& key, bool showSecrets) const {
    std::wstring value;
    if (!store.getValue(key, value)) {
        return {};
    }
    const auto record = records->findRecord(key);
    return {{"key", toString(spellKey(key))},
            {"value", toString(mask(key, value, showSecrets))},
            {"store", store.getName()},
            {"overridden", record && record->getisDefined() && record->getisOverridden()}};
}

Json ConfigInspector::describe(const std::wstring& key, bool showSecrets) const {
    const auto* const row = ZelUnified::ConfigKeys::findKey(key);
    const auto reading = read(key, false);
    if (row == nullptr && !reading) {
        return {};
    }
    Json object{{"type", "description"}, {"key", toString(key)}, {"known", row != nullptr}};
    if (row != nullptr) {
        object.update(showKey(*row));
    }
    object["sensitive"] = isSensitive(key);
    object.update(showReading(key, reading, showSecrets));
    return object;
}

Json ConfigInspector::showStore(ConfigStore& store) {
    return {{"priority", store.getPriority()},
            {"name", store.getName()},
            {"readOnly", store.isReadOnly()},
            {"local", store.isLocal()},
            {"keys", store.getKeys().size()}};
}

bool ConfigInspector::userHolds(const std::wstring& key) const {
    const auto names = getKeyNames(key).getAll();
    return std::ranges::any_of(getStores(), [&](const auto& store) {
        std::wstring value;
        return !store->isReadOnly() &&
               std::ranges::any_of(names, [&](const std::wstring& name) { return store->getValue(name, value); });
    });
}

std::optional<std::wstring> ConfigInspector::readUsersValue(const std::wstring& key) const {
    const auto store = featureSet->getConfigStoreByName(std::string(ZelUnified::ConfigKeys::localFileConfigStore));
    std::wstring value;
    for (const auto& name : getKeyNames(key).getAll()) {
        if (store && store->getValue(name, value)) {
            return value;
        }
    }
    return std::nullopt;
}

std::string ConfigInspector::describeOutcome(const std::wstring& key) const {
    const auto reading = read(key, false);
    if (!reading) {
        return "no store contains the key now";
    }
    return "in force: \"" + toString(mask(key, reading->value, false)) + "\" from " + toString(reading->storeName);
}

bool ConfigInspector::administratorAllowsChanges() const {
    const auto policy = read(std::wstring(ZelUnified::ConfigKeys::inspectionAllowsChanges), true);
    return !policy || KyrCoreUtils::toBool(policy->value);
}

bool ConfigInspector::isSensitive(const std::wstring& key) const {
    return std::ranges::any_of(getKeyNames(key).getAll(),
                               [this](const std::wstring& name) { return featureSet->isKeySensitive(name); });
}

std::wstring ConfigInspector::mask(const std::wstring& key, const std::wstring& value, bool showSecrets) const {
    return showSecrets || !isSensitive(key) ? value : std::wstring(ZelUnified::ConfigKeys::valueHidden);
}

Json ConfigInspector::showReading(const std::wstring& key, const std::optional<Reading>& reading,
                                  bool showSecrets) const {
    Json object{{"found", reading.has_value()}};
    if (reading) {
        object["value"] = toString(mask(key, reading->value, showSecrets));
        object["store"] = toString(reading->storeName);
        object["underOldName"] = reading->underOldName;
    }
    return object;
}

} // namespace inspection
