#include "table/PersistedCopy.h"

#include "table/ConfigTable.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

namespace ZelUnified {
namespace {

/// A table and its copy, with more changed entries than the copy can record by name.
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

    bool equals() { return copy.equals(table); }

    /// Compares the whole copy with the table, whatever the copy was told.
    bool holdsTheTable() {
        copy.noteRemoval();
        return equals();
    }

    void expectDifference() {
        EXPECT_FALSE(equals());
        copy.bringUpToDate(table);
        EXPECT_TRUE(equals());
        EXPECT_TRUE(holdsTheTable());
        copy.bringUpToDate(table);
    }

    ConfigTable table;
    PersistedCopy copy;
};

TEST_F(PersistedCopyTest, IsEmptyAtFirst) {
    EXPECT_FALSE(equals());
    ConfigTable empty;
    EXPECT_TRUE(PersistedCopy().equals(empty));
}

TEST_F(PersistedCopyTest, TakesOverANewValueAndANewKey) {
    expectDifference();
    store(L"key7", L"new");
    expectDifference();
    store(L"other", L"");
    expectDifference();
}

TEST_F(PersistedCopyTest, EqualsATableWhoseValueIsSetBack) {
    copy.bringUpToDate(table);
    store(L"key7", L"new");
    store(L"key8", L"new");
    store(L"key7", L"old");
    EXPECT_FALSE(equals());
    store(L"key8", L"old");
    EXPECT_TRUE(equals());
}

TEST_F(PersistedCopyTest, LosesAKeyThatWentAndTakesOneInAnotherCase) {
    copy.bringUpToDate(table);
    remove(L"key7");
    expectDifference();
    remove(L"key8");
    store(L"KEY8", L"old");
    expectDifference();
}

TEST_F(PersistedCopyTest, TakesOverMoreThanItCanName) {
    copy.bringUpToDate(table);
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

TEST_F(PersistedCopyTest, KnowsOfEachDifferenceThatManyChangesLeave) {
    std::mt19937 chance(7); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same changes in each run
    const auto list = [this] {
        std::vector<std::pair<std::wstring, std::wstring>> pairs;
        for (const auto& entry : table.list()) {
            pairs.emplace_back(entry->getKey(), entry->getValue());
        }
        return pairs;
    };
    auto written = list();
    copy.bringUpToDate(table);
    for (int step = 0; step < 5000; ++step) {
        const std::wstring key = (chance() % 2 == 0 ? L"key" : L"KEY") + std::to_wstring(chance() % 210);
        const auto what = chance() % 100;
        if (what < 80) {
            store(key, std::wstring(chance() % 30, L'v'));
        } else if (what < 84) {
            remove(key);
        } else if (what == 84) {
            copy.noteRemoval();
            table.replace({written.begin(), written.end()});
        } else if (what == 85) {
            copy.noteRemoval();
            table.clear();
        } else if (what < 90) {
            copy.bringUpToDate(table);
            written = list();
        }
        ASSERT_EQ(equals(), list() == written) << step;
    }
}

} // namespace
} // namespace ZelUnified
