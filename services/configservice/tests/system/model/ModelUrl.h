#pragma once

#include "ModelStore.h"

#include <string>

namespace config_model {

/// Returns the settings of a provisioning URL in its spelling. The last setting of a repeated key wins.
Pairs readProvisioningUrl(const std::wstring& url);

} // namespace config_model
