#pragma once

#include <registry/RegistryHive.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace testing_host {

/// A registry in memory that is the process's own while it lives, remembers what was opened, and fails where it is
/// told. For one thread.
class InMemoryRegistry final : public zel::registry::RegistryHive {
public:
    using HKEY = zel::registry::HKEY;
    using RegistryResult = zel::registry::RegistryResult;

    /// Makes one and puts it in the place of the platform's until the last holder lets it go.
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

    /// From here on opening, or deleting, that path answers the result. Success with no handle: the null key.
    void failOpening(std::wstring path, RegistryResult result) { failingToOpen[std::move(path)] = result; }
    void failDeleting(std::wstring path, RegistryResult result) { failingToDelete[std::move(path)] = result; }
    /// From here on enumerating subkeys fails at that index, whichever key.
    void failEnumerating(std::uint32_t index) { failingIndex = static_cast<std::int64_t>(index); }

    const std::vector<Opened>& getOpened() const { return opened; }
    /// The keys whose deletion was asked for.
    const std::vector<std::wstring>& getDeletions() const { return deletions; }
    /// Handles given to RegCloseKey().
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
