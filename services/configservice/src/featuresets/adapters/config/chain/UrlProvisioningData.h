#pragma once

#include <ConfigMap.h>

#include <string_view>

namespace ZelUnified {

/// The settings in the query of a provisioning URL: `key=value` pairs of the keys that provisioning may set, the rest
/// dropped in silence. Nothing is percent-decoded, keys keep the URL's spelling, a repeated key takes the last value.
/// Empty for a URL without a query or of more than 999 characters.
ConfigMap parseUrlProvisioningData(std::wstring_view url);

} // namespace ZelUnified
