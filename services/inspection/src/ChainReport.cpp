#include "ChainReport.h"

#include <ConfigCatalogue.h>

#include <utility>

namespace inspection {

namespace {

/// Each key asks every store, so these are fewer than in a list.
constexpr std::size_t keysPerSlice = 16;

} // namespace

ChainReport::ChainReport(std::shared_ptr<const ConfigInspector> configInspector, bool secretsShown)
    : inspector(std::move(configInspector)),
      showSecrets(secretsShown),
      stores(inspector->getStores()),
      storesLeft(stores.size()),
      report{{"type", "explanations"}, {"stores", Json::array()}, {"keys", Json::array()}} {}

bool ChainReport::proceed() {
    if (storesLeft != 0) {
        addKeysOf(*stores[--storesLeft]);
        return true;
    }
    for (std::size_t count = 0; count < keysPerSlice && !asked.empty(); ++count) {
        report["keys"].push_back(explain(asked.begin()->second));
        asked.erase(asked.begin());
    }
    return !asked.empty();
}

/// The store of lowest priority determines the spelling, since the user's file, the first store, contains lower case
/// only.
void ChainReport::addKeysOf(ZelUnified::ConfigStore& store) {
    report["stores"].insert(report["stores"].begin(), ConfigInspector::showStore(store));
    for (const auto& key : store.getKeys()) {
        const auto names = ZelUnified::ConfigKeys::getKeyNames(key);
        const auto [entry, isNew] = asked.try_emplace(names.newName, key);
        if (!isNew && !names.isRequestedByOldName) {
            entry->second = key;
        }
    }
}

Json ChainReport::explain(const std::wstring& key) const {
    auto object = inspector->beginExplanation(key, showSecrets);
    object["sensitive"] = inspector->isSensitive(key);
    const auto winner = inspector->read(key, false);
    for (const auto& store : stores) {
        auto holdings = inspector->showHoldings(*store, key, winner, showSecrets);
        if (!holdings.empty()) {
            object["stores"].push_back({{"name", store->getName()}, {"holds", std::move(holdings)}});
        }
    }
    return object;
}

} // namespace inspection
