#pragma once

#include "InspectionClient.h"
#include "bundle/BundleContent.h"

namespace lumora_config {

/// Returns the content of a bundle about the running client. `chain` contains its masked findings; the logs are read
/// from the profile. Requests the sensitive values, to remove them from the logs and from other values. Main thread.
BundleContent collectBundle(InspectionClient& client, ChainFindings chain);

} // namespace lumora_config
