#pragma once

#include <registry/Registry.h>

#include <ConfigMap.h>

#include <array>
#include <cstdint>
#include <span>
#include <string>

namespace ZelUnified {

/// Flattens a tree of the current user's registry into one table, without the paths. The first occurrence of a key
/// wins: a parent before its children, lower indices first.
class RegistryTreeReader {
public:
    RegistryTreeReader(zel::registry::Registry& platformRegistry, ConfigMap& table)
        : registry(platformRegistry), values(table) {}

    /// Adds the values of the key and its subkeys. Adds nothing if the key cannot be opened.
    void read(const std::wstring& path);

private:
    void readValues(zel::registry::HKEY key);
    void insert(std::wstring key, std::uint32_t type, std::span<const std::uint8_t> data);
    void walkSubkeys(zel::registry::HKEY key, const std::wstring& path, std::uint32_t bound, std::uint32_t count);
    void readSubkey(const std::wstring& path, std::uint32_t bound);
    std::uint32_t countSubkeys(zel::registry::HKEY key);

    zel::registry::Registry& registry;
    ConfigMap& values;
    std::array<wchar_t, 260> valueName{};
    std::array<std::uint8_t, 4096> valueData{};
    std::array<wchar_t, 255> keyName{};
};

} // namespace ZelUnified
