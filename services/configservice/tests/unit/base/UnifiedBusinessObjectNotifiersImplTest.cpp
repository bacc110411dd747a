#include "base/UnifiedBusinessObjectNotifiersImpl.h"

#include "NotifierFollower.h"

#include <gtest/gtest.h>

namespace ZelUnified {
namespace {

TEST(UnifiedBusinessObjectNotifiersImpl, FiresTheGuidsNotifierOnGuidAndInfoChanged) {
    NotifierFollower follower;
    UnifiedBusinessObjectNotifiersImpl set;
    set.OnInfoChanged();
    follower.follow(set.getGuidNotifier(), "Guid");
    set.OnGuidChanged();
    set.OnInfoChanged();
    EXPECT_EQ(follower.fired, (NotifierFollower::Names{"Guid", "Guid"}));
}

} // namespace
} // namespace ZelUnified
