#pragma once

#include <registry/Registry.h>

#include <ConfigMap.h>

#include <array>
#include <cstdint>
#include <span>
#include <string>

namespace ZelUnified {

/// Flattens a tree of the current user's registry into one table. The path is lost; the first met wins a key: a parent
/// before its children, lower indices first.
class RegistryTreeReader {
public:
    RegistryTreeReader(zel::registry::Registry& platformRegistry, ConfigMap& table)
        : registry(platformRegistry), values(table) {}

    /// A key that can't be opened adds nothing.
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
