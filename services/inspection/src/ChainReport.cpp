#include "ChainReport.h"

#include <ConfigCatalogue.h>

#include <utility>

namespace inspection {

namespace {

constexpr std::size_t keysPerSlice = 64;
/// Fewer keys than in the slices of a list, because each key asks every store.
constexpr std::size_t explanationsPerSlice = 16;

} // namespace

ChainReport::ChainReport(std::shared_ptr<const ConfigInspector> configInspector, bool secretsShown)
    : inspector(std::move(configInspector)),
      showSecrets(secretsShown),
      stores(inspector->getStores()),
      storesLeft(stores.size()),
      report{{"type", "explanations"}, {"stores", Json::array()}, {"keys", Json::array()}} {}

bool ChainReport::proceed() {
    if (!found.empty()) {
        addKeys();
        return true;
    }
    if (storesLeft != 0) {
        const auto& store = stores[--storesLeft];
        beginStore(*store);
        return true;
    }
    for (std::size_t count = 0; count < explanationsPerSlice && !asked.empty(); ++count) {
        report["keys"].push_back(explain(asked.begin()->second));
        asked.erase(asked.begin());
    }
    return !asked.empty();
}

void ChainReport::beginStore(ZelUnified::ConfigStore& store) {
    report["stores"].insert(report["stores"].begin(), ConfigInspector::showStore(store));
    found = store.getKeys();
}

/// A key is asked by its old name only if no store contains the new one.
void ChainReport::addKeys() {
    for (std::size_t count = 0; count < keysPerSlice && !found.empty(); ++count) {
        const auto names = ZelUnified::ConfigKeys::getKeyNames(found.back());
        const auto [entry, isNew] = asked.try_emplace(names.newName, found.back());
        if (!isNew && !names.isRequestedByOldName) {
            entry->second = found.back();
        }
        found.pop_back();
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
