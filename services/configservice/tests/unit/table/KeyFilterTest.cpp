#include "table/KeyFilter.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace ZelUnified {
namespace {

std::wstring keyOf(int number) {
    return L"Key" + std::to_wstring(number);
}

void add(KeyFilter& filter, const std::wstring& key) {
    filter.add(FoldedKey(key));
}

bool mayHold(const KeyFilter& filter, const std::wstring& key) {
    return filter.mayHold(FoldedKey(key));
}

std::uint32_t hashOf(const std::wstring& key) {
    return FoldedKey(key).getHash();
}

void addKeys(KeyFilter& filter, int from, int to) {
    for (int i = from; i < to; ++i) {
        add(filter, keyOf(i));
    }
}

int countHeld(const KeyFilter& filter, int from, int to) {
    int held = 0;
    for (int i = from; i < to; ++i) {
        held += mayHold(filter, keyOf(i)) ? 1 : 0;
    }
    return held;
}

/// Returns true if the filter had to grow.
bool growsFor(KeyFilter& filter, std::size_t keys) {
    bool grew = false;
    filter.reserve(keys, [&grew](auto) { grew = true; });
    return grew;
}

TEST(KeyFilter, IsEmptyAtFirst) {
    KeyFilter filter;
    EXPECT_FALSE(mayHold(filter, keyOf(1)));
    EXPECT_TRUE(growsFor(filter, 0));
    EXPECT_FALSE(mayHold(filter, keyOf(1)));
}

TEST(KeyFilter, MayHoldReturnsTrueForEveryAddedKeyIgnoringCase) {
    KeyFilter filter;
    filter.reserve(1000, [](auto) {});
    addKeys(filter, 0, 1000);
    EXPECT_EQ(countHeld(filter, 0, 1000), 1000);
    EXPECT_TRUE(mayHold(filter, L"KEY7"));
}

TEST(KeyFilter, MayHoldReturnsFalseForMostOtherKeys) {
    KeyFilter filter;
    filter.reserve(1000, [](auto) {});
    addKeys(filter, 0, 1000);
    EXPECT_LT(countHeld(filter, 1000, 11'000), 1000);
}

TEST(KeyFilter, IsFullAtTwiceItsReservedNumberOfKeys) {
    KeyFilter filter;
    filter.reserve(1000, [](auto) {});
    EXPECT_FALSE(growsFor(filter, 2000));
    EXPECT_TRUE(growsFor(filter, 2001));
}

TEST(KeyFilter, ContainsTheKeysAddedByReserve) {
    KeyFilter filter;
    filter.reserve(1, [](auto) {});
    filter.reserve(1000, [](auto add) { add(hashOf(keyOf(1))); });
    EXPECT_TRUE(mayHold(filter, keyOf(1)));
    EXPECT_FALSE(mayHold(filter, keyOf(2)));
}

TEST(KeyFilter, MayHoldReturnsTrueForAHeldKeyDuringReserve) {
    KeyFilter filter;
    filter.reserve(1, [](auto) {});
    add(filter, keyOf(0));
    bool held = false;
    filter.reserve(1000, [&](auto add) {
        held = mayHold(filter, keyOf(0));
        add(hashOf(keyOf(0)));
    });
    EXPECT_TRUE(held);
}

TEST(KeyFilter, MayHoldReturnsTrueForAHeldKeyWhileAnotherThreadAddsAndReserves) {
    KeyFilter filter;
    filter.reserve(1, [](auto) {});
    add(filter, keyOf(0));
    std::atomic<bool> done = false;
    std::thread owner([&] {
        for (int count = 2; count < 2000; ++count) {
            filter.reserve(static_cast<std::size_t>(count), [count](auto add) {
                for (int i = 0; i < count - 1; ++i) {
                    add(hashOf(keyOf(i)));
                }
            });
            add(filter, keyOf(count - 1));
        }
        done = true;
    });
    const std::wstring held = keyOf(0);
    do {
        EXPECT_TRUE(mayHold(filter, held));
    } while (!done);
    owner.join();
    EXPECT_EQ(countHeld(filter, 0, 1999), 1999);
}

} // namespace
} // namespace ZelUnified
