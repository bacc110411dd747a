#include "Allocations.h"
#include "featuresets/adapters/config/chain/SensitiveKeys.h"
#include "services/impl/ServiceFixture.h"
#include "table/ConfigTable.h"

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

namespace ZelUnified {
namespace {

using configservice_test::FailingAllocation;

std::wstring keyOf(int number) {
    return L"Key number " + std::to_wstring(100 + number);
}

std::wstring otherSpellingOf(int number) {
    return L"KEY NUMBER " + std::to_wstring(100 + number);
}

/// Runs `operation` with its Nth allocation failing. Returns false if no allocation failed.
template <class Operation>
bool failsAt(std::size_t number, Operation operation) {
    const FailingAllocation failing(number);
    try {
        operation();
    } catch (const std::bad_alloc&) {
        return true;
    }
    EXPECT_FALSE(failing.hasFailed()) << "the failure was not reported";
    return false;
}

struct MemoryShortageOfTheService : configservice_test::ServiceFixture {
    std::vector<std::wstring> listKeys() {
        std::vector<std::wstring> keys;
        const auto all = service->getAllConfig();
        for (const auto& record : *all) {
            keys.push_back(record->getKey());
        }
        return keys;
    }
};

TEST_F(MemoryShortageOfTheService, AFailedListingNeitherLosesNorDuplicatesARecord) {
    std::vector<std::wstring> expected;
    std::size_t failures = 0;
    for (bool failed = true; failed; failures += failed ? 1 : 0) {
        service->reset();
        expected.clear();
        for (int i = 0; i < 20; i += 2) {
            service->getConfig(keyOf(i));
        }
        service->getAllConfig();
        for (int i = 1; i < 20; i += 2) {
            service->getConfig(keyOf(i));
        }
        for (int i = 0; i < 20; ++i) {
            expected.push_back(keyOf(i));
        }
        failed = failsAt(failures + 1, [this] { service->getAllConfig(); });
        ASSERT_EQ(listKeys(), expected) << failures + 1;
        service->getConfig(otherSpellingOf(7));
        ASSERT_EQ(listKeys(), expected) << failures + 1;
    }
    EXPECT_GT(failures, 20U) << "twenty records were listed";
}

TEST_F(MemoryShortageOfTheService, AfterAFailedCreationTheNextLookupCreatesTheRecord) {
    constexpr int before = 6; // the next record makes the index grow
    std::size_t failures = 0;
    for (bool failed = true; failed; failures += failed ? 1 : 0) {
        service->reset();
        std::vector<std::wstring> expected;
        for (int i = 0; i < before; ++i) {
            expected.push_back(keyOf(i));
            service->getConfig(expected.back());
        }
        const auto key = keyOf(before);
        failed = failsAt(failures + 1, [&] { service->getConfig(key); });
        if (failed) {
            ASSERT_EQ(listKeys(), expected) << failures + 1;
        }
        const auto record = service->getConfig(key);
        ASSERT_EQ(service->getConfig(otherSpellingOf(before)), record) << failures + 1;
        expected.push_back(key);
        ASSERT_EQ(listKeys(), expected) << failures + 1;
    }
    EXPECT_GT(failures, 3U) << "index, map, record and its key";
}

/// Expects that a search finds every listed key in any case and through the filter, and no other key of both halves.
void expectToHoldExactly(ConfigTable& table, int from, int to) {
    ASSERT_EQ(table.getKeys().size(), static_cast<std::size_t>(to - from));
    for (int i = 0; i < 60; ++i) {
        const std::wstring spelling = otherSpellingOf(i);
        const FoldedKey key(spelling);
        const auto value = table.find(key);
        ASSERT_EQ(value.has_value(), i >= from && i < to) << i;
        ASSERT_TRUE(!value || table.mayHold(key)) << i;
        ASSERT_TRUE(!value || *value == keyOf(i)) << i;
    }
}

ConfigMap valuesOf(int from, int to) {
    ConfigMap values;
    for (int i = from; i < to; ++i) {
        values.emplace(keyOf(i), keyOf(i));
    }
    return values;
}

TEST(MemoryShortage, AFailedReplaceLeavesTheTableUnchanged) {
    std::size_t failures = 0;
    for (bool failed = true; failed; failures += failed ? 1 : 0) {
        ConfigTable table(valuesOf(0, 10));
        auto values = valuesOf(10, 60);
        failed = failsAt(failures + 1, [&] { table.replace(std::move(values)); });
        if (failed) {
            expectToHoldExactly(table, 0, 10);
            table.replace(valuesOf(10, 60));
        }
        expectToHoldExactly(table, 10, 60);
    }
    EXPECT_GE(failures, 3U) << "a filter and an index were needed";
}

TEST(MemoryShortage, AFailedStoreLeavesTheTableUnchanged) {
    for (int held = 0; held < 60; ++held) {
        std::size_t failures = 0;
        for (bool failed = true; failed; failures += failed ? 1 : 0) {
            ConfigTable table(valuesOf(0, held));
            const auto store = [&, key = keyOf(held)] { table.store(key, key); };
            failed = failsAt(failures + 1, store);
            if (failed) {
                expectToHoldExactly(table, 0, held);
                store();
            }
            expectToHoldExactly(table, 0, held + 1);
        }
        ASSERT_GE(failures, 1U) << "an entry was needed";
    }
}

TEST(MemoryShortage, AFailedLoadLeavesTheTableUnchanged) {
    for (int held = 0; held < 60; held += 7) {
        std::size_t failures = 0;
        for (bool failed = true; failed; failures += failed ? 1 : 0) {
            ConfigTable table(valuesOf(0, held));
            const std::wstring key = keyOf(held);
            const auto load = [&] { table.load(FoldedKey(key), key); };
            failed = failsAt(failures + 1, load);
            if (failed) {
                expectToHoldExactly(table, 0, held);
                load();
            }
            expectToHoldExactly(table, 0, held + 1);
        }
    }
}

TEST(MemoryShortage, AFailedOverwriteLeavesTheValueUnchanged) {
    ConfigTable table(valuesOf(0, 10));
    const std::wstring longer(500, L'x');
    std::size_t failures = 0;
    while (failsAt(failures + 1, [&, key = keyOf(5)] { table.store(key, longer); })) {
        ++failures;
        expectToHoldExactly(table, 0, 10);
    }
    const std::wstring spelling = keyOf(5);
    EXPECT_EQ(*table.find(FoldedKey(spelling)), longer);
    EXPECT_GE(failures, 1U) << "the value was needed";
}

TEST(MemoryShortage, AfterAFailureTheNextAttemptAddsTheSensitiveKey) {
    SensitiveKeys keys;
    const auto isKnown = [&](int number) {
        const std::wstring spelling = otherSpellingOf(number);
        return keys.contains(FoldedKey(spelling));
    };
    std::size_t allFailures = 0;
    for (int added = 0; added < 60; ++added) {
        std::size_t failures = 0;
        while (failsAt(failures + 1, [&, key = keyOf(added)] { keys.add(key); })) {
            ++failures;
            for (int known = 0; known < added; ++known) {
                ASSERT_TRUE(isKnown(known)) << known << " with " << added;
            }
            ASSERT_FALSE(isKnown(added));
        }
        ASSERT_TRUE(isKnown(added)) << "after " << failures << " failures";
        allFailures += failures;
    }
    EXPECT_GT(allFailures, 120U) << "each needs an entry and its text, some more";
}

} // namespace
} // namespace ZelUnified
