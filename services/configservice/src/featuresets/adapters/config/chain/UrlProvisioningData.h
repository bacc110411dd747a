#pragma once

#include <ConfigMap.h>

#include <string_view>

namespace ZelUnified {

/// Returns the settings in the query of a provisioning URL: `key=value` pairs. Silently drops keys that provisioning
/// may not set. Does not percent-decode; keeps the spelling of keys; the last value of a repeated key wins. Returns an
/// empty map for a URL without a query or with more than 999 characters.
ConfigMap parseUrlProvisioningData(std::wstring_view url);

} // namespace ZelUnified
