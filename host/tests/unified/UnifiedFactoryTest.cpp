#include <RecordingFactory.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using testing_host::RecordingFactory;
using namespace ZelUnified;

namespace unified_factory_test {

class Wanted : public FeatureSet {};
class Other : public FeatureSet {};
class WantedService : public virtual UnifiedService {};

/// Registers the requested provider when it is asked to load it.
class LoadingFactory final : public RecordingFactory {
public:
    std::shared_ptr<Wanted> provided = std::make_shared<Wanted>();
    bool foundWhileLoading = false;

private:
    void loadFeatureSet(const std::string& typeName) override {
        triedFeatureSetLoads.push_back(typeName);
        foundWhileLoading = getFeatureSetByType<Wanted>() != nullptr;
        featureSets.registerItem(1, provided);
    }
};

} // namespace unified_factory_test

using namespace unified_factory_test;

TEST(UnifiedFactory, AttemptsToLoadOnceForEachTypeEvenIfTheLoadFails) {
    const auto factory = std::make_shared<RecordingFactory>();
    EXPECT_EQ(factory->getFeatureSetByType<Wanted>(), nullptr);
    EXPECT_EQ(factory->getFeatureSetByType<Wanted>(), nullptr);
    EXPECT_EQ(factory->getFeatureSetByType<Other>(), nullptr);
    EXPECT_EQ(factory->getServiceByType<WantedService>(), nullptr);
    EXPECT_EQ(factory->getServiceByType<WantedService>(), nullptr);
    EXPECT_THAT(factory->triedFeatureSetLoads,
                ElementsAre("unified_factory_test::Wanted", "unified_factory_test::Other"));
    EXPECT_THAT(factory->triedServiceLoads, ElementsAre("unified_factory_test::WantedService"));
}

TEST(UnifiedFactory, AHitDoesNotLoadAndALaterMissDoes) {
    const auto factory = std::make_shared<RecordingFactory>();
    factory->getFeatureSets().registerItem(1, std::make_shared<Wanted>());
    EXPECT_NE(factory->getFeatureSetByType<Wanted>(), nullptr);
    EXPECT_THAT(factory->triedFeatureSetLoads, IsEmpty());
    factory->getFeatureSets().clear();
    EXPECT_EQ(factory->getFeatureSetByType<Wanted>(), nullptr);
    EXPECT_THAT(factory->triedFeatureSetLoads, ElementsAre("unified_factory_test::Wanted"));
}

TEST(UnifiedFactory, ReturnsTheItemThatTheLoadRegistered) {
    const auto factory = std::make_shared<LoadingFactory>();
    EXPECT_EQ(factory->getFeatureSetByType<Wanted>(), factory->provided);
}

TEST(UnifiedFactory, ALookupFromInsideTheLoadDoesNotLoadAgain) {
    const auto factory = std::make_shared<LoadingFactory>();
    EXPECT_NE(factory->getFeatureSetByType<Wanted>(), nullptr);
    EXPECT_FALSE(factory->foundWhileLoading);
    EXPECT_THAT(factory->triedFeatureSetLoads, ElementsAre("unified_factory_test::Wanted"));
}

TEST(UnifiedFactory, FindsAnItemRegisteredAfterAFailedLoad) {
    const auto factory = std::make_shared<RecordingFactory>();
    EXPECT_EQ(factory->getFeatureSetByType<Wanted>(), nullptr);
    const auto late = std::make_shared<Wanted>();
    factory->getFeatureSets().registerItem(1, late);
    EXPECT_EQ(factory->getFeatureSetByType<Wanted>(), late);
}

TEST(UnifiedFactory, ManyThreadsCauseOneLoad) {
    const auto factory = std::make_shared<LoadingFactory>();
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] { factory->getFeatureSetByType<Wanted>(); });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(factory->triedFeatureSetLoads.size(), 1U);
}
