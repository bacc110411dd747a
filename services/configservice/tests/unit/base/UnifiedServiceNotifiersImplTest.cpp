#include "base/UnifiedServiceNotifiersImpl.h"

#include "NotifierFollower.h"

#include <gtest/gtest.h>

namespace ZelUnified {
namespace {

TEST(UnifiedServiceNotifiersImpl, FiresTheNotifierOfEachChangeAndBulkUpdateOnInfoChanged) {
    NotifierFollower follower;
    UnifiedServiceNotifiersImpl set;
    follower.follow(set.getBulkUpdateInProgressNotifier(), "BulkUpdateInProgress");
    follower.follow(set.getGuidNotifier(), "Guid");
    set.OnInfoChanged();
    EXPECT_EQ(follower.take(), NotifierFollower::Names{"BulkUpdateInProgress"});
    set.OnBulkUpdateInProgressChanged();
    EXPECT_EQ(follower.take(), NotifierFollower::Names{"BulkUpdateInProgress"});
    set.OnGuidChanged();
    EXPECT_EQ(follower.take(), NotifierFollower::Names{"Guid"});
}

} // namespace
} // namespace ZelUnified
