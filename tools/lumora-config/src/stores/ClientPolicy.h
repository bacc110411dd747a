#pragma once

#include <registry/RegistryValue.h>

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

/// Returns the text that the client reads from a value of such a type: the decimal number, or the first string.
std::wstring getPolicyText(const zel::registry::RegistryValue& value);

} // namespace lumora_config
