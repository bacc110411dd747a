#include "table/ConfigEntry.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <string>

using ZelUnified::ConfigEntry;

TEST(ConfigEntry, HoldsCopiesOfKeyAndValue) {
    std::wstring key = L"Key";
    std::wstring value = L"value";
    const auto entry = ConfigEntry::make(key, value);
    key = L"xxx";
    value = L"xxxxx";
    EXPECT_EQ(entry->getKey(), L"Key");
    EXPECT_EQ(entry->getValue(), L"value");
    EXPECT_EQ(ConfigEntry::make(L"", L"")->getValue(), L"");
}

TEST(ConfigEntry, SetValueReplacesTheValueByOneOfAnyLength) {
    const auto entry = ConfigEntry::make(L"Key", L"value");
    for (const std::size_t length : {3U, 0U, 5U, 100U, 99U, 1U, 101U, 5U}) {
        const std::wstring value(length, L'v');
        entry->setValue(value);
        EXPECT_EQ(entry->getValue(), value);
        EXPECT_EQ(entry->getKey(), L"Key");
    }
}

TEST(ConfigEntry, SetValueAcceptsAPartOfTheCurrentValue) {
    const auto entry = ConfigEntry::make(L"Key", L"0123456789");
    entry->setValue(entry->getValue().substr(3));
    EXPECT_EQ(entry->getValue(), L"3456789");
    entry->setValue(L"0123456789ABCDEF");
    entry->setValue(entry->getValue().substr(10));
    EXPECT_EQ(entry->getValue(), L"ABCDEF");
}

TEST(ConfigEntry, UsesTheMemoryOfAnArena) {
    alignas(std::max_align_t) std::array<std::byte, 1024> memory{};
    std::pmr::monotonic_buffer_resource arena(memory.data(), memory.size(), std::pmr::null_memory_resource());
    const auto entry = ConfigEntry::make(L"Key", L"value", arena);
    EXPECT_GE(static_cast<const void*>(entry.get()), memory.data());
    EXPECT_LT(static_cast<const void*>(entry.get()), memory.data() + memory.size());
    EXPECT_EQ(entry->getValue(), L"value");
    entry->setValue(std::wstring(1000, L'v'));
    EXPECT_EQ(entry->getValue(), std::wstring(1000, L'v'));
}
