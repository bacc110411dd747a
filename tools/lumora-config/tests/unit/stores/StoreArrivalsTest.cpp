#include "stores/StoreArrivals.h"

#include "stores/ForeignXmlStore.h"

#include <TemporaryProfile.h>
#include <gtest/gtest.h>

namespace lumora_config {

namespace {

class StoreArrivalsTest : public testing::Test {
protected:
    std::shared_ptr<ZelUnified::ConfigStore> makeStore() const {
        const auto file = profile.root() / "doc.xml";
        testing_host::writeFile(file, "<doc><group><A>1</A></group></doc>");
        return std::make_shared<ForeignXmlStore>(StoreSpec{file.string(), "Doc", 40, false});
    }

    const testing_host::TemporaryProfile profile;
    StoreArrivals arrivals;
};

} // namespace

TEST_F(StoreArrivalsTest, ARecordBelongsToOneStoreEvenIfAnotherHasItsName) {
    const auto store = makeStore();
    arrivals.add(store, StoreArrivals::Kind::Document, "doc.xml");
    ASSERT_NE(arrivals.find(store), nullptr);
    EXPECT_EQ(arrivals.find(store)->file, "doc.xml");
    EXPECT_FALSE(arrivals.find(store)->when.empty());
    EXPECT_EQ(arrivals.find(makeStore()), nullptr);
    EXPECT_EQ(arrivals.find(nullptr), nullptr);
}

TEST_F(StoreArrivalsTest, TheTimeOfAValueIsKnownWhileTheStoreHoldsIt) {
    const auto store = makeStore();
    EXPECT_EQ(arrivals.findTimeOfValue(store, L"A"), "");
    arrivals.addValue(store, L"A", L"1");
    EXPECT_NE(arrivals.findTimeOfValue(store, L"a"), "");
    EXPECT_EQ(arrivals.findTimeOfValue(makeStore(), L"A"), "");
    arrivals.addValue(store, L"A", L"overwritten by the service");
    EXPECT_EQ(arrivals.findTimeOfValue(store, L"A"), "");
}

TEST_F(StoreArrivalsTest, AnAbsentStoreIsNotRecorded) {
    arrivals.add(nullptr, StoreArrivals::Kind::Bootstrap);
    arrivals.addValue(nullptr, L"A", L"1");
    EXPECT_EQ(arrivals.find(nullptr), nullptr);
    EXPECT_EQ(arrivals.findTimeOfValue(nullptr, L"A"), "");
}

} // namespace lumora_config
