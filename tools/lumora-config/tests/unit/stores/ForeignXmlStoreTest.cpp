#include "stores/ForeignXmlStore.h"

#include <TemporaryProfile.h>
#include <gmock/gmock.h>

namespace lumora_config {

namespace {

class ForeignXmlStoreTest : public testing::Test {
protected:
    StoreSpec describe(bool cached) const {
        testing_host::writeFile(profile.root() / "doc.xml",
                                "<r><g><Key>first</Key><KEY>second</KEY><b sensitive=\"1\"></b></g></r>");
        return {(profile.root() / "doc.xml").string(), "Foreign", 40, cached};
    }

    const testing_host::TemporaryProfile profile;
};

} // namespace

TEST_F(ForeignXmlStoreTest, FindsKeysIgnoringCaseAndKeepsTheFirstValue) {
    ForeignXmlStore store(describe(false));
    std::wstring value;
    EXPECT_TRUE(store.getValue(L"kEY", value));
    EXPECT_EQ(value, L"first");
    EXPECT_THAT(store.getKeys(), testing::ElementsAre(L"b", L"Key"));
}

TEST_F(ForeignXmlStoreTest, DistinguishesAnEmptyValueFromAMiss) {
    ForeignXmlStore store(describe(false));
    std::wstring value = L"old";
    EXPECT_TRUE(store.getValue(L"B", value));
    EXPECT_EQ(value, L"");
    value = L"old";
    EXPECT_FALSE(store.getValue(L"c", value));
    EXPECT_EQ(value, L"");
}

TEST_F(ForeignXmlStoreTest, IsReadOnlyAndNotLocal) {
    ForeignXmlStore store(describe(false));
    std::wstring value;
    EXPECT_TRUE(store.isReadOnly());
    EXPECT_FALSE(store.isLocal());
    EXPECT_FALSE(store.storeValue(L"Key", L"new"));
    EXPECT_FALSE(store.removeValue(L"Key"));
    store.removeAllValues();
    EXPECT_TRUE(store.getValue(L"Key", value));
    EXPECT_EQ(value, L"first");
}

TEST_F(ForeignXmlStoreTest, RequestsACachedCopyOnlyIfItsDescriptionDoes) {
    EXPECT_FALSE(ForeignXmlStore(describe(false)).shouldCacheConfigStore());
    EXPECT_TRUE(ForeignXmlStore(describe(true)).shouldCacheConfigStore());
    EXPECT_EQ(ForeignXmlStore(describe(true)).getCachedPriority(), 41);
}

TEST_F(ForeignXmlStoreTest, ReturnsTheKeysThatTheDocumentMarksAsSensitive) {
    EXPECT_THAT(ForeignXmlStore(describe(false)).getSensitiveKeys(), testing::ElementsAre(L"b"));
}

} // namespace lumora_config
