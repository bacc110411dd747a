#include "ConfigStoreConformance.h"

#include <Signal.h>
#include <Watchdog.h>

#include <atomic>
#include <thread>
#include <vector>

namespace ZelUnified {

using testing::ElementsAre;

TEST_P(ConfigStoreConformance, FindsKeysIgnoringCase) {
    const auto store = make({{L"alpha", L"1"}});
    std::wstring value;
    EXPECT_TRUE(store->getValue(L"ALPHA", value));
    EXPECT_EQ(value, L"1");
}

TEST_P(ConfigStoreConformance, AMissEmptiesTheValue) {
    const auto store = make({{L"alpha", L"1"}});
    std::wstring value = L"before";
    EXPECT_FALSE(store->getValue(L"beta", value));
    EXPECT_EQ(value, L"");
}

TEST_P(ConfigStoreConformance, AnEmptyValueIsAHit) {
    const auto store = make({{L"alpha", L""}});
    std::wstring value = L"before";
    EXPECT_TRUE(store->getValue(L"alpha", value));
    EXPECT_EQ(value, L"");
}

TEST_P(ConfigStoreConformance, KeyAndValueMayBeOneString) {
    const auto store = make({{L"alpha", L"1"}});
    std::wstring text = L"alpha";
    EXPECT_TRUE(store->getValue(text, text));
    EXPECT_EQ(text, L"1");
}

TEST_P(ConfigStoreConformance, KeysAreListedInCaseInsensitiveOrder) {
    const auto store = make({{L"gamma", L"3"}, {L"alpha", L"1"}, {L"beta", L"2"}});
    EXPECT_THAT(store->getKeys(), ElementsAre(L"alpha", L"beta", L"gamma"));
}

TEST_P(ConfigStoreConformance, TextBeyondAsciiIsStoredUnchanged) {
    const auto store = make({{L"alpha", L"\u00e4\u4e2d"}});
    EXPECT_THAT(held(*store), ElementsAre(std::pair<const std::wstring, std::wstring>(L"alpha", L"\u00e4\u4e2d")));
}

TEST_P(ConfigStoreConformance, ReturnsNamePriorityAndKind) {
    const auto store = make({});
    EXPECT_EQ(store->getName(), GetParam().name);
    EXPECT_EQ(store->getPriority(), GetParam().priority);
    EXPECT_EQ(store->isReadOnly(), GetParam().readOnly);
    EXPECT_EQ(store->isLocal(), GetParam().local);
    EXPECT_TRUE(store->waitForStoreReady());
}

TEST_P(ConfigStoreConformance, RequestsNoCopy) {
    const auto store = make({});
    EXPECT_FALSE(store->shouldCacheConfigStore());
    EXPECT_EQ(store->getCachedPriority(),
              GetParam().priority == std::numeric_limits<int>::max() ? GetParam().priority : GetParam().priority + 1);
}

TEST_P(ConfigStoreConformance, AcceptsOrRefusesWritesByItsKind) {
    const auto store = make({{L"alpha", L"1"}});
    const bool accepted = GetParam().writes == StoreKind::Writes::Accepted;
    EXPECT_EQ(store->storeValue(L"beta", L"2"), accepted);
    std::wstring value;
    EXPECT_EQ(store->getValue(L"beta", value), accepted);
    EXPECT_EQ(store->removeValue(L"ALPHA"), accepted);
    EXPECT_EQ(store->getValue(L"alpha", value), !accepted);
    EXPECT_FALSE(store->removeValue(L"never there"));
}

TEST_P(ConfigStoreConformance, SpellingsOfOneKeyShareOneEntryWithTheFirstSpelling) {
    const auto store = make({{L"alpha", L"1"}});
    store->storeValue(L"ALPHA", L"2");
    const auto* expected = GetParam().writes == StoreKind::Writes::Accepted ? L"2" : L"1";
    EXPECT_THAT(held(*store), ElementsAre(std::pair<const std::wstring, std::wstring>(L"alpha", expected)));
}

TEST_P(ConfigStoreConformance, RemoveAllValuesEmptiesItByItsKind) {
    const auto store = make({{L"alpha", L"1"}});
    store->removeAllValues();
    EXPECT_EQ(store->getKeys().empty(), GetParam().emptying == StoreKind::Emptying::Done);
}

TEST_P(ConfigStoreConformance, RemainsReadableAfterDestroy) {
    const auto store = make({{L"alpha", L"1"}});
    store->destroy();
    store->persistValues();
    std::wstring value;
    EXPECT_TRUE(store->getValue(L"alpha", value));
}

TEST_P(ConfigStoreConformance, MayBeUsedFromManyThreads) {
    const auto store = make({{L"alpha", L"1"}, {L"beta", L"2"}});
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&store] {
            std::wstring value;
            for (int round = 0; round < 50; ++round) {
                store->getValue(L"beta", value);
                store->storeValue(L"alpha", std::to_wstring(round));
                store->removeValue(L"alpha");
                store->getKeys();
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    std::wstring value;
    EXPECT_TRUE(store->getValue(L"beta", value));
    EXPECT_EQ(value, L"2");
}

TEST_P(ConfigStoreConformance, AKeyIsAlwaysFoundWhileOthersAreAdded) {
    constexpr int rounds = 5;
    constexpr int newKeys = 300;
    const testing_host::Watchdog watchdog;
    int missed = 0;
    for (int round = 0; round < rounds; ++round) {
        const std::wstring held = L"held" + std::to_wstring(round); // each key sets another bit of a filter
        const auto store = make({{held, L"2"}});
        testing_host::Signal reading;
        std::atomic<bool> written = false;
        std::thread reader([&] {
            std::wstring value;
            do {
                missed += store->getValue(held, value) && value == L"2" ? 0 : 1;
                reading.set();
            } while (!written);
        });
        ASSERT_TRUE(reading.wait());
        for (int i = 0; i < newKeys; ++i) {
            store->storeValue(L"new" + std::to_wstring(i), L"");
        }
        written = true;
        reader.join();
    }
    EXPECT_EQ(missed, 0);
}

} // namespace ZelUnified
