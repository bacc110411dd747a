#include "FleetSettings.h"

#include "LoggedText.h"

#include <kyr/ProcessUtils.h>
#include <kyr/StringUtils.h>

#include <algorithm>

namespace fleet {

namespace FleetKeys = ZelUnified::FleetKeys;

namespace {

enum class Stores { Administrators, All };

std::wstring readWide(ZelUnified::ConfigFeatureSet& configuration, std::wstring_view key, Stores stores) {
    std::wstring value;
    configuration.getConfig(std::wstring(key), value, stores == Stores::Administrators);
    return KyrCoreUtils::trim(value);
}

std::string read(ZelUnified::ConfigFeatureSet& configuration, std::wstring_view key,
                 Stores stores = Stores::Administrators) {
    return KyrCoreUtils::toString(readWide(configuration, key, stores));
}

std::vector<std::string> readList(ZelUnified::ConfigFeatureSet& configuration, std::wstring_view key) {
    std::vector<std::string> parts;
    KyrCoreUtils::split(read(configuration, key), parts, ",");
    std::ranges::transform(parts, parts.begin(), [](const auto& part) { return KyrCoreUtils::trim(part); });
    std::erase(parts, "");
    return parts;
}

ClusterAccess readAccess(ZelUnified::ConfigFeatureSet& configuration, std::vector<std::string>& problems) {
    ClusterAccess access;
    access.plainHttpAllowed =
        KyrCoreUtils::toBool(readWide(configuration, FleetKeys::plainHttpAllowed, Stores::Administrators));
    access.endpoints = readList(configuration, FleetKeys::endpoints);
    std::erase_if(access.endpoints, [&](const std::string& endpoint) {
        const auto reason = findEndpointProblem(access, endpoint);
        if (!reason.empty()) {
            problems.push_back("An endpoint is not used: " + reason);
        }
        return !reason.empty();
    });
    access.authority = read(configuration, FleetKeys::authority);
    access.clientCertificate = read(configuration, FleetKeys::clientCertificate);
    access.clientKey = read(configuration, FleetKeys::clientKey);
    access.username = read(configuration, FleetKeys::username, Stores::All);
    access.password = read(configuration, FleetKeys::password, Stores::All);
    return access;
}

bool isUsableName(const std::string& name, std::vector<std::string>& problems) {
    if (FleetScope::isName(name)) {
        return true;
    }
    problems.push_back("The group or user [" + toLoggedText(name) + "] is not used: its name is empty or contains '/'");
    return false;
}

std::vector<FleetScope> readScopes(ZelUnified::ConfigFeatureSet& configuration, std::vector<std::string>& problems) {
    std::vector<FleetScope> scopes{FleetScope::ofAll()};
    const auto groups = readList(configuration, FleetKeys::groups);
    for (auto group = groups.rbegin(); group != groups.rend(); ++group) {
        if (isUsableName(*group, problems)) {
            scopes.push_back(FleetScope::ofGroup(*group));
        }
    }
    auto user = read(configuration, FleetKeys::user);
    if (user.empty()) {
        user = KyrCoreUtils::ProcessUtils::getUserName();
    }
    if (isUsableName(user, problems)) {
        scopes.push_back(FleetScope::ofUser(user));
    }
    return scopes;
}

} // namespace

FleetSettings FleetSettings::read(ZelUnified::ConfigFeatureSet& configuration) {
    FleetSettings settings;
    settings.access = readAccess(configuration, settings.problems);
    if (settings.access.endpoints.empty()) {
        return settings;
    }
    settings.scopes = readScopes(configuration, settings.problems);
    settings.priority =
        KyrCoreUtils::toInt(readWide(configuration, FleetKeys::priority, Stores::Administrators), defaultPriority);
    return settings;
}

bool FleetSettings::isOwnKey(const std::wstring& key) {
    return std::ranges::any_of(
        ownKeys, [&](std::wstring_view own) { return KyrCoreUtils::caseInsensitiveStringEquals(own, key); });
}

void FleetSettings::markSensitiveKeys(ZelUnified::ConfigFeatureSet& configuration) {
    for (const auto key : FleetKeys::sensitiveKeys) {
        configuration.setKeySensitive(std::wstring(key));
    }
}

} // namespace fleet
