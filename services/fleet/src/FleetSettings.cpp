#include "FleetSettings.h"

#include "EndpointProblem.h"
#include "LoggedText.h"

#include <kyr/ProcessUtils.h>
#include <kyr/StringUtils.h>

#include <ConfigKeys.h>

#include <algorithm>
#include <iterator>

namespace fleet {

namespace ConfigKeys = ZelUnified::ConfigKeys;

namespace {

std::string read(const AdministratorValues& values, std::wstring_view key) {
    return KyrCoreUtils::trim(KyrCoreUtils::toString(values.get(key)));
}

std::vector<std::string> readList(const AdministratorValues& values, std::wstring_view key) {
    std::vector<std::string> parts;
    KyrCoreUtils::split(read(values, key), parts, ",");
    std::ranges::transform(parts, parts.begin(), [](const auto& part) { return KyrCoreUtils::trim(part); });
    std::erase(parts, "");
    return parts;
}

ZelUnified::FleetAccess readAccess(const AdministratorValues& values, std::vector<std::string>& problems) {
    ZelUnified::FleetAccess access;
    access.plainHttpAllowed = KyrCoreUtils::toBool(values.get(ConfigKeys::fleetPlainHttpAllowed));
    access.endpoints = readList(values, ConfigKeys::fleetEndpoints);
    std::erase_if(access.endpoints, [&](const std::string& endpoint) {
        const auto reason = findEndpointProblem(access, endpoint);
        if (!reason.empty()) {
            problems.push_back("An endpoint is not used: " + reason);
        }
        return !reason.empty();
    });
    access.authority = read(values, ConfigKeys::fleetCertificateAuthority);
    access.clientCertificate = read(values, ConfigKeys::fleetClientCertificate);
    access.clientKey = read(values, ConfigKeys::fleetClientKey);
    return access;
}

bool isUsableName(const std::string& name, std::vector<std::string>& problems) {
    if (FleetScope::isName(name)) {
        return true;
    }
    problems.push_back("The group or user [" + toLoggedText(name) + "] is not used: its name is empty or contains '/'");
    return false;
}

/// Returns the groups in the order of the list, which is that of their precedence.
std::vector<std::string> readGroups(const AdministratorValues& values, std::vector<std::string>& problems) {
    auto groups = readList(values, ConfigKeys::fleetGroups);
    std::erase_if(groups, [&](const std::string& group) { return !isUsableName(group, problems); });
    if (groups.size() > FleetSettings::maxGroups) {
        problems.push_back("The client has " + std::to_string(groups.size()) + " groups; only the first " +
                           std::to_string(FleetSettings::maxGroups) + " are used");
        groups.resize(FleetSettings::maxGroups);
    }
    return groups;
}

std::vector<FleetScope> readScopes(const AdministratorValues& values, std::vector<std::string>& problems) {
    std::vector<FleetScope> scopes{FleetScope::ofAll()};
    const auto groups = readGroups(values, problems);
    std::transform(groups.rbegin(), groups.rend(), std::back_inserter(scopes), FleetScope::ofGroup);
    auto user = read(values, ConfigKeys::fleetUser);
    if (user.empty()) {
        user = KyrCoreUtils::ProcessUtils::getUserName();
    }
    if (isUsableName(user, problems)) {
        scopes.push_back(FleetScope::ofUser(user));
    }
    return scopes;
}

} // namespace

FleetSettings FleetSettings::read(const AdministratorValues& values, const ZelUnified::WipedText& username,
                                  const ZelUnified::WipedText& password) {
    FleetSettings settings;
    settings.access = readAccess(values, settings.problems);
    settings.access.username = username.view();
    settings.access.password = password;
    if (settings.access.endpoints.empty()) {
        return settings;
    }
    settings.scopes = readScopes(values, settings.problems);
    settings.priority = KyrCoreUtils::toInt(values.get(ConfigKeys::fleetPriority), defaultPriority);
    return settings;
}

} // namespace fleet
