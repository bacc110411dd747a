#pragma once

#include "InspectionClient.h"
#include "bundle/BundleContent.h"

namespace lumora_config {

/// Returns the content of a bundle about the running client, whose masked findings are `chain`; reads the logs from the
/// profile. Asks for sensitive values, to remove them from the logs and from other values. Main thread.
BundleContent collectBundle(InspectionClient& client, ChainFindings chain);

} // namespace lumora_config
