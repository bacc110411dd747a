#include "SettingsJson.h"

#include "Failure.h"
#include "SettingsText.h"

#include <kyr/StringUtils.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>

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

/// Returns the position of the last of the first `read` bytes, which is the invalid one, as "LINE:COLUMN". The column
/// counts bytes.
std::string describePlace(std::string_view content, std::size_t read) {
    const auto before = content.substr(0, read == 0 ? 0 : read - 1);
    const auto lineStart = before.rfind('\n') + 1; // 0 in the first line
    return std::to_string(1 + std::ranges::count(before, '\n')) + ':' + std::to_string(before.size() - lineStart + 1);
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
    bool hasValues = false;
    try {
        const auto object = Object::parse(content);
        if (object.value("type", "") != "dump") {
            throw Failure(ExitCode::Environment, name + ": not a dump");
        }
        dump.source = object.value("source", "");
        const auto& values = object.at("values");
        hasValues = values.is_array();
        for (const auto& value : values) {
            dump.settings.push_back(parseSetting(value));
        }
    } catch (const nlohmann::json::parse_error& error) {
        // The library's message may quote the text, which may contain a secret.
        throw Failure(ExitCode::Environment, name + ':' + describePlace(content, error.byte) + ": not JSON");
    } catch (const nlohmann::json::exception&) {
        throw Failure(ExitCode::Environment,
                      name + ": not a dump in JSON" +
                          (hasValues ? ", see value " + std::to_string(dump.settings.size() + 1) + " of it" : ""));
    }
    return dump;
}

} // namespace lumora_config
