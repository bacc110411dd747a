#pragma once

#include <registry/Registry.h>
#include <registry/RegistryValue.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Reads a registry through the seven operations, as its callers do.
namespace registry_reading {

using namespace zel::registry;

/// Holds a key open for a scope.
class Key {
public:
    Key(Registry& owner, HKEY root, const std::wstring& path) : registry(owner) {
        result = registry.RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, handle);
    }
    ~Key() {
        if (result == RegistryResult::Success) {
            registry.RegCloseKey(handle);
        }
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    RegistryResult getResult() const { return result; }
    HKEY get() const { return handle; }

    std::vector<RegistryValue> getValues() const {
        std::vector<RegistryValue> values;
        std::vector<wchar_t> name(16384);
        std::vector<std::uint8_t> data(1 << 20);
        RegistryValue value;
        std::uint32_t nameLength = 0;
        std::uint32_t dataLength = 0;
        for (std::uint32_t index = 0; registry.RegEnumValueW(handle, index, name, nameLength, value.type, data,
                                                             dataLength) == RegistryResult::Success;
             ++index) {
            value.name.assign(name.data(), nameLength);
            value.data.assign(data.begin(), data.begin() + dataLength);
            values.push_back(value);
        }
        return values;
    }

    std::vector<std::wstring> getSubkeys() const {
        std::vector<std::wstring> names;
        std::array<wchar_t, 300> name{};
        std::uint32_t length = 0;
        for (std::uint32_t index = 0; registry.RegEnumKeyExW(handle, index, name, length) == RegistryResult::Success;
             ++index) {
            names.emplace_back(name.data(), length);
        }
        return names;
    }

private:
    Registry& registry;
    HKEY handle{};
    RegistryResult result;
};

inline bool hasKey(Registry& registry, const std::wstring& path, HKEY root = HKEY_CURRENT_USER) {
    return Key(registry, root, path).getResult() == RegistryResult::Success;
}

/// Returns the text of one value of the key, or nothing if the key or the value does not exist.
inline std::optional<std::wstring> textOf(Registry& registry, const std::wstring& path, const std::wstring& name,
                                          HKEY root = HKEY_CURRENT_USER) {
    const Key key(registry, root, path);
    for (const auto& value : key.getValues()) {
        if (value.name == name) {
            return decodeRegistryText(value.data);
        }
    }
    return std::nullopt;
}

} // namespace registry_reading
