#include "FleetCommands.h"

#include "FleetLogPrinter.h"
#include "FleetPlugin.h"
#include "commands/CommandInput.h"
#include "output/EscapedText.h"
#include "output/Failure.h"
#include "stores/KnownKeys.h"
#include "stores/XmlSettings.h"

#include <kyr/EndSignals.h>
#include <kyr/StringUtils.h>

#include <ConfigCatalogue.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <set>

namespace lumora_config {

using KyrCoreUtils::EndSignals;
using KyrCoreUtils::toString;
using KyrCoreUtils::toWideString;
using ZelUnified::ConfigMap;
using ZelUnified::FleetAdministration;
using ZelUnified::FleetAudience;
using ZelUnified::FleetPair;

namespace {

constexpr std::chrono::milliseconds outputCheck(500);

/// Everything that an action uses.
struct Action {
    const Command& command;
    FleetAdministration& cluster;
    Printer& printer;
    const bool showSecrets;
    const bool verbose;
};

std::string readPassword(const std::string& file) {
    if (file.empty()) {
        return {};
    }
    auto password = readWholeFile(file);
    password.resize(std::min(password.find_first_of("\r\n"), password.size()));
    if (password.empty()) {
        throw Failure(ExitCode::Environment, file + ": the first line contains no password");
    }
    return password;
}

ZelUnified::FleetAccess makeAccess(const FleetOptions& options) {
    ZelUnified::FleetAccess access;
    access.endpoints = options.endpoints;
    access.authority = options.authority;
    access.clientCertificate = options.clientCertificate;
    access.clientKey = options.clientKey;
    access.username = options.username;
    access.password = readPassword(options.passwordFile);
    access.plainHttpAllowed = options.plainHttp;
    if (options.endpoints.empty()) {
        throw Failure(ExitCode::Usage, "fleet: --endpoint is missing");
    }
    for (const auto& endpoint : options.endpoints) {
        if (!options.plainHttp && endpoint.starts_with("http://")) {
            throw Failure(ExitCode::Usage, "the endpoint begins with http://: anybody can read the settings on their "
                                           "way; --plain-http accepts it");
        }
    }
    return access;
}

/// Returns the groups and the user of the command; the least specific one first.
std::vector<FleetAudience> getNamedAudiences(const FleetOptions& options) {
    std::vector<FleetAudience> audiences;
    for (auto group = options.groups.rbegin(); group != options.groups.rend(); ++group) {
        audiences.push_back({FleetAudience::Kind::Group, *group});
    }
    if (!options.user.empty()) {
        audiences.push_back({FleetAudience::Kind::User, options.user});
    }
    return audiences;
}

/// Returns the audiences of a client of these groups and this user.
std::vector<FleetAudience> getAudiences(const FleetOptions& options) {
    auto audiences = getNamedAudiences(options);
    audiences.insert(audiences.begin(), FleetAudience());
    return audiences;
}

FleetAudience getOneAudience(const FleetOptions& options) {
    const auto audiences = getNamedAudiences(options);
    if (audiences.size() > 1) {
        throw Failure(ExitCode::Usage, "fleet " + options.action + ": only one --group or --user");
    }
    return audiences.empty() ? FleetAudience() : audiences.front();
}

std::string describe(const FleetAudience& audience) {
    switch (audience.kind) {
    case FleetAudience::Kind::Group:
        return "groups/" + audience.name;
    case FleetAudience::Kind::User:
        return "users/" + audience.name;
    case FleetAudience::Kind::All:
        break;
    }
    return "all";
}

bool isSensitive(const std::wstring& key) {
    const auto facts = findKeyFacts(key);
    return facts && facts->sensitive;
}

/// Returns the value, or "VALUE_HIDDEN" if the key is sensitive and secrets are not shown.
std::wstring maskValue(const FleetPair& pair, bool showSecrets) {
    return showSecrets || !isSensitive(toWideString(pair.key)) ? toWideString(pair.value)
                                                               : std::wstring(ZelUnified::ConfigKeys::valueHidden);
}

void requireWords(const Command& command, bool key, bool value) {
    if (key == command.key.empty() || value != command.fallback.has_value()) {
        const std::string words = std::string(key ? " KEY" : "") + (value ? " VALUE" : "");
        throw Failure(ExitCode::Usage, "usage: fleet " + command.fleet.action + words);
    }
}

[[noreturn]] void throwMiss(const Action& action, const FleetAudience& audience) {
    throw Failure(ExitCode::NotFound,
                  "'" + describe(audience) + "' does not hold the key '" + action.command.key + "'");
}

void get(const Action& action) {
    requireWords(action.command, true, false);
    const auto audience = getOneAudience(action.command.fleet);
    const auto pair = action.cluster.find(audience, action.command.key);
    if (!pair) {
        throwMiss(action, audience);
    }
    Reading reading;
    reading.value = maskValue(*pair, action.showSecrets);
    reading.storeName = toWideString(describe(audience));
    action.printer.showValue(toWideString(pair->key), reading, false);
}

void set(const Action& action) {
    requireWords(action.command, true, true);
    const auto audience = getOneAudience(action.command.fleet);
    const auto value = *action.command.fallback == "-" ? CommandInput().readValue() : *action.command.fallback;
    const auto existing = action.cluster.findKey(audience, action.command.key);
    action.cluster.put({audience, existing.value_or(action.command.key), value});
    action.printer.showDone("fleet", "set for '" + describe(audience) + "'");
}

void unset(const Action& action) {
    requireWords(action.command, true, false);
    const auto audience = getOneAudience(action.command.fleet);
    if (!action.cluster.remove(audience, action.command.key)) {
        const auto existing = action.cluster.findKey(audience, action.command.key);
        if (!existing || !action.cluster.remove(audience, *existing)) {
            throwMiss(action, audience);
        }
    }
    action.printer.showDone("fleet", "removed from '" + describe(audience) + "'");
}

void list(const Action& action) {
    requireWords(action.command, false, false);
    std::vector<ListedValue> values;
    for (const auto& pair : action.cluster.list(getAudiences(action.command.fleet))) {
        values.push_back(
            {toWideString(pair.key), maskValue(pair, action.showSecrets), toWideString(describe(pair.audience))});
    }
    action.printer.showList(values);
    if (values.empty()) {
        throw Failure(ExitCode::NotFound, "the cluster holds no settings for these clients");
    }
}

std::optional<std::wstring> findValue(const ConfigMap& settings, const std::wstring& key) {
    const auto found = settings.find(key);
    return found == settings.end() ? std::nullopt : std::optional(found->second);
}

std::string quote(const std::optional<std::wstring>& value, bool isHidden) {
    if (!value) {
        return "(none)";
    }
    return isHidden ? toString(ZelUnified::ConfigKeys::valueHidden) : '"' + toString(*value) + '"';
}

void showChanges(const ConfigMap& before, const ConfigMap& after, bool showSecrets, Printer& printer) {
    ZelUnified::ConfigKeySet keys;
    for (const auto* settings : {&before, &after}) {
        for (const auto& entry : *settings) {
            keys.insert(entry.first);
        }
    }
    for (const auto& key : keys) {
        const auto from = findValue(before, key);
        const auto to = findValue(after, key);
        if (from != to) {
            const bool isHidden = !showSecrets && isSensitive(key);
            printer.showText("fleet",
                             toOneLine(toString(key) + ": " + quote(from, isHidden) + " -> " + quote(to, isHidden)));
        }
    }
}

void watch(const Action& action) {
    requireWords(action.command, false, false);
    std::optional<FleetLogPrinter> log;
    if (!action.verbose) { // otherwise the program prints all log lines
        log.emplace(action.printer);
    }
    std::optional<ConfigMap> last; // of the plug-in's thread
    action.cluster.watch(getAudiences(action.command.fleet), [&last, &action](ConfigMap settings) {
        if (last) {
            showChanges(*last, settings, action.showSecrets, action.printer);
        } else {
            action.printer.showWarning("watching a client with " + std::to_string(settings.size()) + " settings");
        }
        last = std::move(settings);
    });
    while (!EndSignals::waitFor(outputCheck) && action.printer.canPrint()) {
    }
    EndSignals::acknowledge();
    action.cluster.endWatch();
}

} // namespace

void runFleetCommand(const CommandLine& line, Printer& printer) {
    static const std::map<std::string, void (*)(const Action&)> actions{
        {"get", get}, {"set", set}, {"unset", unset}, {"list", list}, {"watch", watch}};
    const auto found = actions.find(line.command.fleet.action);
    if (found == actions.end()) {
        throw Failure(ExitCode::Usage, "fleet: there is no '" + line.command.fleet.action + "'");
    }
    const auto cluster = FleetPlugin::open(line.pluginDirectory, makeAccess(line.command.fleet));
    try {
        found->second({line.command, *cluster, printer, line.showSecrets, line.verbose});
    } catch (const Failure&) {
        throw;
    } catch (const std::runtime_error& error) {
        throw Failure(ExitCode::Environment, error.what());
    }
}

} // namespace lumora_config
