#pragma once

#include <FleetAdministration.h>

#include <string>

namespace fleet {

/// Returns "" if the endpoint can be used, otherwise the reason. The endpoint may contain a password, so nothing quotes
/// it.
std::string findEndpointProblem(const ZelUnified::FleetAccess& access, const std::string& endpoint);

} // namespace fleet
