#pragma once

#include <FleetAdministration.h>

#include <string>

namespace fleet {

using ClusterAccess = ZelUnified::FleetAccess;

/// Returns "" if the endpoint can be used, otherwise the reason. The endpoint may contain a password, so nothing quotes
/// it.
std::string findEndpointProblem(const ClusterAccess& access, const std::string& endpoint);

} // namespace fleet
