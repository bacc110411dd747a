#include "SettingsJson.h"

#include "Failure.h"
#include "SettingsText.h"

#include <kyr/StringUtils.h>

#include <nlohmann/json.hpp>

namespace lumora_config {

namespace {

using Object = nlohmann::ordered_json;

Object describe(const DumpedSetting& setting) {
    Object object{{"value", nullptr},
                  {"store", KyrCoreUtils::toString(setting.storeName)},
                  {"sensitive", setting.sensitive},
                  {"hidden", setting.hidden}};
    if (!setting.hidden) {
        object["value"] = KyrCoreUtils::toString(setting.value);
    }
    return object;
}

Object describe(const std::optional<DumpedSetting>& setting) {
    return setting ? describe(*setting) : Object(nullptr);
}

DumpedSetting parseSetting(const Object& object) {
    DumpedSetting setting;
    setting.key = KyrCoreUtils::toWideString(object.at("key").get<std::string>());
    setting.storeName = KyrCoreUtils::toWideString(object.value("store", ""));
    setting.sensitive = object.value("sensitive", false);
    setting.hidden = object.value("hidden", false);
    if (!setting.hidden) {
        setting.value = KyrCoreUtils::toWideString(object.at("value").get<std::string>());
    }
    return setting;
}

} // namespace

nlohmann::ordered_json toJson(const SettingsDump& dump) {
    Object object{{"type", "dump"}, {"source", dump.source}, {"values", Object::array()}};
    for (const auto& setting : dump.settings) {
        Object value{{"key", KyrCoreUtils::toString(setting.key)}};
        value.update(describe(setting));
        object["values"].push_back(std::move(value));
    }
    return object;
}

nlohmann::ordered_json toJson(const LoadSummary& summary) {
    return {{"type", "load"},
            {"file", summary.file},
            {"dryRun", summary.dryRun},
            {"set", summary.countSet()},
            {"added", summary.added},
            {"changed", summary.changed},
            {"unchanged", summary.unchanged},
            {"leftOut", summary.leftOut}};
}

nlohmann::ordered_json toJson(const Comparison& comparison) {
    Object object{{"type", "comparison"},      {"left", comparison.left},       {"right", comparison.right},
                  {"equal", comparison.equal}, {"unknown", comparison.unknown}, {"differences", Object::array()}};
    for (const auto& difference : comparison.differences) {
        object["differences"].push_back({{"key", KyrCoreUtils::toString(difference.key)},
                                         {"left", describe(difference.left)},
                                         {"right", describe(difference.right)}});
    }
    return object;
}

std::optional<std::string> findReportText(std::string_view content) {
    const auto object = Object::parse(content, nullptr, false);
    if (!object.is_object() || object.value("type", Object()) != "report") {
        return std::nullopt;
    }
    const auto text = object.find("text");
    return text != object.end() && text->is_string() ? std::optional(text->get<std::string>()) : std::nullopt;
}

SettingsDump parseJsonDump(std::string_view content, const std::string& name) {
    SettingsDump dump{"", {}, name};
    try {
        const auto object = Object::parse(content);
        if (object.value("type", "") != "dump") {
            throw Failure(ExitCode::Environment, name + ": not a dump");
        }
        dump.source = object.value("source", "");
        for (const auto& value : object.at("values")) {
            dump.settings.push_back(parseSetting(value));
        }
    } catch (const nlohmann::json::exception& error) {
        // The library's message may quote the text, which may contain a secret.
        throw Failure(ExitCode::Environment, name + ": not a dump in JSON (error " + std::to_string(error.id) + ")");
    }
    return dump;
}

} // namespace lumora_config
