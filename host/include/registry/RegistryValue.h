#pragma once

#include <registry/Registry.h>
#include <zel/HostExport.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zel::registry {

/// One value of a key. The empty name is the key's default value.
struct RegistryValue {
    std::wstring name;
    std::uint32_t type = REG_NONE;
    std::vector<std::uint8_t> data;

    bool operator==(const RegistryValue&) const = default;
};

/// The data of a text value: UTF-16, low byte first, with a terminator.
LUMORA_HOST_API std::vector<std::uint8_t> encodeRegistryText(std::wstring_view text);

/// The text up to the first terminator, or the whole where there is none. An odd last byte is left out; a lone
/// surrogate becomes U+FFFD where wchar_t holds code points.
LUMORA_HOST_API std::wstring decodeRegistryText(std::span<const std::uint8_t> data);

/// The whole, terminators included.
LUMORA_HOST_API std::wstring decodeAllRegistryText(std::span<const std::uint8_t> data);

/// A REG_SZ value.
LUMORA_HOST_API RegistryValue makeTextValue(std::wstring name, std::wstring_view text);
/// A REG_DWORD value.
LUMORA_HOST_API RegistryValue makeNumberValue(std::wstring name, std::uint32_t number);

} // namespace zel::registry
