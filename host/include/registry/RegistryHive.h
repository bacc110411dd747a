#pragma once

#include <registry/RegistryValue.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zel::registry {

class RegistryTree;

/// Where a key lies.
struct RegistryPlace {
    HKEY root{};
    std::wstring path;
};

/// A registry in memory: both roots, empty at first. Subkeys come in case-insensitive order, values in the order in
/// which they were first set. A handle to a key that was deleted is an invalid one. Every operation takes the hive's
/// own lock, the innermost one.
class LUMORA_HOST_API RegistryHive : public Registry {
public:
    RegistryHive();
    ~RegistryHive() override;
    RegistryHive(const RegistryHive&) = delete;
    RegistryHive& operator=(const RegistryHive&) = delete;

    /// Makes the key and those above it.
    void makeKey(HKEY root, std::wstring_view path);
    /// Sets the value, making its key. An older value of that name keeps its place.
    void setValue(HKEY root, std::wstring_view path, RegistryValue value);
    /// Deletes the key with all that lies below it. False when there was none.
    bool removeTree(HKEY root, std::wstring_view path);
    bool hasKey(HKEY root, std::wstring_view path) const;
    bool hasSubkeys(HKEY root, std::wstring_view path) const;

    /// The number of handles that are not closed.
    std::size_t getOpenKeyCount() const;
    /// The absolute place that an operation means; nothing for an invalid handle.
    std::optional<RegistryPlace> getPlace(HKEY key, std::wstring_view subkey) const;
    /// Takes over a whole tree. Open handles stay with the old one.
    void replaceTree(std::unique_ptr<RegistryTree> tree);

    RegistryResult RegOpenKeyExW(HKEY key, const wchar_t* subkey, std::uint32_t options, std::uint32_t access,
                                 HKEY& opened) override;
    RegistryResult RegQueryInfoKeyW(HKEY key, std::uint32_t& subkeys) override;
    RegistryResult RegEnumKeyExW(HKEY key, std::uint32_t index, std::span<wchar_t> name,
                                 std::uint32_t& nameLength) override;
    RegistryResult RegEnumValueW(HKEY key, std::uint32_t index, std::span<wchar_t> name, std::uint32_t& nameLength,
                                 std::uint32_t& type, std::span<std::uint8_t> data, std::uint32_t& dataLength) override;
    RegistryResult RegDeleteKeyW(HKEY key, const wchar_t* subkey) override;
    RegistryResult RegQueryValueExA(HKEY key, const char* name, std::uint32_t& type, std::span<char> data,
                                    std::uint32_t& dataLength) override;
    RegistryResult RegCloseKey(HKEY key) override;

private:
    struct State;
    std::unique_ptr<State> state;
};

} // namespace zel::registry
