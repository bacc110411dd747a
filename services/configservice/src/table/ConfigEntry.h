#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <string>
#include <string_view>

namespace ZelUnified {

/// A key and its value in one block of memory: a table needs one allocation for each entry, and each value is next to
/// its key. A value that does not fit its space moves to a separate allocation. Zeroes each value before freeing or
/// overwriting it.
///
/// With the nodes of a ConfigMap instead, a load takes 2.3 times as long at 500 keys in a document and half as long
/// again at 5,000, and the service needs 10 % more memory.
class ConfigEntry {
public:
    struct Deleter {
        void operator()(ConfigEntry* entry) const noexcept;
    };
    using Owner = std::unique_ptr<ConfigEntry, Deleter>;

    static Owner make(std::wstring_view key, std::wstring_view value);
    /// Allocates the entry in `arena`, which must outlive it.
    static Owner make(std::wstring_view key, std::wstring_view value, std::pmr::monotonic_buffer_resource& arena);
    ConfigEntry(const ConfigEntry&) = delete;
    ConfigEntry& operator=(const ConfigEntry&) = delete;

    std::wstring_view getKey() const noexcept { return {keyCharacters(), keyLength}; }
    std::wstring_view getValue() const noexcept { return {outgrown ? outgrown.get() : initialSpace(), valueLength}; }
    /// Overwrites the value. `next` may refer to a part of the current value. If an allocation fails, throws and leaves
    /// the value unchanged.
    void setValue(std::wstring_view next);

private:
    using Length = std::uint32_t;

    ConfigEntry(std::wstring_view key, std::wstring_view value, bool hasOwnMemory) noexcept;
    ~ConfigEntry();

    static Length toLength(std::wstring_view text);
    static std::size_t sizeOf(std::wstring_view key, std::wstring_view value);

    /// The memory after this object contains the key, then the space for the initial value.
    const wchar_t* keyCharacters() const noexcept { return reinterpret_cast<const wchar_t*>(this + 1); }
    wchar_t* keyCharacters() noexcept { return reinterpret_cast<wchar_t*>(this + 1); }
    const wchar_t* initialSpace() const noexcept { return keyCharacters() + keyLength; }
    wchar_t* initialSpace() noexcept { return keyCharacters() + keyLength; }
    wchar_t* valueCharacters() noexcept { return outgrown ? outgrown.get() : initialSpace(); }
    void wipeValueFrom(Length position) noexcept;

    std::unique_ptr<wchar_t[]> outgrown; ///< The value, if it does not fit the initial space.
    Length valueLength;
    Length valueCapacity;
    Length keyLength;
    bool ownsMemory;
};

/// Returns the key of an entry, for a KeyIndex.
struct KeyOfConfigEntry {
    std::wstring_view operator()(const ConfigEntry& entry) const noexcept { return entry.getKey(); }
};

} // namespace ZelUnified
