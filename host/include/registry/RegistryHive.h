#pragma once

#include <registry/RegistryValue.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zel::registry {

class RegistryTree;

/// The absolute position of a key.
struct RegistryPlace {
    HKEY root{};
    std::wstring path;
};

/// An in-memory registry with both roots, initially empty. Subkeys are enumerated in case-insensitive order, values in
/// the order in which they were first set. The handle of a deleted key is invalid. Every operation holds the hive's own
/// lock; no other lock is acquired under it.
class LUMORA_HOST_API RegistryHive : public Registry {
public:
    RegistryHive();
    ~RegistryHive() override;
    RegistryHive(const RegistryHive&) = delete;
    RegistryHive& operator=(const RegistryHive&) = delete;

    /// Creates the key and its missing parents.
    void makeKey(HKEY root, std::wstring_view path);
    /// Sets the value and creates its key if necessary. An existing value of that name keeps its position.
    void setValue(HKEY root, std::wstring_view path, RegistryValue value);
    /// Deletes the key with all its subkeys. Returns false if the key does not exist.
    bool removeTree(HKEY root, std::wstring_view path);
    bool hasKey(HKEY root, std::wstring_view path) const;
    bool hasSubkeys(HKEY root, std::wstring_view path) const;

    /// Returns the number of handles that are not closed.
    std::size_t getOpenKeyCount() const;
    /// Returns the absolute position of the key that an operation refers to; nullopt if the handle is invalid.
    std::optional<RegistryPlace> getPlace(HKEY key, std::wstring_view subkey) const;
    /// Replaces the whole tree. Open handles still refer to the old one.
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
