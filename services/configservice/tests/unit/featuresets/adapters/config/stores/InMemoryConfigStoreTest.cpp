#include "ConfigStoreConformance.h"

#include <zel/FipsUtils.h>

#include <InMemoryConfigStore.h>
#include <LogRecorder.h>

namespace ZelUnified {

using testing::ElementsAre;
using testing::IsEmpty;

INSTANTIATE_TEST_SUITE_P(InMemoryConfigStore, ConfigStoreConformance,
                         testing::Values(StoreKind{"InMemory",
                                                   [](const auto&, const ConfigMap& values) {
                                                       const auto store = std::make_shared<InMemoryConfigStore>(
                                                           "InMemoryConfigStore", 600);
                                                       for (const auto& [key, value] : values) {
                                                           store->storeValue(key, value);
                                                       }
                                                       return store;
                                                   },
                                                   "InMemoryConfigStore", 600, false, true, StoreKind::Writes::Accepted,
                                                   StoreKind::Emptying::Done}),
                         storeKindLabel);

class InMemoryConfigStoreTest : public testing::Test {
protected:
    ~InMemoryConfigStoreTest() override { zel::common::FipsUtils::overrideFipsMode(std::nullopt); }

    InMemoryConfigStore store{"InMemoryConfigStore", 600};
    std::wstring value;
};

TEST_F(InMemoryConfigStoreTest, StoresTheEmptyKey) {
    EXPECT_TRUE(store.storeValue(L"", L""));
    EXPECT_TRUE(store.getValue(L"", value));
}

TEST_F(InMemoryConfigStoreTest, FipsModeForcesAHeldKeyInAnyCase) {
    store.storeValue(L"Telephony_P2P_Enabled", L"true");
    zel::common::FipsUtils::overrideFipsMode(true);
    EXPECT_TRUE(store.getValue(L"TELEPHONY_P2P_ENABLED", value));
    EXPECT_EQ(value, L"false");
    zel::common::FipsUtils::overrideFipsMode(false);
    EXPECT_TRUE(store.getValue(L"Telephony_P2P_Enabled", value));
    EXPECT_EQ(value, L"true");
}

TEST_F(InMemoryConfigStoreTest, FipsModeLeavesAMissEmpty) {
    zel::common::FipsUtils::overrideFipsMode(true);
    EXPECT_FALSE(store.getValue(L"Telephony_P2P_Enabled", value));
    EXPECT_EQ(value, L"");
}

TEST_F(InMemoryConfigStoreTest, PersistingLogsADebugLineAndWritesNoFile) {
    const testing_host::TemporaryProfile profile;
    store.storeValue(L"k", L"v");
    {
        const testing_host::LogRecorder quiet;
        store.persistValues();
        EXPECT_THAT(quiet.getRecords(), IsEmpty());
    }
    const testing_host::LogRecorder log(testing_host::LogRecorder::Debug::On);
    store.persistValues();
    EXPECT_THAT(log.getTexts("ConfigService-InMemoryConfigStore"),
                ElementsAre("PersistValues() is not implemented for InMemoryConfigStore ignoring"));
    EXPECT_EQ(log.getRecords().front().function, "ZelUnified::InMemoryConfigStore::persistValues");
    EXPECT_EQ(log.getRecords().front().level, ZelLogLevel::Debug);
    EXPECT_TRUE(std::filesystem::is_empty(profile.config()));
}

TEST_F(InMemoryConfigStoreTest, TheUsersStoreNameDoesNotChangeItsBehaviour) {
    InMemoryConfigStore userStore("LocalFileConfigStore", 20);
    EXPECT_EQ(userStore.getName(), "LocalFileConfigStore");
    EXPECT_EQ(userStore.getPriority(), 20);
    EXPECT_EQ(userStore.getCachedPriority(), 21);
}

TEST(ConfigStore, CachedPriorityIsOneMoreAndNeverOverflows) {
    InMemoryConfigStore ordinary("S", 499);
    EXPECT_EQ(ordinary.getCachedPriority(), 500);
    InMemoryConfigStore last("S", std::numeric_limits<int>::max());
    EXPECT_EQ(last.getCachedPriority(), std::numeric_limits<int>::max());
}

} // namespace ZelUnified
