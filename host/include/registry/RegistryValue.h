#pragma once

#include <registry/Registry.h>
#include <zel/HostExport.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zel::registry {

/// One value of a key. The empty name denotes the key's default value.
struct RegistryValue {
    std::wstring name;
    std::uint32_t type = REG_NONE;
    std::vector<std::uint8_t> data;

    bool operator==(const RegistryValue&) const = default;
};

/// Returns true if the data of such a value is a text or a list of texts.
constexpr bool isRegistryText(std::uint32_t type) noexcept {
    return type == REG_SZ || type == REG_EXPAND_SZ || type == REG_MULTI_SZ;
}

/// Returns the data of a text value: UTF-16, low byte first, with a terminator.
LUMORA_HOST_API std::vector<std::uint8_t> encodeRegistryText(std::wstring_view text);

/// Returns the text up to the first terminator, or the whole text if there is none. Ignores an odd last byte. Replaces
/// a lone surrogate with U+FFFD if wchar_t holds code points.
LUMORA_HOST_API std::wstring decodeRegistryText(std::span<const std::uint8_t> data);

/// Returns the whole text, terminators included.
LUMORA_HOST_API std::wstring decodeAllRegistryText(std::span<const std::uint8_t> data);

/// Returns the text of a value: the first string of a text type or a list, the number of a REG_DWORD in decimals.
/// Returns nothing for another type.
LUMORA_HOST_API std::optional<std::wstring> decodeRegistryValue(std::uint32_t type, std::span<const std::uint8_t> data);

/// Returns a REG_SZ value.
LUMORA_HOST_API RegistryValue makeTextValue(std::wstring name, std::wstring_view text);
/// Returns a REG_DWORD value.
LUMORA_HOST_API RegistryValue makeNumberValue(std::wstring name, std::uint32_t number);

} // namespace zel::registry
