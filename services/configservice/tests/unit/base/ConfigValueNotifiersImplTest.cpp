#include "base/ConfigValueNotifiersImpl.h"

#include "NotifierFollower.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace ZelUnified {
namespace {

struct ConfigValueNotifiersImplTest : testing::Test {
    void followAll() {
        follower.follow(set->getKeyNotifier(), "Key");
        follower.follow(set->getValueNotifier(), "Value");
        follower.follow(set->getOriginalValueNotifier(), "OriginalValue");
        follower.follow(set->getisOverriddenNotifier(), "isOverridden");
        follower.follow(set->getisDefinedNotifier(), "isDefined");
        follower.follow(set->getValueStoreNameNotifier(), "ValueStoreName");
        follower.follow(set->getOriginalValueStoreNameNotifier(), "OriginalValueStoreName");
        follower.follow(set->getGuidNotifier(), "Guid");
    }

    std::shared_ptr<ConfigValueNotifiersImpl> set = std::make_shared<ConfigValueNotifiersImpl>();
    NotifierFollower follower;
};

TEST_F(ConfigValueNotifiersImplTest, CreatesEachNotifierOnce) {
    const std::vector<std::shared_ptr<PropertyNotifier>> notifiers{set->getKeyNotifier(),
                                                                   set->getValueNotifier(),
                                                                   set->getOriginalValueNotifier(),
                                                                   set->getisOverriddenNotifier(),
                                                                   set->getisDefinedNotifier(),
                                                                   set->getValueStoreNameNotifier(),
                                                                   set->getOriginalValueStoreNameNotifier(),
                                                                   set->getGuidNotifier()};
    for (std::size_t i = 0; i < notifiers.size(); ++i) {
        ASSERT_TRUE(notifiers[i]);
        for (std::size_t j = i + 1; j < notifiers.size(); ++j) {
            EXPECT_NE(notifiers[i], notifiers[j]);
        }
    }
    EXPECT_EQ(set->getValueNotifier(), notifiers[1]);
}

TEST_F(ConfigValueNotifiersImplTest, FiresTheNotifierOfEachChangedProperty) {
    followAll();
    set->OnKeyChanged();
    EXPECT_EQ(follower.take(), NotifierFollower::Names{"Key"});
    set->OnValueChanged();
    EXPECT_EQ(follower.take(), NotifierFollower::Names{"Value"});
    set->OnOriginalValueChanged();
    EXPECT_EQ(follower.take(), NotifierFollower::Names{"OriginalValue"});
    set->OnisOverriddenChanged();
    EXPECT_EQ(follower.take(), NotifierFollower::Names{"isOverridden"});
    set->OnisDefinedChanged();
    EXPECT_EQ(follower.take(), NotifierFollower::Names{"isDefined"});
    set->OnValueStoreNameChanged();
    EXPECT_EQ(follower.take(), NotifierFollower::Names{"ValueStoreName"});
    set->OnOriginalValueStoreNameChanged();
    EXPECT_EQ(follower.take(), NotifierFollower::Names{"OriginalValueStoreName"});
    set->OnGuidChanged();
    EXPECT_EQ(follower.take(), NotifierFollower::Names{"Guid"});
}

TEST_F(ConfigValueNotifiersImplTest, OnInfoChangedFiresAllNotifiersInOrderExceptTheGuids) {
    followAll();
    set->OnInfoChanged();
    EXPECT_EQ(follower.fired, (NotifierFollower::Names{"Key", "Value", "OriginalValue", "isOverridden", "isDefined",
                                                       "ValueStoreName", "OriginalValueStoreName"}));
}

TEST_F(ConfigValueNotifiersImplTest, AChangeOfAPropertyWithoutANotifierIsIgnored) {
    follower.follow(set->getisDefinedNotifier(), "isDefined");
    set->OnValueChanged();
    set->OnInfoChanged();
    EXPECT_EQ(follower.fired, NotifierFollower::Names{"isDefined"});
}

TEST_F(ConfigValueNotifiersImplTest, ACallbackMayDestroyTheNotifierSet) {
    set->getValueNotifier()->connect([this] { set.reset(); });
    follower.follow(set->getValueNotifier(), "Value");
    set->OnValueChanged();
    EXPECT_FALSE(set);
    EXPECT_EQ(follower.fired, NotifierFollower::Names{"Value"});
}

} // namespace
} // namespace ZelUnified
