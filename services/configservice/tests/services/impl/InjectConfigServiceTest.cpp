#include "services/impl/InjectConfigService.h"

#include "featuresets/adapters/config/ConfigAdapter.h"

#include <ConfigFeatureSet.h>
#include <ConfigService.h>
#include <InMemoryRegistry.h>
#include <RecordingFactory.h>
#include <TemporaryProfile.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ZelUnified {

using testing::ElementsAre;
using testing::IsEmpty;

class InjectConfigServiceTest : public testing::Test {
protected:
    ~InjectConfigServiceTest() override { factory->Destroy(); }

    const testing_host::TemporaryProfile profile;
    const testing_host::InMemoryRegistry::Installed registry;
    const std::shared_ptr<testing_host::RecordingFactory> factory = std::make_shared<testing_host::RecordingFactory>();
};

TEST_F(InjectConfigServiceTest, FilesServiceAndFeatureSetUnderTheirInterfacesAndTheNumber) {
    InjectConfigService(factory);
    const auto service = factory->getServices().getItem<ConfigService>();
    ASSERT_TRUE(service);
    EXPECT_EQ(factory->getServices().getItem(1300), std::shared_ptr<UnifiedService>(service));
    const auto featureSet = factory->getFeatureSets().getItem<ConfigFeatureSet>();
    ASSERT_TRUE(featureSet);
    EXPECT_EQ(factory->getFeatureSets().getItem(1300), std::shared_ptr<FeatureSet>(featureSet));
    EXPECT_TRUE(factory->getFeatureSetAdapter(1300));
}

TEST_F(InjectConfigServiceTest, StartsNothing) {
    InjectConfigService(factory);
    EXPECT_FALSE(factory->IsFeatureSetStarted(1300));
    EXPECT_TRUE(factory->IsFeatureSetProvisioned(1300));
}

TEST_F(InjectConfigServiceTest, LooksOnceForAnotherProvider) {
    InjectConfigService(factory);
    EXPECT_THAT(factory->triedFeatureSetLoads, ElementsAre("ZelUnified::ConfigFeatureSet"));
    EXPECT_THAT(factory->triedServiceLoads, IsEmpty());
}

TEST_F(InjectConfigServiceTest, LeavesAFeatureSetThatExistsInItsPlace) {
    const auto other = std::make_shared<ConfigAdapter>();
    factory->getFeatureSets().registerItem<ConfigFeatureSet>(77, other);
    InjectConfigService(factory);
    EXPECT_TRUE(factory->getServices().getItem(1300));
    EXPECT_FALSE(factory->getFeatureSets().getItem(1300));
    EXPECT_EQ(factory->getFeatureSetByType<ConfigFeatureSet>(), std::shared_ptr<ConfigFeatureSet>(other));
}

TEST_F(InjectConfigServiceTest, SecondCallMakesASecondServiceAndNoSecondAdapter) {
    InjectConfigService(factory);
    const auto first = factory->getServiceByType<ConfigService>();
    const auto adapter = factory->getFeatureSetByType<ConfigFeatureSet>();
    InjectConfigService(factory);
    EXPECT_NE(factory->getServiceByType<ConfigService>(), first);
    EXPECT_EQ(factory->getFeatureSetByType<ConfigFeatureSet>(), adapter);
}

} // namespace ZelUnified
