#include "LiveReplies.h"

#include <kyr/StringUtils.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>

namespace lumora_config {

using Json = InspectionClient::Json;

namespace {

std::wstring wideAt(const Json& object, const char* field) {
    return KyrCoreUtils::toWideString(object.at(field).get<std::string>());
}

StoreFacts toStore(const Json& object) {
    return {object.at("name"), object.at("priority"), object.at("readOnly"), object.at("local"), object.at("keys")};
}

std::vector<Holding> toHoldings(const Json& array) {
    std::vector<Holding> holdings;
    for (const auto& holding : array) {
        holdings.push_back({wideAt(holding, "name"), wideAt(holding, "value"), holding.at("wins")});
    }
    return holdings;
}

/// Returns nothing for null.
std::optional<std::wstring> toOldName(const Json& object) {
    return object.at("oldName").is_null() ? std::nullopt : std::optional(wideAt(object, "oldName"));
}

/// Converts everything except the opinions of the stores.
Explanation beginExplanation(const Json& reply) {
    Explanation explanation;
    explanation.key = wideAt(reply, "key");
    explanation.newName = wideAt(reply, "newName");
    explanation.oldName = toOldName(reply);
    explanation.isRequestedByOldName =
        explanation.oldName && KyrCoreUtils::caseInsensitiveStringEquals(explanation.key, *explanation.oldName);
    explanation.inForce = toReading(reply);
    explanation.administrators = toReading(reply.at("administrator"));
    explanation.record = {reply.at("defined"), reply.at("overridden"), wideAt(reply, "originalValue"),
                          wideAt(reply, "originalStore")};
    return explanation;
}

KeyFacts toFacts(const Json& object) {
    KeyFacts facts;
    facts.key = wideAt(object, "key");
    facts.oldName = toOldName(object);
    facts.sensitive = object.at("sensitive");
    facts.provisionable = object.at("provisioning");
    facts.kind = object.at("kind");
    facts.permitted = object.at("permitted");
    facts.values = object.at("values").get<std::vector<std::string>>();
    facts.rule = object.at("rule");
    facts.meaning = object.at("meaning");
    facts.use = object.at("use");
    return facts;
}

} // namespace

std::optional<Reading> toReading(const Json& reply) {
    if (!reply.at("found").get<bool>()) {
        return std::nullopt;
    }
    Reading reading;
    reading.value = wideAt(reply, "value");
    reading.storeName = wideAt(reply, "store");
    reading.underOldName = reply.at("underOldName");
    return reading;
}

Explanation toExplanation(const Json& reply) {
    auto explanation = beginExplanation(reply);
    for (const auto& store : reply.at("stores")) {
        explanation.opinions.push_back({toStore(store), toHoldings(store.at("holds"))});
    }
    return explanation;
}

std::vector<ListedValue> toList(const Json& reply) {
    std::vector<ListedValue> values;
    for (const auto& value : reply.at("values")) {
        values.push_back(
            {wideAt(value, "key"), wideAt(value, "value"), wideAt(value, "store"), value.at("overridden")});
    }
    return values;
}

std::vector<StoreFacts> toStores(const Json& reply) {
    std::vector<StoreFacts> stores;
    for (const auto& store : reply.at("stores")) {
        stores.push_back(toStore(store));
    }
    return stores;
}

std::vector<KeyFacts> toKeys(const Json& reply) {
    std::vector<KeyFacts> keys;
    for (const auto& key : reply.at("keys")) {
        keys.push_back(toFacts(key));
    }
    return keys;
}

KeyDescription toDescription(const Json& reply) {
    KeyDescription description;
    description.key = wideAt(reply, "key");
    description.sensitive = reply.at("sensitive");
    if (reply.at("known").get<bool>()) {
        description.facts = toFacts(reply);
    }
    description.inForce = toReading(reply);
    return description;
}

ChainFindings toChain(const Json& reply) {
    ChainFindings findings;
    findings.stores = toStores(reply);
    for (const auto& key : reply.at("keys")) {
        auto explanation = beginExplanation(key);
        explanation.sensitive = key.at("sensitive");
        for (const auto& store : findings.stores) {
            explanation.opinions.push_back({store, {}});
        }
        for (const auto& held : key.at("stores")) {
            const auto opinion = std::ranges::find_if(explanation.opinions, [&](const Opinion& known) {
                return known.store.name == held.at("name").get_ref<const std::string&>();
            });
            if (opinion != explanation.opinions.end()) {
                opinion->holdings = toHoldings(held.at("holds"));
            }
        }
        findings.keys.push_back(std::move(explanation));
    }
    return findings;
}

} // namespace lumora_config
