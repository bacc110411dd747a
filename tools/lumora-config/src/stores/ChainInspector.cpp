#include "ChainInspector.h"

#include "output/Failure.h"

#include <kyr/StringUtils.h>

#include <ConfigCatalogue.h>

#include <algorithm>
#include <utility>

namespace lumora_config {

using KyrCoreUtils::caseInsensitiveStringEquals;
using ZelUnified::ConfigStore;
using ZelUnified::ConfigKeys::getKeyNames;
using ZelUnified::ConfigKeys::KeyNames;

namespace {

StoreFacts factsOf(ConfigStore& store) {
    return {store.getName(), store.getPriority(), store.isReadOnly(), store.isLocal(), store.getKeys().size()};
}

bool beginsWith(std::wstring_view text, std::wstring_view prefix) {
    return text.size() >= prefix.size() && caseInsensitiveStringEquals(text.substr(0, prefix.size()), prefix);
}

Opinion askStore(ConfigStore& store, const StoreFacts& facts, const KeyNames& names,
                 const std::optional<Reading>& winner) {
    Opinion opinion{facts, {}};
    const bool wins =
        winner && caseInsensitiveStringEquals(KyrCoreUtils::toWideString(opinion.store.name), winner->storeName);
    for (const auto& name : names.getAll()) {
        std::wstring value;
        if (store.getValue(name, value)) {
            const bool isOldName = name == names.oldName;
            opinion.holdings.push_back({name, value, wins && isOldName == winner->underOldName});
        }
    }
    return opinion;
}

std::vector<StoreFacts> factsOf(const ChainInspector::Stores& stores) {
    std::vector<StoreFacts> facts;
    for (const auto& store : stores) {
        facts.push_back(factsOf(*store));
    }
    return facts;
}

/// Returns every key in the stores once: its new name, and the name to ask for, which is the old name if no store
/// contains the new one. The store of lowest priority determines the spelling, since the user's file, the first store,
/// contains lower case only.
ZelUnified::ConfigMap listKeysToAsk(const std::vector<std::shared_ptr<ConfigStore>>& stores) {
    ZelUnified::ConfigMap asked;
    const std::vector lowestFirst(stores.rbegin(), stores.rend());
    for (const auto& store : lowestFirst) {
        for (const auto& key : store->getKeys()) {
            const auto names = getKeyNames(key);
            const auto [entry, isNew] = asked.try_emplace(names.newName, key);
            if (!isNew && !names.isRequestedByOldName) {
                entry->second = key;
            }
        }
    }
    return asked;
}

} // namespace

ChainInspector::ChainInspector(std::shared_ptr<ZelUnified::ConfigFeatureSet> adapter,
                               std::shared_ptr<ZelUnified::ConfigService> configService)
    : featureSet(std::move(adapter)), service(std::move(configService)), names(std::make_shared<StoreNames>()) {
    featureSet->registerConfigStoreAddedObserver(names);
}

ChainInspector::~ChainInspector() {
    featureSet->unregisterConfigStoreAddedObserver(names);
}

std::optional<Reading> ChainInspector::read(const std::wstring& key, bool administratorsOnly) const {
    Reading reading;
    if (!featureSet->getConfig(key, reading.value, reading.storeName, reading.underOldName, administratorsOnly)) {
        return std::nullopt;
    }
    return reading;
}

std::optional<Reading> ChainInspector::readStore(const std::string& storeName, const std::wstring& key) const {
    const auto store = featureSet->getConfigStoreByName(storeName);
    if (!store) {
        throw Failure(ExitCode::NotFound, "there is no store '" + storeName + "'");
    }
    const auto keyNames = getKeyNames(key);
    const auto opinion = askStore(*store, factsOf(*store), keyNames, std::nullopt);
    if (opinion.holdings.empty()) {
        return std::nullopt;
    }
    // The service returns an empty text both for an empty value and for no value, so containment is checked first.
    return Reading{service->getValueFromConfigStore(storeName, key), KyrCoreUtils::toWideString(opinion.store.name),
                   opinion.holdings.front().name == keyNames.oldName};
}

Explanation ChainInspector::explain(const std::wstring& key) const {
    const auto stores = getStores();
    return explain(key, stores, factsOf(stores));
}

std::vector<Explanation> ChainInspector::explainAll() const {
    const auto stores = getStores();
    const auto facts = factsOf(stores); // once, since counting the keys of a store copies them
    std::vector<Explanation> explanations;
    for (const auto& [newName, asked] : listKeysToAsk(stores)) {
        explanations.push_back(explain(asked, stores, facts));
    }
    return explanations;
}

Explanation ChainInspector::explain(const std::wstring& key, const Stores& stores,
                                    const std::vector<StoreFacts>& facts) const {
    const auto keyNames = getKeyNames(key);
    Explanation explanation;
    explanation.key = ZelUnified::ConfigKeys::spellKey(key);
    explanation.newName = keyNames.newName;
    explanation.oldName = keyNames.oldName;
    explanation.isRequestedByOldName = keyNames.isRequestedByOldName;
    explanation.inForce = read(key);
    explanation.administrators = read(key, true);
    for (std::size_t i = 0; i < stores.size(); ++i) {
        explanation.opinions.push_back(askStore(*stores[i], facts[i], keyNames, explanation.inForce));
    }
    const auto record = service->getConfig(key);
    explanation.record = {record->getisDefined(), record->getisOverridden(), record->getOriginalValue(),
                          record->getOriginalValueStoreName()};
    return explanation;
}

std::vector<ListedValue> ChainInspector::list(const std::wstring& prefix) const {
    std::vector<ListedValue> listed;
    const auto records = service->getAllConfig();
    for (const auto& record : *records) {
        const auto key = record->getKey();
        if (record->getisDefined() && beginsWith(key, prefix)) {
            listed.push_back({std::wstring(ZelUnified::ConfigKeys::spellKey(key)), record->getValue(),
                              record->getValueStoreName(), record->getisOverridden()});
        }
    }
    return listed;
}

std::vector<StoreFacts> ChainInspector::listStores() const {
    return factsOf(getStores());
}

ChainInspector::Stores ChainInspector::getStores() const {
    collectNames();
    Stores stores;
    for (const auto& name : names->getAll()) {
        if (auto store = featureSet->getConfigStoreByName(name)) {
            stores.push_back(std::move(store));
        }
    }
    std::ranges::stable_sort(stores, {}, &ConfigStore::getPriority);
    return stores;
}

void ChainInspector::collectNames() const {
    // The value of this key names the cached stores of earlier runs: NAME:PRIORITY; and so on.
    std::wstring record;
    featureSet->getConfig(std::wstring(ZelUnified::ConfigKeys::primaryConfigStores), record, false);
    std::vector<std::wstring> entries;
    KyrCoreUtils::split(record, entries, L";");
    for (const auto& entry : entries) {
        names->addIfNew(KyrCoreUtils::toString(entry.substr(0, entry.find(L':'))));
    }
    const auto records = service->getAllConfig();
    for (const auto& value : *records) {
        names->addIfNew(KyrCoreUtils::toString(value->getValueStoreName()));
        names->addIfNew(KyrCoreUtils::toString(value->getOriginalValueStoreName()));
    }
}

} // namespace lumora_config
