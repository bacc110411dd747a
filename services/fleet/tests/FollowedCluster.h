#pragma once

#include "EtcdCluster.h"
#include "FleetFollower.h"
#include "SettingsObserver.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace fleet_test {

/// Short enough for a test, long enough for a loaded machine.
inline fleet::FleetTimes shortTimes() {
    using std::chrono::milliseconds;
    return {milliseconds(3000), milliseconds(300), milliseconds(20),
            milliseconds(200),  milliseconds(20),  milliseconds(200)};
}

/// A client of group "nurses" and user "ada".
inline fleet::FleetSettings makeSettings(const ZelUnified::FleetAccess& access) {
    fleet::FleetSettings settings;
    settings.access = access;
    settings.scopes = {fleet::FleetScope::ofAll(), fleet::FleetScope::ofGroup("nurses"),
                       fleet::FleetScope::ofUser("ada")};
    return settings;
}

/// A watch with an observer.
struct Client {
    explicit Client(const ZelUnified::FleetAccess& access, const fleet::FleetTimes& times = shortTimes())
        : follower(makeSettings(access), times,
                   [this](ZelUnified::ConfigMap settings) { observer.receive(std::move(settings)); }) {}

    SettingsObserver observer;
    fleet::FleetFollower follower;
};

} // namespace fleet_test
