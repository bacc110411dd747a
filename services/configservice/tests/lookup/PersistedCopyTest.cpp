#include "lookup/PersistedCopy.h"

#include "lookup/ConfigTable.h"

#include <gtest/gtest.h>

#include <string>

namespace ZelUnified {
namespace {

/// A table and its copy, which knows of more entries than it can name.
class PersistedCopyTest : public testing::Test {
protected:
    PersistedCopyTest() {
        for (int i = 0; i < 200; ++i) {
            store(L"key" + std::to_wstring(i), L"old");
        }
    }

    void store(const std::wstring& key, const std::wstring& value) { copy.noteStored(table.store(key, value)); }

    void remove(const std::wstring& key) {
        copy.noteRemoval();
        table.remove(key);
    }

    bool equals() const { return copy.equals(table.getMap()); }

    /// Whether it is so in full, whatever the copy was told.
    bool holdsTheTable() {
        copy.noteRemoval();
        return equals();
    }

    void expectDifference() {
        EXPECT_FALSE(equals());
        copy.bringUpToDate(table.getMap());
        EXPECT_TRUE(equals());
        EXPECT_TRUE(holdsTheTable());
        copy.bringUpToDate(table.getMap());
    }

    ConfigTable table;
    PersistedCopy copy;
};

TEST_F(PersistedCopyTest, IsEmptyAtFirst) {
    EXPECT_FALSE(equals());
    EXPECT_TRUE(PersistedCopy().equals({}));
}

TEST_F(PersistedCopyTest, TakesOverANewValueAndANewKey) {
    expectDifference();
    store(L"key7", L"new");
    expectDifference();
    store(L"other", L"");
    expectDifference();
}

TEST_F(PersistedCopyTest, EqualsATableWhoseValueIsSetBack) {
    copy.bringUpToDate(table.getMap());
    store(L"key7", L"new");
    store(L"key8", L"new");
    store(L"key7", L"old");
    EXPECT_FALSE(equals());
    store(L"key8", L"old");
    EXPECT_TRUE(equals());
}

TEST_F(PersistedCopyTest, LosesAKeyThatWentAndTakesOneInAnotherCase) {
    copy.bringUpToDate(table.getMap());
    remove(L"key7");
    expectDifference();
    remove(L"key8");
    store(L"KEY8", L"old");
    expectDifference();
}

TEST_F(PersistedCopyTest, TakesOverMoreThanItCanName) {
    copy.bringUpToDate(table.getMap());
    for (int i = 0; i < 200; ++i) {
        store(L"key" + std::to_wstring(i), L"new");
    }
    expectDifference();
    for (int i = 0; i < 200; ++i) {
        store(L"key" + std::to_wstring(i), L"newer");
        store(L"key" + std::to_wstring(i), L"new");
    }
    EXPECT_TRUE(equals());
}

} // namespace
} // namespace ZelUnified
