#include "lookup/ChangedEntries.h"

#include "lookup/ConfigTable.h"

#include <gtest/gtest.h>

#include <string>

namespace ZelUnified {
namespace {

/// A table, a copy of it, and what differs between them.
class ChangedEntriesTest : public testing::Test {
protected:
    ChangedEntriesTest() {
        for (int i = 0; i < 200; ++i) {
            store(L"key" + std::to_wstring(i), L"old");
        }
        changed.bringUpToDate(copy, table.getMap());
    }

    void store(const std::wstring& key, const std::wstring& value) { changed.add(table.store(key, value)); }

    void remove(const std::wstring& key) {
        changed.addAny();
        table.remove(key);
    }

    bool isUpToDate() const { return changed.isUpToDate(copy, table.getMap()); }

    /// Expects a difference, and that none is left once the copy is brought up to date.
    void expectDifference() {
        EXPECT_FALSE(isUpToDate());
        changed.bringUpToDate(copy, table.getMap());
        EXPECT_TRUE(isUpToDate());
        EXPECT_EQ(copy, table.getMap());
    }

    ConfigTable table;
    ConfigMap copy;
    ChangedEntries changed;
};

TEST_F(ChangedEntriesTest, HaveNothingToTellOfACopyJustMade) {
    EXPECT_EQ(copy, table.getMap());
    EXPECT_TRUE(isUpToDate());
}

TEST_F(ChangedEntriesTest, TellOfANewValueAndOfANewKey) {
    store(L"key7", L"new");
    expectDifference();
    store(L"other", L"");
    expectDifference();
}

TEST_F(ChangedEntriesTest, ForgetAValueThatIsSetBack) {
    store(L"key7", L"new");
    store(L"key8", L"new");
    store(L"key7", L"old");
    EXPECT_FALSE(isUpToDate());
    store(L"key8", L"old");
    EXPECT_TRUE(isUpToDate());
}

TEST_F(ChangedEntriesTest, TellOfAKeyThatWentAndOfOneInAnotherCase) {
    remove(L"key7");
    expectDifference();
    remove(L"key8");
    store(L"KEY8", L"old");
    expectDifference();
    EXPECT_EQ(copy.find(L"key8")->first, L"KEY8");
}

TEST_F(ChangedEntriesTest, TellOfMoreThanTheyCanName) {
    for (int i = 0; i < 200; ++i) {
        store(L"key" + std::to_wstring(i), L"new");
    }
    expectDifference();
    for (int i = 0; i < 200; ++i) {
        store(L"key" + std::to_wstring(i), L"newer");
        store(L"key" + std::to_wstring(i), L"new");
    }
    EXPECT_TRUE(isUpToDate());
}

TEST_F(ChangedEntriesTest, AreFewAgainOnceTheCopyIsUpToDate) {
    remove(L"key7");
    changed.bringUpToDate(copy, table.getMap());
    copy.erase(L"key8"); // nobody told of it, so only a comparison of all would see it
    EXPECT_TRUE(isUpToDate());
    remove(L"key9");
    expectDifference();
}

} // namespace
} // namespace ZelUnified
