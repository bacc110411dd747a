#pragma once

#include "ModelStore.h"

#include <string>

namespace config_model {

/// The settings in a provisioning URL, in the spelling of the URL; the last one of a repeated key counts.
Pairs readProvisioningUrl(const std::wstring& url);

} // namespace config_model
