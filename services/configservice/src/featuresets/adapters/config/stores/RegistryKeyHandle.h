#pragma once

#include <registry/Registry.h>

namespace ZelUnified {

/// A key opened for reading, for the length of a scope.
class RegistryKeyHandle {
public:
    RegistryKeyHandle(zel::registry::Registry& platformRegistry, zel::registry::HKEY root, const wchar_t* path)
        : registry(platformRegistry), result(registry.RegOpenKeyExW(root, path, 0, zel::registry::KEY_READ, key)) {}
    ~RegistryKeyHandle() { close(); }
    RegistryKeyHandle(const RegistryKeyHandle&) = delete;
    RegistryKeyHandle& operator=(const RegistryKeyHandle&) = delete;

    /// False also when the opening went well and gave no key.
    explicit operator bool() const {
        return result == zel::registry::RegistryResult::Success && key != zel::registry::HKEY{};
    }
    zel::registry::RegistryResult getResult() const { return result; }
    zel::registry::HKEY get() const { return key; }

    void close() {
        if (key != zel::registry::HKEY{}) {
            registry.RegCloseKey(key);
            key = {};
        }
    }

private:
    zel::registry::Registry& registry;
    zel::registry::HKEY key{};
    zel::registry::RegistryResult result;
};

} // namespace ZelUnified
