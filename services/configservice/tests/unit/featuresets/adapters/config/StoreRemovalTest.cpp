#include "ConfigAdapterFixture.h"

#include <StoreRemoval.h>

namespace ZelUnified {

class StoreRemovalTest : public ConfigAdapterFixture {
protected:
    static constexpr const wchar_t* recordKey = L"primaryConfigStores";

    StoreRemovalTest() { loadAndStart(); }

    std::optional<StoreRemoval> find(const std::string& name) {
        return StoreRemoval::find(*adapter, profile.config().string(), name);
    }
    std::wstring record() { return adapter->getValueFromConfigStore("LocalFileConfigStore", recordKey); }
    void addWithoutCopy(const std::string& name) {
        adapter->addConfigStore(makeReadOnlyStore(name, 40, {{L"k", L"v"}}));
    }
    void addWithCopy(const std::string& name) {
        adapter->addConfigStore(makeCachingStore(name, 40, {{L"k", L"v"}}));
        factory->backgroundDispatcher->runAll();
    }
    /// Lets the next start create the stores from their copies.
    void startAgain() {
        unload();
        loadAndStart();
    }
};

TEST_F(StoreRemovalTest, FindsNothingForANameWithoutStoreAndCopy) {
    EXPECT_FALSE(find("NoSuchStore"));
}

TEST_F(StoreRemovalTest, FindsAStoreWithoutACopyInAnyCase) {
    addWithoutCopy("Plain");
    EXPECT_TRUE(find("Plain"));
    const auto removal = find("PLAIN");
    ASSERT_TRUE(removal);
    EXPECT_EQ(removal->getCopyPaths().size(), 2U) << "the copy of either spelling";
}

TEST_F(StoreRemovalTest, RemovesAStoreWithoutACopyFromTheChainOnly) {
    addWithoutCopy("Plain");
    addWithCopy("Cached");
    const auto recordBefore = record();
    auto removal = find("Plain");
    ASSERT_TRUE(removal);
    removal->removeFromChain(*adapter, *service);
    EXPECT_FALSE(inChain("Plain"));
    EXPECT_TRUE(inChain("Cached"));
    EXPECT_EQ(record(), recordBefore);
    EXPECT_FALSE(removal->hasChangedRecord());
    EXPECT_EQ(removal->describe(), "Plain removed; it has no copy on the disk");
}

TEST_F(StoreRemovalTest, RemovesTheEntryOfACachedStoreAndReportsItsCopy) {
    addWithCopy("Cached");
    auto removal = find("cached");
    ASSERT_TRUE(removal);
    EXPECT_THAT(removal->getCopyPaths(), testing::Contains(cacheFile("Cached").string()));
    removal->removeFromChain(*adapter, *service);
    EXPECT_FALSE(inChain("Cached"));
    EXPECT_EQ(record(), L"");
    EXPECT_TRUE(removal->hasChangedRecord());
    EXPECT_EQ(removal->getRemainingRecord(), L"");
    EXPECT_EQ(removal->describe(), "Cached removed; its copy on the disk is deleted");
}

TEST_F(StoreRemovalTest, LeavesTheEntryOfAStoreWhoseNameContainsTheRemovedOne) {
    addWithCopy("CAB");
    addWithCopy("AB");
    auto removal = find("AB");
    ASSERT_TRUE(removal);
    removal->removeFromChain(*adapter, *service);
    EXPECT_EQ(record(), L"CAB:41;");
    EXPECT_TRUE(inChain("CAB"));
}

TEST_F(StoreRemovalTest, FindsAStoreThatTheStartReadFromItsCopy) {
    addWithCopy("Cached");
    startAgain();
    ASSERT_TRUE(inChain("Cached"));
    EXPECT_TRUE(find("Cached"));
}

TEST_F(StoreRemovalTest, SaysWhichStoresTheNextStartCreatesAgain) {
    for (const std::string name : {"InMemoryConfigStore", "RegistryConfigStore"}) {
        const auto removal = find(name);
        ASSERT_TRUE(removal);
        EXPECT_EQ(removal->describe(),
                  name + " removed for this run; the next start creates it again; it has no copy on the disk");
    }
}

TEST_F(StoreRemovalTest, HasNoRecordWithoutTheUsersStore) {
    addWithoutCopy("Plain");
    auto usersStore = find("LocalFileConfigStore");
    ASSERT_TRUE(usersStore);
    usersStore->removeFromChain(*adapter, *service);
    EXPECT_EQ(usersStore->getRemainingRecord(), std::nullopt);
    EXPECT_FALSE(usersStore->hasChangedRecord());
    EXPECT_FALSE(inChain("LocalFileConfigStore"));
}

} // namespace ZelUnified
