#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace ZelUnified {

class EntryBlocks;

/// A key and its value in one block of memory: a table of them costs an allocation for each, and whoever finds a key
/// has its value at hand. A value that outgrows its room moves to memory of its own. Zeroes each value that goes.
class ConfigEntry {
public:
    struct Deleter {
        void operator()(ConfigEntry* entry) const noexcept;
    };
    using Owner = std::unique_ptr<ConfigEntry, Deleter>;

    static Owner make(std::wstring_view key, std::wstring_view value);
    /// In the blocks, which must outlive it.
    static Owner make(std::wstring_view key, std::wstring_view value, EntryBlocks& blocks);
    ConfigEntry(const ConfigEntry&) = delete;
    ConfigEntry& operator=(const ConfigEntry&) = delete;

    std::wstring_view getKey() const noexcept { return {keyText(), keyLength}; }
    std::wstring_view getValue() const noexcept { return {outgrown ? outgrown.get() : firstRoom(), valueLength}; }
    /// The value stays as it is when there is no memory for the next one, which may be part of it.
    void setValue(std::wstring_view next);

private:
    using Length = std::uint32_t;

    ConfigEntry(std::wstring_view key, std::wstring_view value, bool hasOwnMemory) noexcept;
    ~ConfigEntry();

    static Length toLength(std::wstring_view text);
    static std::size_t sizeOf(std::wstring_view key, std::wstring_view value);

    /// The key stands right behind the entry, and behind it the room for the value that the entry was made with.
    const wchar_t* keyText() const noexcept { return reinterpret_cast<const wchar_t*>(this + 1); }
    wchar_t* keyText() noexcept { return reinterpret_cast<wchar_t*>(this + 1); }
    const wchar_t* firstRoom() const noexcept { return keyText() + keyLength; }
    wchar_t* firstRoom() noexcept { return keyText() + keyLength; }
    wchar_t* valueText() noexcept { return outgrown ? outgrown.get() : firstRoom(); }
    void wipeValueFrom(Length place) noexcept;

    std::unique_ptr<wchar_t[]> outgrown; ///< The value, when the first room is too small for it.
    Length valueLength;
    Length valueCapacity;
    Length keyLength;
    bool ownsMemory;
};

/// The key of an entry, for a KeyIndex.
struct KeyOfConfigEntry {
    std::wstring_view operator()(const ConfigEntry& entry) const noexcept { return entry.getKey(); }
};

} // namespace ZelUnified
