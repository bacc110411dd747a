#include "FleetAdministrationImpl.h"

#include "FleetTable.h"

#include <algorithm>
#include <utility>

namespace fleet {

using ZelUnified::FleetAudience;
using ZelUnified::FleetPair;

FleetAdministrationImpl::FleetAdministrationImpl(const ZelUnified::FleetAccess& clusterAccess)
    : access(clusterAccess), session(clusterAccess) {}

FleetScope FleetAdministrationImpl::toScope(const FleetAudience& audience) {
    if (audience.kind == FleetAudience::Kind::All) {
        return FleetScope::ofAll();
    }
    if (!FleetScope::isName(audience.name)) {
        throw EtcdError("the name of a group or user is not empty and contains no '/'");
    }
    return audience.kind == FleetAudience::Kind::Group ? FleetScope::ofGroup(audience.name)
                                                       : FleetScope::ofUser(audience.name);
}

void FleetAdministrationImpl::put(const FleetPair& pair) {
    const auto reason = FleetTable::findPairProblem(pair.key, pair.value);
    if (!reason.empty()) {
        throw EtcdError("no client would use this setting: " + reason);
    }
    session.put(toScope(pair.audience).prefix + pair.key, pair.value);
}

bool FleetAdministrationImpl::remove(const FleetAudience& audience, const std::string& key) {
    return session.remove(toScope(audience).prefix + key);
}

std::optional<std::string> FleetAdministrationImpl::findKey(const FleetAudience& audience, const std::string& key) {
    return session.findKey(toScope(audience), key);
}

std::optional<FleetPair> FleetAdministrationImpl::find(const FleetAudience& audience, const std::string& key) {
    const auto scope = toScope(audience);
    auto spelling = session.findKey(scope, key);
    auto value = spelling ? session.get(scope, *spelling) : std::nullopt;
    if (!value) {
        return std::nullopt;
    }
    return FleetPair{audience, std::move(*spelling), std::move(*value)};
}

std::vector<FleetPair> FleetAdministrationImpl::list(const std::vector<FleetAudience>& audiences) {
    std::vector<FleetScope> scopes;
    std::ranges::transform(audiences, std::back_inserter(scopes), toScope);
    std::vector<FleetPair> pairs;
    for (auto& pair : session.list(scopes)) {
        const auto scope = std::ranges::find_if(
            scopes, [&](const FleetScope& candidate) { return pair.key.starts_with(candidate.prefix); });
        if (scope != scopes.end()) {
            const auto index = static_cast<std::size_t>(scope - scopes.begin());
            pairs.push_back({audiences[index], pair.key.substr(scope->prefix.size()), std::move(pair.value)});
        }
    }
    return pairs;
}

void FleetAdministrationImpl::watch(const std::vector<FleetAudience>& audiences, Listener listener) {
    FleetSettings settings;
    settings.access = access;
    std::ranges::transform(audiences, std::back_inserter(settings.scopes), toScope);
    session.check(settings.scopes); // the watch itself would try again for ever
    follower = std::make_unique<FleetFollower>(std::move(settings), FleetTimes(), std::move(listener));
}

} // namespace fleet

extern "C" void OpenFleetAdministration(const ZelUnified::FleetAccess& access,
                                        std::unique_ptr<ZelUnified::FleetAdministration>& opened) {
    opened = std::make_unique<fleet::FleetAdministrationImpl>(access);
}
