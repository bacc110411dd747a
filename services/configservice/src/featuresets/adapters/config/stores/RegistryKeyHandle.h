#pragma once

#include <registry/Registry.h>

namespace ZelUnified {

/// A registry key opened for reading. The destructor closes it.
class RegistryKeyHandle {
public:
    RegistryKeyHandle(zel::registry::Registry& platformRegistry, zel::registry::HKEY root, const wchar_t* path)
        : registry(platformRegistry), result(registry.RegOpenKeyExW(root, path, 0, zel::registry::KEY_READ, key)) {}
    ~RegistryKeyHandle() { close(); }
    RegistryKeyHandle(const RegistryKeyHandle&) = delete;
    RegistryKeyHandle& operator=(const RegistryKeyHandle&) = delete;

    /// Returns false if opening the key failed, or succeeded without a handle.
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
