#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// What the client reads from the registry.
namespace lumora_config {

/// Returns the key of the client's policy below HKEY_CURRENT_USER.
std::wstring getPolicyKey();

/// Returns true if the key is the policy key or below it. `path` is relative to the root.
bool isInPolicy(std::wstring_view path);

/// Returns true if the client reads values of that type. It ignores the others.
bool isReadByClient(std::uint32_t valueType);

} // namespace lumora_config
