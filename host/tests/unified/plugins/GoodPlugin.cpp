#include "PluginFeatureSet.h"

#include <unified/UnifiedFactory.h>

#include <memory>

namespace {

class GoodFeatureSet final : public host_tests::PluginFeatureSet {
public:
    GoodFeatureSet(int entryCalls, bool foundInside) : calls(entryCalls), found(foundInside) {}
    int getEntryCalls() const override { return calls; }
    bool wasFoundInsideTheEntry() const override { return found; }

private:
    int calls;
    bool found;
};

} // namespace

extern "C" [[gnu::visibility("default")]] void
InjectConfigService(std::shared_ptr<ZelUnified::UnifiedFactory> factory) {
    const auto former = factory->getFeatureSetByType<host_tests::PluginFeatureSet>();
    const int calls = former ? former->getEntryCalls() + 1 : 1;
    factory->getFeatureSets().registerItem(
        42, std::shared_ptr<host_tests::PluginFeatureSet>(std::make_shared<GoodFeatureSet>(calls, former != nullptr)));
}
