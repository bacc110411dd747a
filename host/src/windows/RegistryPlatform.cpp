#include "registry/PlatformRegistry.h"

#include <registry/RegistryFiles.h>

#include <algorithm>
#include <cstddef>
#include <limits>

namespace {

// Constants for names that the platform's header redefines as macros.
constexpr auto currentUserRoot = zel::registry::HKEY_CURRENT_USER;
constexpr auto localMachineRoot = zel::registry::HKEY_LOCAL_MACHINE;

} // namespace

#include <windows.h>

namespace {

/// Outside the namespace of the interface, because the platform's macros cast to any type named HKEY.
::HKEY toPlatform(zel::registry::HKEY key) {
    if (key == currentUserRoot) {
        return HKEY_CURRENT_USER;
    }
    if (key == localMachineRoot) {
        return HKEY_LOCAL_MACHINE;
    }
    return reinterpret_cast<::HKEY>(static_cast<std::uintptr_t>(key));
}

} // namespace

namespace zel::registry {

namespace {

RegistryResult resultOf(LSTATUS code) {
    return static_cast<RegistryResult>(code);
}

template <class Element>
DWORD roomOf(std::span<Element> buffer) {
    return static_cast<DWORD>(std::min<std::size_t>(buffer.size(), std::numeric_limits<DWORD>::max()));
}

/// The platform's registry. Predefined roots and opened keys are the platform's handles.
class WindowsRegistry final : public Registry {
public:
    RegistryResult RegOpenKeyExW(zel::registry::HKEY key, const wchar_t* subkey, std::uint32_t options,
                                 std::uint32_t access, zel::registry::HKEY& opened) override {
        ::HKEY handle = nullptr;
        const auto code = ::RegOpenKeyExW(toPlatform(key), subkey, options, access, &handle);
        if (code == ERROR_SUCCESS) {
            opened = zel::registry::HKEY{reinterpret_cast<std::uintptr_t>(handle)};
        }
        return resultOf(code);
    }

    RegistryResult RegQueryInfoKeyW(zel::registry::HKEY key, std::uint32_t& subkeys) override {
        DWORD count = 0;
        const auto code = ::RegQueryInfoKeyW(toPlatform(key), nullptr, nullptr, nullptr, &count, nullptr, nullptr,
                                             nullptr, nullptr, nullptr, nullptr, nullptr);
        if (code == ERROR_SUCCESS) {
            subkeys = count;
        }
        return resultOf(code);
    }

    RegistryResult RegEnumKeyExW(zel::registry::HKEY key, std::uint32_t index, std::span<wchar_t> name,
                                 std::uint32_t& nameLength) override {
        DWORD length = roomOf(name);
        const auto code =
            ::RegEnumKeyExW(toPlatform(key), index, name.data(), &length, nullptr, nullptr, nullptr, nullptr);
        nameLength = length;
        return resultOf(code);
    }

    RegistryResult RegEnumValueW(zel::registry::HKEY key, std::uint32_t index, std::span<wchar_t> name,
                                 std::uint32_t& nameLength, std::uint32_t& type, std::span<std::uint8_t> data,
                                 std::uint32_t& dataLength) override {
        DWORD length = roomOf(name);
        DWORD kind = REG_NONE;
        DWORD size = roomOf(data);
        const auto code =
            ::RegEnumValueW(toPlatform(key), index, name.data(), &length, nullptr, &kind, data.data(), &size);
        nameLength = length;
        type = kind;
        dataLength = size;
        return resultOf(code);
    }

    RegistryResult RegDeleteKeyW(zel::registry::HKEY key, const wchar_t* subkey) override {
        return resultOf(::RegDeleteKeyW(toPlatform(key), subkey));
    }

    RegistryResult RegQueryValueExA(zel::registry::HKEY key, const char* name, std::uint32_t& type,
                                    std::span<char> data, std::uint32_t& dataLength) override {
        DWORD kind = REG_NONE;
        DWORD size = roomOf(data);
        const auto code =
            ::RegQueryValueExA(toPlatform(key), name, nullptr, &kind, reinterpret_cast<LPBYTE>(data.data()), &size);
        type = kind;
        dataLength = size;
        return resultOf(code);
    }

    RegistryResult RegCloseKey(zel::registry::HKEY key) override { return resultOf(::RegCloseKey(toPlatform(key))); }
};

} // namespace

std::string getAdministratorRegistryFolder() {
    return {};
}

std::shared_ptr<Registry> makePlatformRegistry() {
    return std::make_shared<WindowsRegistry>();
}

} // namespace zel::registry
