#pragma once

#include "InspectionClient.h"
#include "bundle/BundleContent.h"

namespace lumora_config {

/// Collects the content of a bundle from the running client; the health and the logs are read from the profile. Asks
/// for sensitive values, to remove them from the logs and from other values. Main thread.
BundleContent collectBundle(InspectionClient& client);

} // namespace lumora_config
