#include "base/ConfigServiceNotifiersImpl.h"
#include "base/ConfigValueNotifiersImpl.h"
#include "base/UnifiedServiceNotifiersImpl.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ZelUnified {
namespace {

using Names = std::vector<std::string>;

/// Records the firings of the notifiers of a set, in order.
struct Follower {
    void follow(const std::shared_ptr<PropertyNotifier>& notifier, const std::string& property) {
        notifier->connect([this, property] { fired.push_back(property); });
    }
    Names take() { return std::exchange(fired, {}); }

    Names fired;
};

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
    Follower follower;
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
    EXPECT_EQ(follower.take(), Names{"Key"});
    set->OnValueChanged();
    EXPECT_EQ(follower.take(), Names{"Value"});
    set->OnOriginalValueChanged();
    EXPECT_EQ(follower.take(), Names{"OriginalValue"});
    set->OnisOverriddenChanged();
    EXPECT_EQ(follower.take(), Names{"isOverridden"});
    set->OnisDefinedChanged();
    EXPECT_EQ(follower.take(), Names{"isDefined"});
    set->OnValueStoreNameChanged();
    EXPECT_EQ(follower.take(), Names{"ValueStoreName"});
    set->OnOriginalValueStoreNameChanged();
    EXPECT_EQ(follower.take(), Names{"OriginalValueStoreName"});
    set->OnGuidChanged();
    EXPECT_EQ(follower.take(), Names{"Guid"});
}

TEST_F(ConfigValueNotifiersImplTest, OnInfoChangedFiresAllNotifiersInOrderExceptTheGuids) {
    followAll();
    set->OnInfoChanged();
    EXPECT_EQ(follower.fired, (Names{"Key", "Value", "OriginalValue", "isOverridden", "isDefined", "ValueStoreName",
                                     "OriginalValueStoreName"}));
}

TEST_F(ConfigValueNotifiersImplTest, AChangeOfAPropertyWithoutANotifierIsIgnored) {
    follower.follow(set->getisDefinedNotifier(), "isDefined");
    set->OnValueChanged();
    set->OnInfoChanged();
    EXPECT_EQ(follower.fired, Names{"isDefined"});
}

TEST_F(ConfigValueNotifiersImplTest, ACallbackMayDestroyTheNotifierSet) {
    set->getValueNotifier()->connect([this] { set.reset(); });
    follower.follow(set->getValueNotifier(), "Value");
    set->OnValueChanged();
    EXPECT_FALSE(set);
    EXPECT_EQ(follower.fired, Names{"Value"});
}

TEST(ConfigServiceNotifiersImpl, FiresTheNotifierOfEachChangeAndConfigReadyOnInfoChanged) {
    Follower follower;
    ConfigServiceNotifiersImpl set;
    set.OnConfigReadyChanged();
    set.OnInfoChanged();
    follower.follow(set.getConfigReadyNotifier(), "ConfigReady");
    follower.follow(set.getBulkUpdateInProgressNotifier(), "BulkUpdateInProgress");
    follower.follow(set.getGuidNotifier(), "Guid");
    EXPECT_EQ(set.getConfigReadyNotifier(), set.getConfigReadyNotifier());
    set.OnConfigReadyChanged();
    EXPECT_EQ(follower.take(), Names{"ConfigReady"});
    set.OnBulkUpdateInProgressChanged();
    EXPECT_EQ(follower.take(), Names{"BulkUpdateInProgress"});
    set.OnGuidChanged();
    EXPECT_EQ(follower.take(), Names{"Guid"});
    set.OnInfoChanged();
    EXPECT_EQ(follower.take(), Names{"ConfigReady"});
}

TEST(UnifiedServiceNotifiersImpl, FiresTheNotifierOfEachChangeAndBulkUpdateOnInfoChanged) {
    Follower follower;
    UnifiedServiceNotifiersImpl set;
    follower.follow(set.getBulkUpdateInProgressNotifier(), "BulkUpdateInProgress");
    follower.follow(set.getGuidNotifier(), "Guid");
    set.OnInfoChanged();
    EXPECT_EQ(follower.take(), Names{"BulkUpdateInProgress"});
    set.OnBulkUpdateInProgressChanged();
    EXPECT_EQ(follower.take(), Names{"BulkUpdateInProgress"});
    set.OnGuidChanged();
    EXPECT_EQ(follower.take(), Names{"Guid"});
}

TEST(UnifiedBusinessObjectNotifiersImpl, FiresTheGuidsNotifierOnGuidAndInfoChanged) {
    Follower follower;
    UnifiedBusinessObjectNotifiersImpl set;
    set.OnInfoChanged();
    follower.follow(set.getGuidNotifier(), "Guid");
    set.OnGuidChanged();
    set.OnInfoChanged();
    EXPECT_EQ(follower.fired, (Names{"Guid", "Guid"}));
}

} // namespace
} // namespace ZelUnified
