#include "table/KeyIndex.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>
#include <string>
#include <utility>

namespace ZelUnified {
namespace {

using Entry = std::pair<const std::wstring, int>;

TEST(KeyIndex, FindsNothingWhileEmpty) {
    const std::wstring key = L"Key";
    KeyIndex<Entry> index;
    EXPECT_EQ(index.find(FoldedKey(key)), nullptr);
    index.erase(FoldedKey(key));
    index.reserveOne();
    EXPECT_EQ(index.find(FoldedKey(key)), nullptr);
    index.erase(FoldedKey(key));
    EXPECT_EQ(index.find(FoldedKey(key)), nullptr);
}

TEST(KeyIndex, FindsAnEntryIgnoringCase) {
    Entry entry{L"TftpServer1", 1};
    const std::wstring asked = L"tftpSERVER1";
    KeyIndex<Entry> index;
    index.reserveOne();
    index.insert(FoldedKey(entry.first), entry);
    EXPECT_EQ(index.find(FoldedKey(asked)), &entry);
}

TEST(KeyIndex, IndexesASetOfKeys) {
    const std::set<std::wstring> keys{L"First", L"Second"};
    const std::wstring asked = L"SECOND";
    KeyIndex<const std::wstring> index;
    for (const auto& key : keys) {
        index.reserveOne();
        index.insert(FoldedKey(key), key);
    }
    EXPECT_EQ(index.find(FoldedKey(asked)), &*keys.find(L"Second"));
}

TEST(KeyIndex, ClearRemovesAllEntries) {
    Entry entry{L"Key", 1};
    KeyIndex<Entry> index;
    index.reserveOne();
    index.insert(FoldedKey(entry.first), entry);
    index.clear();
    EXPECT_EQ(index.find(FoldedKey(entry.first)), nullptr);
}

TEST(KeyIndex, EqualsAMapAfterManyInsertionsAndErasures) {
    // Few keys in a small table: chains of entries form, wrap around the end and are split.
    std::mt19937 random(7);
    for (const unsigned keys : {5U, 40U, 3000U}) {
        std::map<std::wstring, int> map;
        KeyIndex<Entry> index;
        for (int step = 0; step < 20000; ++step) {
            const std::wstring key = L"key" + std::to_wstring(random() % keys);
            const FoldedKey folded(key);
            if (random() % 2 == 0) {
                index.erase(folded);
                map.erase(key);
            } else if (const auto [entry, isNew] = map.emplace(key, step); isNew) {
                index.reserveOne();
                index.insert(folded, *entry);
            }
            const std::wstring asked = L"KEY" + std::to_wstring(random() % keys);
            const auto expected = map.find(L"key" + asked.substr(3));
            ASSERT_EQ(index.find(FoldedKey(asked)), expected == map.end() ? nullptr : &*expected) << "step " << step;
        }
        for (auto& entry : map) {
            ASSERT_EQ(index.find(FoldedKey(entry.first)), &entry);
        }
    }
}

} // namespace
} // namespace ZelUnified
