#include "featuresets/adapters/config/chain/StoreChain.h"

#include "FakeConfigStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace ZelUnified {
namespace {

std::vector<std::string> namesOf(const StoreChain& chain) {
    std::vector<std::string> names;
    for (const auto stores = chain.getStores(); const auto& store : *stores) {
        names.push_back(store->getName());
    }
    return names;
}

} // namespace

using testing::ElementsAre;
using testing::IsEmpty;

TEST(StoreChain, IsEmptyAtFirst) {
    const StoreChain chain;
    EXPECT_THAT(*chain.getStores(), IsEmpty());
    EXPECT_THAT(*chain.getLinks(), IsEmpty());
    EXPECT_EQ(chain.at(0), nullptr);
    EXPECT_EQ(chain.find("A"), nullptr);
}

TEST(StoreChain, SortsByPriorityAndThenByInsertion) {
    StoreChain chain;
    chain.add(makeReadOnlyStore("last", std::numeric_limits<int>::max()));
    chain.add(makeReadOnlyStore("middle", 33));
    chain.add(makeReadOnlyStore("equal", 33));
    chain.add(makeReadOnlyStore("first", std::numeric_limits<int>::min()));
    EXPECT_THAT(namesOf(chain), ElementsAre("first", "middle", "equal", "last"));
    EXPECT_EQ(chain.at(1)->getName(), "middle");
    EXPECT_EQ(chain.at(4), nullptr);
}

TEST(StoreChain, FindsAStoreByNameIgnoringCase) {
    StoreChain chain;
    const auto store = makeReadOnlyStore("TftpStore", 33);
    chain.add(store);
    chain.add(makeReadOnlyStore("TFTPSTORE", 34));
    EXPECT_EQ(chain.find("tftpstore"), store);
    EXPECT_EQ(chain.find("Tftp"), nullptr);
}

TEST(StoreChain, RemovesOneStore) {
    StoreChain chain;
    const auto store = makeReadOnlyStore("A", 33);
    chain.add(store);
    chain.add(makeReadOnlyStore("A", 34));
    chain.remove(store);
    ASSERT_THAT(namesOf(chain), ElementsAre("A"));
    EXPECT_EQ(chain.at(0)->getPriority(), 34);
}

TEST(StoreChain, AChangeDoesNotAffectStoresThatWereReturnedBefore) {
    StoreChain chain;
    const auto store = makeReadOnlyStore("A", 33);
    chain.add(store);
    const auto stores = chain.getStores();
    chain.remove(store);
    chain.add(makeReadOnlyStore("B", 34));
    EXPECT_THAT(*stores, ElementsAre(store));
    EXPECT_THAT(namesOf(chain), ElementsAre("B"));
}

TEST(StoreChain, LinksReadTheStoresInTheSameOrder) {
    StoreChain chain;
    chain.add(makeReadOnlyStore("B", 34));
    chain.add(makeReadOnlyStore("A", 33));
    const auto links = chain.getLinks();
    ASSERT_EQ(links->size(), 2U);
    EXPECT_EQ((*links)[0].getWideName(), L"A");
    EXPECT_EQ((*links)[1].getWideName(), L"B");
}

} // namespace ZelUnified
