#include "featuresets/adapters/config/AnnouncementOrder.h"

#include <gtest/gtest.h>

namespace ZelUnified {

TEST(AnnouncementOrder, AQueuedChangeIsValidUntilADirectChangeOfItsKey) {
    AnnouncementOrder order;
    const auto first = order.addQueued();
    const auto second = order.addQueued();
    order.addDirect(L"other");
    EXPECT_TRUE(order.removeQueued(L"k", first));
    order.addDirect(L"k");
    EXPECT_FALSE(order.removeQueued(L"k", second));
}

TEST(AnnouncementOrder, OneDirectChangeOvertakesAllQueuedOnesOfItsKeyAndNoLaterOne) {
    AnnouncementOrder order;
    const auto first = order.addQueued();
    const auto second = order.addQueued();
    order.addDirect(L"k");
    const auto third = order.addQueued();
    EXPECT_FALSE(order.removeQueued(L"k", first));
    EXPECT_FALSE(order.removeQueued(L"k", second));
    EXPECT_TRUE(order.removeQueued(L"k", third));
}

TEST(AnnouncementOrder, KeysAreComparedIgnoringCase) {
    AnnouncementOrder order;
    const auto ascii = order.addQueued();
    const auto umlaut = order.addQueued();
    order.addDirect(L"PHONE_mode");
    order.addDirect(L"GR\u00dcN");
    EXPECT_FALSE(order.removeQueued(L"Phone_Mode", ascii));
    EXPECT_FALSE(order.removeQueued(L"gr\u00fcn", umlaut));
}

TEST(AnnouncementOrder, ADirectChangeBeforeAnyQueuedOneOvertakesNothing) {
    AnnouncementOrder order;
    order.addDirect(L"k");
    EXPECT_TRUE(order.removeQueued(L"k", order.addQueued()));
    order.addDirect(L"k");
    EXPECT_TRUE(order.removeQueued(L"k", order.addQueued()));
}

TEST(AnnouncementOrder, AQueuedChangeThatIsNeverDeliveredDoesNotAffectLaterOnes) {
    AnnouncementOrder order;
    order.addQueued();
    order.addDirect(L"k");
    EXPECT_TRUE(order.removeQueued(L"k", order.addQueued()));
    order.addDirect(L"k");
    EXPECT_TRUE(order.removeQueued(L"k", order.addQueued()));
}

} // namespace ZelUnified
