#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace testing_host {

/// A key of the current user in the platform's own registry, which is removed with all below it when the object is
/// destroyed. What was there before the test is lost, so it belongs in a registry for tests.
class PlatformRegistryKey {
public:
    /// Creates the key; `path` is relative to the root.
    explicit PlatformRegistryKey(std::wstring path);
    ~PlatformRegistryKey();
    PlatformRegistryKey(const PlatformRegistryKey&) = delete;
    PlatformRegistryKey& operator=(const PlatformRegistryKey&) = delete;

    const std::wstring& getPath() const { return path; }
    /// Sets a value of a key below this one, which is created; an empty `subkey` is this key, an empty name its default
    /// value.
    void setText(const std::wstring& subkey, const std::wstring& name, const std::wstring& text);
    void setNumber(const std::wstring& subkey, const std::wstring& name, std::uint32_t number);
    void setRaw(const std::wstring& subkey, const std::wstring& name, std::uint32_t type,
                const std::vector<std::uint8_t>& data);
    /// Returns true if the key exists; `path` is relative to the root.
    static bool exists(const std::wstring& path);

private:
    std::wstring path;
};

} // namespace testing_host
