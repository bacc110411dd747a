#include "base/ConfigServiceNotifiersImpl.h"

#include "NotifierFollower.h"

#include <gtest/gtest.h>

namespace ZelUnified {
namespace {

TEST(ConfigServiceNotifiersImpl, FiresTheNotifierOfEachChangeAndConfigReadyOnInfoChanged) {
    NotifierFollower follower;
    ConfigServiceNotifiersImpl set;
    set.OnConfigReadyChanged();
    set.OnInfoChanged();
    follower.follow(set.getConfigReadyNotifier(), "ConfigReady");
    follower.follow(set.getBulkUpdateInProgressNotifier(), "BulkUpdateInProgress");
    follower.follow(set.getGuidNotifier(), "Guid");
    EXPECT_EQ(set.getConfigReadyNotifier(), set.getConfigReadyNotifier());
    set.OnConfigReadyChanged();
    EXPECT_EQ(follower.take(), NotifierFollower::Names{"ConfigReady"});
    set.OnBulkUpdateInProgressChanged();
    EXPECT_EQ(follower.take(), NotifierFollower::Names{"BulkUpdateInProgress"});
    set.OnGuidChanged();
    EXPECT_EQ(follower.take(), NotifierFollower::Names{"Guid"});
    set.OnInfoChanged();
    EXPECT_EQ(follower.take(), NotifierFollower::Names{"ConfigReady"});
}

} // namespace
} // namespace ZelUnified
