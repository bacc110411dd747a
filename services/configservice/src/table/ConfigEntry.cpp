#include "ConfigEntry.h"

#include "secure/WipeBytes.h"

#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

namespace ZelUnified {

namespace {

using Characters = std::char_traits<wchar_t>;

} // namespace

ConfigEntry::Owner ConfigEntry::make(std::wstring_view key, std::wstring_view value) {
    static_assert(alignof(ConfigEntry) >= alignof(wchar_t), "the characters follow the object directly");
    void* const memory = ::operator new(sizeOf(key, value));
    return Owner(new (memory) ConfigEntry(key, value, true));
}

ConfigEntry::Owner ConfigEntry::make(std::wstring_view key, std::wstring_view value,
                                     std::pmr::monotonic_buffer_resource& arena) {
    void* const memory = arena.allocate(sizeOf(key, value), alignof(ConfigEntry));
    return Owner(new (memory) ConfigEntry(key, value, false));
}

void ConfigEntry::Deleter::operator()(ConfigEntry* entry) const noexcept {
    const bool isOnHeap = entry->ownsMemory;
    entry->~ConfigEntry();
    if (isOnHeap) {
        ::operator delete(entry);
    }
}

ConfigEntry::ConfigEntry(std::wstring_view key, std::wstring_view value, bool hasOwnMemory) noexcept
    : valueLength(static_cast<Length>(value.size())),
      valueCapacity(valueLength),
      keyLength(static_cast<Length>(key.size())),
      ownsMemory(hasOwnMemory) {
    Characters::copy(keyCharacters(), key.data(), key.size());
    Characters::copy(initialSpace(), value.data(), value.size());
}

ConfigEntry::~ConfigEntry() {
    wipeValueFrom(0);
}

ConfigEntry::Length ConfigEntry::toLength(std::wstring_view text) {
    if (text.size() > std::numeric_limits<Length>::max()) {
        throw std::length_error("a text of a table");
    }
    return static_cast<Length>(text.size());
}

std::size_t ConfigEntry::sizeOf(std::wstring_view key, std::wstring_view value) {
    return sizeof(ConfigEntry) + (std::size_t{toLength(key)} + toLength(value)) * sizeof(wchar_t);
}

void ConfigEntry::setValue(std::wstring_view next) {
    const Length length = toLength(next);
    if (length <= valueCapacity) {
        Characters::move(valueCharacters(), next.data(), length);
        wipeValueFrom(length);
    } else {
        auto larger = std::make_unique_for_overwrite<wchar_t[]>(length);
        Characters::copy(larger.get(), next.data(), length);
        wipeValueFrom(0);
        outgrown = std::move(larger);
        valueCapacity = length;
    }
    valueLength = length;
}

void ConfigEntry::wipeValueFrom(Length position) noexcept {
    if (position < valueLength) {
        zel::wipeBytes(valueCharacters() + position, (valueLength - position) * sizeof(wchar_t));
    }
}

} // namespace ZelUnified
