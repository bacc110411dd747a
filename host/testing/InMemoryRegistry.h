#pragma once

#include <registry/RegistryHive.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace testing_host {

/// An in-memory registry that records the opened keys and makes chosen calls fail. Not thread-safe.
class InMemoryRegistry final : public zel::registry::RegistryHive {
public:
    using HKEY = zel::registry::HKEY;
    using RegistryResult = zel::registry::RegistryResult;

    /// Creates a registry and installs it as the process's registry until the last owner releases it.
    class Installed {
    public:
        Installed();
        ~Installed();
        Installed(const Installed&) = delete;
        Installed& operator=(const Installed&) = delete;
        InMemoryRegistry* operator->() const { return registry.get(); }
        InMemoryRegistry& operator*() const { return *registry; }

    private:
        std::shared_ptr<InMemoryRegistry> registry;
    };

    struct Opened {
        HKEY root;
        std::wstring path;
        std::uint32_t options;
        std::uint32_t access;
    };

    void setText(HKEY root, std::wstring_view path, std::wstring name, std::wstring_view text);
    void setNumber(HKEY root, std::wstring_view path, std::wstring name, std::uint32_t number);

    /// Makes opening (or deleting) that path return the result. Success returns no handle, but the null key.
    void failOpening(std::wstring path, RegistryResult result) { failingToOpen[std::move(path)] = result; }
    void failDeleting(std::wstring path, RegistryResult result) { failingToDelete[std::move(path)] = result; }
    /// Makes enumerating subkeys fail at that index, for every key.
    void failEnumerating(std::uint32_t index) { failingIndex = static_cast<std::int64_t>(index); }

    const std::vector<Opened>& getOpened() const { return opened; }
    /// Returns the keys that were passed to RegDeleteKeyW(), including failed deletions.
    const std::vector<std::wstring>& getDeletions() const { return deletions; }
    /// Returns the handles that were passed to RegCloseKey().
    const std::vector<HKEY>& getClosed() const { return closed; }

    RegistryResult RegOpenKeyExW(HKEY key, const wchar_t* subkey, std::uint32_t options, std::uint32_t access,
                                 HKEY& handle) override;
    RegistryResult RegEnumKeyExW(HKEY key, std::uint32_t index, std::span<wchar_t> name,
                                 std::uint32_t& nameLength) override;
    RegistryResult RegDeleteKeyW(HKEY key, const wchar_t* subkey) override;
    RegistryResult RegCloseKey(HKEY key) override;

private:
    std::map<std::wstring, RegistryResult> failingToOpen;
    std::map<std::wstring, RegistryResult> failingToDelete;
    std::int64_t failingIndex = -1;
    std::vector<Opened> opened;
    std::vector<std::wstring> deletions;
    std::vector<HKEY> closed;
};

} // namespace testing_host
