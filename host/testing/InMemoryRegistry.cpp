#include "InMemoryRegistry.h"

#include <utility>

namespace testing_host {

using namespace zel::registry;

InMemoryRegistry::Installed::Installed() : registry(std::make_shared<InMemoryRegistry>()) {
    overrideRegistry(registry);
}

InMemoryRegistry::Installed::~Installed() {
    overrideRegistry(nullptr);
}

void InMemoryRegistry::setText(HKEY root, std::wstring_view path, std::wstring name, std::wstring_view text) {
    setValue(root, path, makeTextValue(std::move(name), text));
}

void InMemoryRegistry::setNumber(HKEY root, std::wstring_view path, std::wstring name, std::uint32_t number) {
    setValue(root, path, makeNumberValue(std::move(name), number));
}

RegistryResult InMemoryRegistry::RegOpenKeyExW(HKEY key, const wchar_t* subkey, std::uint32_t options,
                                               std::uint32_t access, HKEY& handle) {
    opened.push_back({key, subkey, options, access});
    if (const auto found = failingToOpen.find(subkey); found != failingToOpen.end()) {
        return found->second;
    }
    return RegistryHive::RegOpenKeyExW(key, subkey, options, access, handle);
}

RegistryResult InMemoryRegistry::RegEnumKeyExW(HKEY key, std::uint32_t index, std::span<wchar_t> name,
                                               std::uint32_t& nameLength) {
    if (failingIndex == static_cast<std::int64_t>(index)) {
        return RegistryResult::AccessDenied;
    }
    return RegistryHive::RegEnumKeyExW(key, index, name, nameLength);
}

RegistryResult InMemoryRegistry::RegDeleteKeyW(HKEY key, const wchar_t* subkey) {
    deletions.emplace_back(subkey);
    if (const auto found = failingToDelete.find(subkey); found != failingToDelete.end()) {
        return found->second;
    }
    return RegistryHive::RegDeleteKeyW(key, subkey);
}

RegistryResult InMemoryRegistry::RegCloseKey(HKEY key) {
    closed.push_back(key);
    return RegistryHive::RegCloseKey(key);
}

} // namespace testing_host
