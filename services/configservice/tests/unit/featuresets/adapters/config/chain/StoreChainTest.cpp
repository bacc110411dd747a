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

/// Returns whether the store was added.
bool add(StoreChain& chain, const std::shared_ptr<ConfigStore>& store) {
    return chain.addUnlessNameIsTaken(store, store->getName()).has_value();
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
    add(chain, makeReadOnlyStore("last", std::numeric_limits<int>::max()));
    add(chain, makeReadOnlyStore("middle", 33));
    add(chain, makeReadOnlyStore("equal", 33));
    add(chain, makeReadOnlyStore("first", std::numeric_limits<int>::min()));
    EXPECT_THAT(namesOf(chain), ElementsAre("first", "middle", "equal", "last"));
    EXPECT_EQ(chain.at(1)->getName(), "middle");
    EXPECT_EQ(chain.at(4), nullptr);
}

TEST(StoreChain, FindsAStoreByNameIgnoringCase) {
    StoreChain chain;
    const auto store = makeReadOnlyStore("TftpStore", 33);
    add(chain, store);
    EXPECT_EQ(chain.find("tftpstore"), store);
    EXPECT_EQ(chain.find("Tftp"), nullptr);
}

TEST(StoreChain, DoesNotAddASecondStoreOfANameIgnoringCase) {
    StoreChain chain;
    const auto store = makeReadOnlyStore("TftpStore", 33);
    EXPECT_TRUE(add(chain, store));
    EXPECT_FALSE(add(chain, makeReadOnlyStore("TFTPSTORE", 32)));
    EXPECT_THAT(*chain.getStores(), ElementsAre(store));
}

TEST(StoreChain, AddingAStoreReturnsNamesAndPrioritiesInTheNewOrder) {
    StoreChain chain;
    add(chain, makeReadOnlyStore("B", 34));
    const auto stores = chain.addUnlessNameIsTaken(makeReadOnlyStore("A", 33), "A");
    ASSERT_TRUE(stores);
    ASSERT_EQ(stores->size(), 2U);
    EXPECT_EQ(stores->front().name, "A");
    EXPECT_EQ(stores->front().priority, 33);
    EXPECT_EQ(stores->back().name, "B");
    EXPECT_EQ(stores->back().priority, 34);
}

TEST(StoreChain, RemovesOneStore) {
    StoreChain chain;
    const auto store = makeReadOnlyStore("A", 33);
    add(chain, store);
    add(chain, makeReadOnlyStore("B", 34));
    chain.remove(store);
    EXPECT_THAT(namesOf(chain), ElementsAre("B"));
    EXPECT_EQ(chain.getLinks()->size(), 1U);
}

TEST(StoreChain, AChangeDoesNotAffectStoresThatWereReturnedBefore) {
    StoreChain chain;
    const auto store = makeReadOnlyStore("A", 33);
    add(chain, store);
    const auto stores = chain.getStores();
    chain.remove(store);
    add(chain, makeReadOnlyStore("B", 34));
    EXPECT_THAT(*stores, ElementsAre(store));
    EXPECT_THAT(namesOf(chain), ElementsAre("B"));
}

TEST(StoreChain, LinksReadTheStoresInTheSameOrder) {
    StoreChain chain;
    add(chain, makeReadOnlyStore("B", 34));
    add(chain, makeReadOnlyStore("A", 33));
    const auto links = chain.getLinks();
    ASSERT_EQ(links->size(), 2U);
    EXPECT_EQ((*links)[0].getWideName(), L"A");
    EXPECT_EQ((*links)[1].getWideName(), L"B");
}

} // namespace ZelUnified
