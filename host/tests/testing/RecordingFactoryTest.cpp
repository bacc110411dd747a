#include <kyr/FunctionTask.h>

#include <RecordingFactory.h>

#include <memory>
#include <vector>

using namespace ZelUnified;
using testing::ElementsAre;
using testing_host::RecordingFactory;

namespace recording_factory_test {

class Wanted : public FeatureSet {};

class TestFeatureSet final : public Wanted, public FeatureSetAdapter {
public:
    void StartFeatureSet(unsigned int, std::shared_ptr<ServiceEventList>) override { started = true; }
    void StopFeatureSet(unsigned int, std::shared_ptr<ServiceEventList>) override { started = false; }
    void Destroy() override { ++destroyed; }
    bool IsFeatureSetStarted(unsigned int) override { return started; }
    bool IsFeatureSetProvisioned(unsigned int) override { return true; }
    std::vector<unsigned int> GetFeatureSetDependencies(unsigned int) override { return {3}; }
    bool started = false;
    int destroyed = 0;
};

} // namespace recording_factory_test

using namespace recording_factory_test;

TEST(RecordingFactory, RecordsTheAttemptedLoads) {
    const auto factory = std::make_shared<RecordingFactory>();
    EXPECT_EQ(factory->getFeatureSetByType<Wanted>(), nullptr);
    EXPECT_THAT(factory->triedFeatureSetLoads, ElementsAre("recording_factory_test::Wanted"));
}

TEST(RecordingFactory, ForwardsToTheFeatureSetRegisteredUnderTheNumber) {
    const auto factory = std::make_shared<RecordingFactory>();
    const auto featureSet = std::make_shared<TestFeatureSet>();
    factory->getFeatureSets().registerItem(1, std::shared_ptr<Wanted>(featureSet));
    factory->StartFeatureSet(1, nullptr);
    EXPECT_TRUE(factory->IsFeatureSetStarted(1));
    EXPECT_FALSE(factory->IsFeatureSetStarted(2));
    EXPECT_TRUE(factory->IsFeatureSetProvisioned(1));
    EXPECT_FALSE(factory->IsFeatureSetProvisioned(2));
    EXPECT_THAT(factory->GetFeatureSetDependencies(1), ElementsAre(3U));
    factory->StopFeatureSet(1, nullptr);
    EXPECT_FALSE(featureSet->started);
}

TEST(RecordingFactory, DestroyRunsHeldTasksAndReleasesTheFeatureSets) {
    const auto factory = std::make_shared<RecordingFactory>();
    const auto featureSet = std::make_shared<TestFeatureSet>();
    factory->getFeatureSets().registerItem(1, std::shared_ptr<Wanted>(featureSet));
    std::vector<int> ran;
    factory->getServicesDispatcher()->enqueue(
        std::make_shared<KyrCoreUtils::FunctionTask>([&] { ran.push_back(1); }, "services"), false);
    factory->getBackgroundDispatcher()->enqueue([&] { ran.push_back(2); }, "background");
    factory->Destroy();
    EXPECT_EQ(featureSet->destroyed, 1);
    EXPECT_THAT(ran, ElementsAre(1, 2));
    EXPECT_EQ(featureSet.use_count(), 1);
}
