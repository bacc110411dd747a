#include "ChainPage.h"

#include "EscapedText.h"
#include "HtmlTemplate.h"

#include <kyr/StringUtils.h>

#include <ConfigCatalogue.h>

#include <algorithm>
#include <array>

namespace lumora_config {

namespace {

using nlohmann::json;
namespace ConfigKeys = ZelUnified::ConfigKeys;

struct KnownStore {
    std::string_view name;
    std::string_view holds;
};

constexpr std::array knownStores{
    KnownStore{ConfigKeys::localFileConfigStore, "what the user set"},
    KnownStore{ConfigKeys::registryConfigStore, "the administrator's policy"},
    KnownStore{ConfigKeys::urlProvisioningConfigStore, "what a provisioning link set"},
    KnownStore{ConfigKeys::mdmConfigStore, "what device management pushed"},
    KnownStore{ConfigKeys::bootstrapConfigStore, "the installer's file"},
    KnownStore{ConfigKeys::inMemoryConfigStore, "values for one run"},
    KnownStore{ConfigKeys::configDefaultsFile, "defaults of the installation"},
};

std::string shown(std::wstring_view text) {
    return KyrCoreUtils::toString(makeVisible(text));
}

std::string shown(const std::string& text) {
    return shown(KyrCoreUtils::toWideString(text));
}

std::string whatHolds(const std::string& storeName) {
    const auto known = std::ranges::find(knownStores, storeName, &KnownStore::name);
    return std::string(known == knownStores.end() ? "handed in by another service" : known->holds);
}

/// Returns the key in the spelling of the catalogue: the stores that read files return lower case.
std::wstring spell(const std::wstring& key) {
    return std::wstring(ConfigKeys::spellKey(key));
}

bool isNamed(const StoreFacts& store, const std::wstring& name) {
    return KyrCoreUtils::caseInsensitiveStringEquals(KyrCoreUtils::toWideString(store.name), name);
}

json describe(const StoreFacts& store, const std::vector<Explanation>& keys) {
    const auto answers = std::ranges::count_if(
        keys, [&](const Explanation& key) { return key.inForce && isNamed(store, key.inForce->storeName); });
    return {{"priority", store.priority}, {"name", shown(store.name)}, {"holds", whatHolds(store.name)},
            {"readOnly", store.readOnly}, {"local", store.local},      {"keys", store.keyCount},
            {"answers", answers}};
}

json describe(const std::optional<Reading>& reading) {
    if (!reading) {
        return false;
    }
    return {{"value", shown(reading->value)}, {"store", shown(reading->storeName)}};
}

json describe(const Opinion& opinion) {
    json holdings = json::array();
    for (const auto& holding : opinion.holdings) {
        holdings.push_back({{"name", shown(holding.name)}, {"value", shown(holding.value)}, {"wins", holding.wins}});
    }
    return {{"priority", opinion.store.priority}, {"store", shown(opinion.store.name)}, {"holdings", holdings}};
}

json describe(const Explanation& key) {
    json opinions = json::array();
    std::string silent;
    for (const auto& opinion : key.opinions) {
        if (opinion.holdings.empty()) {
            silent += (silent.empty() ? "" : ", ") + shown(opinion.store.name);
        } else {
            opinions.push_back(describe(opinion));
        }
    }
    return {{"name", shown(spell(key.currentName))}, {"earlierName", key.earlierName ? shown(*key.earlierName) : ""},
            {"inForce", describe(key.inForce)},      {"administrators", describe(key.administrators)},
            {"overridden", key.record.overridden},   {"sensitive", key.sensitive},
            {"opinions", std::move(opinions)},       {"silent", std::move(silent)}};
}

} // namespace

std::string renderChainPage(const ChainFindings& findings) {
    json stores = json::array();
    for (const auto& store : findings.stores) {
        stores.push_back(describe(store, findings.keys));
    }
    json keys = json::array();
    for (const auto& key : findings.keys) {
        keys.push_back(describe(key));
    }
    const auto overridden =
        std::ranges::count_if(findings.keys, [](const Explanation& key) { return key.record.overridden; });
    const auto sensitive = std::ranges::count_if(findings.keys, &Explanation::sensitive);
    return HtmlTemplate(getChainPageTemplate())
        .render({{"version", LUMORA_VERSION},
                 {"madeAt", findings.madeAt},
                 {"showsSecrets", findings.showsSecrets},
                 {"storeCount", stores.size()},
                 {"keyCount", keys.size()},
                 {"overriddenCount", overridden},
                 {"sensitiveCount", sensitive},
                 {"stores", std::move(stores)},
                 {"keys", std::move(keys)}});
}

} // namespace lumora_config
