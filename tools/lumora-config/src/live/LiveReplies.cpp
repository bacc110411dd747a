#include "LiveReplies.h"

#include <kyr/StringUtils.h>

#include <string>

namespace lumora_config {

using Json = InspectionClient::Json;

namespace {

std::wstring wideAt(const Json& object, const char* field) {
    return KyrCoreUtils::toWideString(object.at(field).get<std::string>());
}

StoreFacts toStore(const Json& object) {
    return {object.at("name"), object.at("priority"), object.at("readOnly"), object.at("local"), object.at("keys")};
}

Opinion toOpinion(const Json& object) {
    Opinion opinion{toStore(object), {}};
    for (const auto& holding : object.at("holds")) {
        opinion.holdings.push_back({wideAt(holding, "name"), wideAt(holding, "value"), holding.at("wins")});
    }
    return opinion;
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
    Explanation explanation;
    explanation.key = wideAt(reply, "key");
    explanation.newName = wideAt(reply, "newName");
    if (!reply.at("oldName").is_null()) {
        explanation.oldName = wideAt(reply, "oldName");
        explanation.isRequestedByOldName =
            KyrCoreUtils::caseInsensitiveStringEquals(explanation.key, *explanation.oldName);
    }
    explanation.inForce = toReading(reply);
    for (const auto& store : reply.at("stores")) {
        explanation.opinions.push_back(toOpinion(store));
    }
    explanation.administrators = toReading(reply.at("administrator"));
    explanation.record = {reply.at("defined"), reply.at("overridden"), wideAt(reply, "originalValue"),
                          wideAt(reply, "originalStore")};
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

} // namespace lumora_config
