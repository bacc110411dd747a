#include "featuresets/adapters/config/chain/ChainLink.h"

#include "FakeConfigStore.h"

#include <InMemoryConfigStore.h>
#include <MdmConfigStore.h>
#include <XmlConfigStore.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace ZelUnified {
namespace {

/// A store of another service that derives from one of the library's and returns other values.
class OverridingStore final : public XmlConfigStore {
public:
    OverridingStore() : XmlConfigStore("BoastfulStore", 1, true, false, "", false) {}

    bool getValue(const std::wstring& key, std::wstring& value) override {
        value = L"my own " + key;
        return true;
    }
    std::vector<std::wstring> getKeys() override { return {L"mine"}; }
};

std::wstring ask(const ChainLink& link, const std::wstring& key) {
    std::wstring value = L"left over";
    const bool held = link.getValue(FoldedKey(key), value);
    return held ? value : L"a miss with \"" + value + L"\"";
}

TEST(ChainLink, ReadsAStoreOfTheLibrary) {
    const auto store = std::make_shared<InMemoryConfigStore>("M\u00E4ria", 1);
    store->storeValue(L"Key", L"value");
    const ChainLink link(store);
    EXPECT_EQ(ask(link, L"KEY"), L"value");
    EXPECT_EQ(ask(link, L"Other"), L"a miss with \"\"");
    EXPECT_EQ(link.getWideName(), L"M\u00E4ria");
}

TEST(ChainLink, ReadsAStoreOfAnotherService) {
    const ChainLink link(makeReadOnlyStore("Foreign", 1, {{L"Key", L"value"}}));
    EXPECT_EQ(ask(link, L"KEY"), L"value");
    EXPECT_EQ(ask(link, L"Other"), L"a miss with \"\"");
    EXPECT_EQ(link.getWideName(), L"Foreign");
}

TEST(ChainLink, CallsTheOverrideOfADerivedStore) {
    EXPECT_EQ(ask(ChainLink(std::make_shared<OverridingStore>()), L"Key"), L"my own Key");
}

TEST(ChainLink, MayAnswerUnlessAMissOfTheStoreClearsTheValue) {
    const std::wstring text = L"Key";
    const FoldedKey key(text);
    const auto store = std::make_shared<InMemoryConfigStore>("Own", 1);
    EXPECT_FALSE(ChainLink(store).mayAnswer(key));
    store->storeValue(L"KEY", L"");
    EXPECT_TRUE(ChainLink(store).mayAnswer(key));
    EXPECT_TRUE(ChainLink(std::make_shared<MdmConfigStore>("")).mayAnswer(key)) << "FIPS mode sets the value of a miss";
    EXPECT_TRUE(ChainLink(makeReadOnlyStore("Foreign", 1, {})).mayAnswer(key));
    EXPECT_TRUE(ChainLink(std::make_shared<OverridingStore>()).mayAnswer(key));
}

TEST(ChainLink, ListsTheKeysAsTheStoreDoes) {
    const auto own = std::make_shared<InMemoryConfigStore>("Own", 1);
    own->storeValue(L"b", L"");
    own->storeValue(L"A", L"");
    const auto foreign = makeReadOnlyStore("Foreign", 1, {{L"A", L""}, {L"b", L""}});
    for (const auto& store : std::initializer_list<std::shared_ptr<ConfigStore>>{own, foreign}) {
        const KeyList keys = ChainLink(store).listKeys();
        ASSERT_EQ(keys.size(), 2U);
        EXPECT_EQ(keys[0], L"A");
        EXPECT_EQ(keys[1], L"b");
    }
    const KeyList keys = ChainLink(std::make_shared<OverridingStore>()).listKeys();
    ASSERT_EQ(keys.size(), 1U);
    EXPECT_EQ(keys[0], L"mine");
}

} // namespace
} // namespace ZelUnified
