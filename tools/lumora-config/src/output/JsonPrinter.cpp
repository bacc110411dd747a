#include "JsonPrinter.h"

#include "SettingsJson.h"

#include <kyr/StringUtils.h>

#include <nlohmann/json.hpp>

namespace lumora_config {

using Json = nlohmann::ordered_json;
using KyrCoreUtils::toString;

namespace {

/// Returns null if nothing is known.
Json toJson(const Origin& origin) {
    Json object;
    const auto add = [&](const char* name, const std::string& text) {
        if (!text.empty()) {
            object[name] = text;
        }
    };
    add("file", origin.file);
    if (origin.line != 0) {
        object["line"] = origin.line;
    }
    add("how", origin.how);
    add("when", origin.when);
    return object;
}

Json toJson(const std::optional<Reading>& reading) {
    Json object;
    object["found"] = reading.has_value();
    if (reading) {
        object["value"] = toString(reading->value);
        object["store"] = toString(reading->storeName);
        object["underOldName"] = reading->underOldName;
        object["origin"] = toJson(reading->origin);
    }
    return object;
}

Json toJson(const StoreFacts& store) {
    return {{"priority", store.priority},
            {"name", store.name},
            {"readOnly", store.readOnly},
            {"local", store.local},
            {"keys", store.keyCount}};
}

Json toJson(const Opinion& opinion) {
    Json holdings = Json::array();
    bool wins = false;
    for (const auto& holding : opinion.holdings) {
        holdings.push_back({{"name", toString(holding.name)},
                            {"value", toString(holding.value)},
                            {"wins", holding.wins},
                            {"origin", toJson(holding.origin)}});
        wins = wins || holding.wins;
    }
    auto object = toJson(opinion.store);
    object["wins"] = wins;
    object["holds"] = std::move(holdings);
    return object;
}

Json toJson(const KeyFacts& facts) {
    Json object{{"key", toString(facts.key)},
                {"oldName", nullptr},
                {"sensitive", facts.sensitive},
                {"kind", facts.kind},
                {"values", facts.values},
                {"permitted", facts.permitted},
                {"provisioning", facts.provisionable},
                {"meaning", facts.meaning},
                {"rule", facts.rule},
                {"use", facts.use}};
    if (facts.oldName) {
        object["oldName"] = toString(*facts.oldName);
    }
    return object;
}

} // namespace

JsonPrinter::JsonPrinter(Output& out, Output& messages, Failures failureForm)
    : output(out), diagnostics(messages), failures(failureForm) {}

void JsonPrinter::showValue(const std::wstring& key, const std::optional<Reading>& reading, bool /*withOrigin*/) {
    Json object{{"type", "value"}, {"key", toString(key)}};
    object.update(toJson(reading));
    write(object);
}

void JsonPrinter::showDefault(const std::wstring& key, const std::wstring& value) {
    write({{"type", "value"}, {"key", toString(key)}, {"found", false}, {"default", toString(value)}});
}

void JsonPrinter::showExplanation(const Explanation& explanation) {
    Json object{{"type", "explanation"},
                {"key", toString(explanation.key)},
                {"newName", toString(explanation.newName)},
                {"oldName", nullptr}};
    if (explanation.oldName) {
        object["oldName"] = toString(*explanation.oldName);
    }
    object.update(toJson(explanation.inForce));
    object["stores"] = Json::array();
    for (const auto& opinion : explanation.opinions) {
        object["stores"].push_back(toJson(opinion));
    }
    object["administrator"] = toJson(explanation.administrators);
    object["defined"] = explanation.record.defined;
    object["overridden"] = explanation.record.overridden;
    object["originalValue"] = toString(explanation.record.originalValue);
    object["originalStore"] = toString(explanation.record.originalStoreName);
    write(object);
}

void JsonPrinter::showList(const std::vector<ListedValue>& values) {
    Json object{{"type", "list"}, {"values", Json::array()}};
    for (const auto& listed : values) {
        object["values"].push_back({{"key", toString(listed.key)},
                                    {"value", toString(listed.value)},
                                    {"store", toString(listed.storeName)},
                                    {"overridden", listed.overridden}});
    }
    write(object);
}

void JsonPrinter::showKeys(const std::vector<KeyFacts>& keys) {
    Json object{{"type", "keys"}, {"keys", Json::array()}};
    for (const auto& facts : keys) {
        object["keys"].push_back(toJson(facts));
    }
    write(object);
}

void JsonPrinter::showDescription(const KeyDescription& description) {
    Json object{{"type", "description"},
                {"key", toString(description.key)},
                {"known", description.facts.has_value()},
                {"sensitive", description.sensitive}};
    if (description.facts) {
        object.update(toJson(*description.facts));
        object["sensitive"] = description.sensitive;
    }
    object.update(toJson(description.inForce));
    write(object);
}

void JsonPrinter::showStores(const std::vector<StoreFacts>& stores) {
    Json object{{"type", "stores"}, {"stores", Json::array()}};
    for (const auto& store : stores) {
        object["stores"].push_back(toJson(store));
    }
    write(object);
}

void JsonPrinter::showText(const std::string& kind, const std::string& text) {
    write({{"type", kind}, {"text", text}});
}

void JsonPrinter::showHealth(const HealthReport& report) {
    Json object{{"type", "health"}, {"attention", report.countAttention() != 0}, {"items", Json::array()}};
    for (const auto& item : report.items) {
        object["items"].push_back(
            {{"area", item.area}, {"path", item.path}, {"state", item.state}, {"attention", item.needsAttention}});
    }
    write(object);
}

void JsonPrinter::showImport(const PolicyImport& import) {
    Json object{{"type", "import"},        {"file", import.file},     {"dryRun", import.dryRun},
                {"taken", Json::array()},  {"values", Json::array()}, {"refused", Json::array()},
                {"remarks", Json::array()}};
    for (const auto& key : import.taken) {
        object["taken"].push_back({{"line", key.line},
                                   {"key", toString(key.key)},
                                   {"deleted", key.deleted},
                                   {"valuesSet", key.valuesSet},
                                   {"valuesDeleted", key.valuesDeleted}});
    }
    for (const auto& value : import.values) {
        object["values"].push_back({{"line", value.line},
                                    {"key", toString(value.key)},
                                    {"deleted", value.deleted},
                                    {"value", toString(value.value)}});
    }
    for (const auto& remark : import.remarks) {
        object["remarks"].push_back({{"line", remark.line},
                                     {"message", remark.text},
                                     {"ineffective", remark.kind == PolicyRemark::Kind::Ineffective}});
    }
    for (const auto& refusal : import.refused) {
        object["refused"].push_back({{"line", refusal.line}, {"reason", refusal.reason}});
    }
    write(object);
}

void JsonPrinter::showDump(const SettingsDump& dump) {
    write(toJson(dump));
}

std::string JsonPrinter::formatDump(const SettingsDump& dump) const {
    return toJson(dump).dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

void JsonPrinter::showLoad(const LoadSummary& summary) {
    write(toJson(summary));
}

void JsonPrinter::showComparison(const Comparison& comparison) {
    write(toJson(comparison));
}

void JsonPrinter::showBundle(const BundleSummary& bundle) {
    Json object{{"type", "bundle"},
                {"file", bundle.file},
                {"madeAt", bundle.madeAt},
                {"members", Json::array()},
                {"problems", Json::array()}};
    for (const auto& member : bundle.members) {
        object["members"].push_back({{"name", member.name}, {"bytes", member.bytes}, {"contents", member.contents}});
    }
    for (const auto& problem : bundle.problems) {
        object["problems"].push_back({{"area", problem.area}, {"path", problem.path}, {"state", problem.state}});
    }
    write(object);
}

void JsonPrinter::showNotification(const Notification& notification) {
    Json object{{"type", "notification"},
                {"key", toString(notification.key)},
                {"property", notification.property},
                {"old", toString(notification.oldValue)},
                {"new", toString(notification.newValue)},
                {"thread", notification.thread},
                {"with", Json::object()}};
    for (const auto& [key, value] : notification.companions) {
        object["with"][toString(key)] = toString(value);
    }
    write(object);
}

void JsonPrinter::showDone(const std::string& command, const std::string& message) {
    write({{"type", "done"}, {"command", command}, {"message", message}});
}

void JsonPrinter::showWarning(const std::string& message) {
    diagnostics.writeMessage("lumora-config: " + message);
}

void JsonPrinter::showFailure(const std::string& command, const Failure& failure) {
    if (failures == Failures::AsObjects) {
        write({{"type", "failure"},
               {"command", command},
               {"exitCode", static_cast<int>(failure.getCode())},
               {"message", failure.what()}});
        return;
    }
    diagnostics.writeMessage(std::string("lumora-config: ") + failure.what());
}

bool JsonPrinter::canPrint() const {
    return output.getError() == 0;
}

void JsonPrinter::write(const nlohmann::ordered_json& object) {
    // JSON may contain DEL and C1 unescaped, so everything beyond ASCII is escaped for a terminal.
    const bool asciiOnly = output.getForm().terminal;
    // The name of a store may contain any bytes; bytes that are not UTF-8 must not throw.
    output.writeEscaped(object.dump(-1, ' ', asciiOnly, Json::error_handler_t::replace) + '\n');
}

} // namespace lumora_config
