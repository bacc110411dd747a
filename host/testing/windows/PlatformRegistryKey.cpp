#include "PlatformRegistryKey.h"

#include <windows.h>

#include <stdexcept>

namespace testing_host {

namespace {

class OpenKey {
public:
    explicit OpenKey(const std::wstring& path) {
        if (::RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr) !=
            ERROR_SUCCESS) {
            throw std::runtime_error("the key cannot be created");
        }
    }
    ~OpenKey() { ::RegCloseKey(key); }
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;

    void set(const std::wstring& name, DWORD type, const void* data, std::size_t size) const {
        if (::RegSetValueExW(key, name.c_str(), 0, type, static_cast<const BYTE*>(data), static_cast<DWORD>(size)) !=
            ERROR_SUCCESS) {
            throw std::runtime_error("the value cannot be set");
        }
    }

private:
    HKEY key = nullptr;
};

} // namespace

PlatformRegistryKey::PlatformRegistryKey(std::wstring keyPath) : path(std::move(keyPath)) {
    ::RegDeleteTreeW(HKEY_CURRENT_USER, path.c_str());
    const OpenKey created(path);
}

PlatformRegistryKey::~PlatformRegistryKey() {
    ::RegDeleteTreeW(HKEY_CURRENT_USER, path.c_str());
}

void PlatformRegistryKey::setText(const std::wstring& subkey, const std::wstring& name, const std::wstring& text) {
    OpenKey(path + subkey).set(name, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
}

void PlatformRegistryKey::setNumber(const std::wstring& subkey, const std::wstring& name, std::uint32_t number) {
    OpenKey(path + subkey).set(name, REG_DWORD, &number, sizeof number);
}

void PlatformRegistryKey::setRaw(const std::wstring& subkey, const std::wstring& name, std::uint32_t type,
                                 const std::vector<std::uint8_t>& data) {
    OpenKey(path + subkey).set(name, type, data.data(), data.size());
}

bool PlatformRegistryKey::exists(const std::wstring& path) {
    HKEY key = nullptr;
    if (::RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) {
        return false;
    }
    ::RegCloseKey(key);
    return true;
}

} // namespace testing_host
