#include "services/impl/entry/InjectConfigService.h"

#include "featuresets/adapters/config/ConfigAdapter.h"

#include <ConfigFeatureSet.h>
#include <ConfigService.h>
#include <InMemoryRegistry.h>
#include <LogRecorder.h>
#include <RecordingFactory.h>
#include <TemporaryProfile.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

namespace ZelUnified {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Calls a function when the entry point searches a provider of the feature set.
class LoadingFactory final : public testing_host::RecordingFactory {
public:
    std::function<void(LoadingFactory&)> whenLoading;

private:
    void loadFeatureSet(const std::string&) override { whenLoading(*this); }
};

} // namespace

class InjectConfigServiceTest : public testing::Test {
protected:
    ~InjectConfigServiceTest() override { factory->Destroy(); }

    const testing_host::TemporaryProfile profile;
    const testing_host::InMemoryRegistry::Installed registry;
    const std::shared_ptr<testing_host::RecordingFactory> factory = std::make_shared<testing_host::RecordingFactory>();
};

TEST_F(InjectConfigServiceTest, RegistersServiceAndFeatureSetUnderTheirInterfacesAndNumber) {
    InjectConfigService(factory);
    const auto service = factory->getServices().getItem<ConfigService>();
    ASSERT_TRUE(service);
    EXPECT_EQ(factory->getServices().getItem(1300), std::shared_ptr<UnifiedService>(service));
    const auto featureSet = factory->getFeatureSets().getItem<ConfigFeatureSet>();
    ASSERT_TRUE(featureSet);
    EXPECT_EQ(factory->getFeatureSets().getItem(1300), std::shared_ptr<FeatureSet>(featureSet));
    EXPECT_TRUE(factory->getFeatureSetAdapter(1300));
}

TEST_F(InjectConfigServiceTest, DoesNotStartTheFeatureSet) {
    InjectConfigService(factory);
    EXPECT_FALSE(factory->IsFeatureSetStarted(1300));
    EXPECT_TRUE(factory->IsFeatureSetProvisioned(1300));
}

TEST_F(InjectConfigServiceTest, AttemptsOnceToLoadAnotherFeatureSet) {
    InjectConfigService(factory);
    EXPECT_THAT(factory->triedFeatureSetLoads, ElementsAre("ZelUnified::ConfigFeatureSet"));
    EXPECT_THAT(factory->triedServiceLoads, IsEmpty());
}

TEST_F(InjectConfigServiceTest, RegistersTheServiceBeforeItAttemptsToLoadAFeatureSet) {
    const auto loading = std::make_shared<LoadingFactory>();
    bool serviceFiled = false;
    loading->whenLoading = [&](LoadingFactory& self) {
        serviceFiled = self.getServices().getItem<ConfigService>() && self.getServices().getItem(1300);
    };
    InjectConfigService(loading);
    EXPECT_TRUE(serviceFiled);
    EXPECT_TRUE(loading->getFeatureSets().getItem(1300));
    loading->Destroy();
}

TEST_F(InjectConfigServiceTest, DoesNotReplaceAFeatureSetThatItLoaded) {
    const auto loading = std::make_shared<LoadingFactory>();
    const auto other = std::make_shared<ConfigAdapter>();
    loading->whenLoading = [&](LoadingFactory& self) {
        self.getFeatureSets().registerItem<ConfigFeatureSet>(77, other);
    };
    InjectConfigService(loading);
    EXPECT_FALSE(loading->getFeatureSets().getItem(1300));
    EXPECT_EQ(loading->getFeatureSetByType<ConfigFeatureSet>(), std::shared_ptr<ConfigFeatureSet>(other));
    loading->Destroy();
}

TEST_F(InjectConfigServiceTest, AnExceptionOfTheHostPropagatesAndTheServiceStaysRegistered) {
    const auto loading = std::make_shared<LoadingFactory>();
    loading->whenLoading = [](LoadingFactory&) { throw std::runtime_error("no plug-in folder"); };
    EXPECT_THROW(InjectConfigService(loading), std::runtime_error);
    EXPECT_TRUE(loading->getServices().getItem(1300));
    EXPECT_FALSE(loading->getFeatureSets().getItem(1300));
    loading->Destroy();
}

TEST_F(InjectConfigServiceTest, TheAdapterUpdatesTheServiceRegisteredWithIt) {
    InjectConfigService(factory);
    factory->getFeatureSetByType<ConfigFeatureSet>()->setInMemoryConfig(L"k", L"v");
    EXPECT_EQ(factory->getServiceByType<ConfigService>()->getConfig(L"k")->getValue(), L"v");
}

TEST_F(InjectConfigServiceTest, DestroyingTheFactoryReleasesServiceAndFeatureSet) {
    InjectConfigService(factory);
    const std::weak_ptr<ConfigService> service = factory->getServiceByType<ConfigService>();
    const std::weak_ptr<ConfigFeatureSet> featureSet = factory->getFeatureSetByType<ConfigFeatureSet>();
    featureSet.lock()->setInMemoryConfig(L"k", L"v");
    service.lock()->getConfig(L"other");
    factory->Destroy();
    EXPECT_TRUE(service.expired());
    EXPECT_TRUE(featureSet.expired());
}

TEST_F(InjectConfigServiceTest, DoesNotReplaceAnExistingFeatureSet) {
    const auto other = std::make_shared<ConfigAdapter>();
    factory->getFeatureSets().registerItem<ConfigFeatureSet>(77, other);
    InjectConfigService(factory);
    EXPECT_TRUE(factory->getServices().getItem(1300));
    EXPECT_FALSE(factory->getFeatureSets().getItem(1300));
    EXPECT_EQ(factory->getFeatureSetByType<ConfigFeatureSet>(), std::shared_ptr<ConfigFeatureSet>(other));
}

TEST_F(InjectConfigServiceTest, ASecondCallReplacesTheServiceWithoutALineAndKeepsTheAdapter) {
    InjectConfigService(factory);
    const auto first = factory->getServiceByType<ConfigService>();
    const auto adapter = factory->getFeatureSetByType<ConfigFeatureSet>();
    const testing_host::LogRecorder log;
    InjectConfigService(factory);
    EXPECT_THAT(log.getRecords(), IsEmpty());
    EXPECT_NE(factory->getServiceByType<ConfigService>(), first);
    EXPECT_EQ(factory->getFeatureSetByType<ConfigFeatureSet>(), adapter);
}

} // namespace ZelUnified
