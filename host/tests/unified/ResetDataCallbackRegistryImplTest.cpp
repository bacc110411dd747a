#include "unified/ResetDataCallbackRegistryImpl.h"

#include <memory>

using namespace ZelUnified;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Callback final : public ProviderResetDataCallback {
public:
    void InvokeResetData(ResetDataOptionEnum::ResetDataOption) override {}
};

/// Calls the registry from its destructor.
class CallingBack final : public ProviderResetDataCallback {
public:
    explicit CallingBack(const ResetDataCallbackRegistryImpl& watched) : registry(watched) {}
    ~CallingBack() override { registry.getCallbacks(); }
    void InvokeResetData(ResetDataOptionEnum::ResetDataOption) override {}

private:
    const ResetDataCallbackRegistryImpl& registry;
};

} // namespace

TEST(ResetDataCallbackRegistry, SortsCallbacksByOrderAndThenByRegistration) {
    ResetDataCallbackRegistryImpl registry;
    const auto late = std::make_shared<Callback>();
    const auto first = std::make_shared<Callback>();
    const auto second = std::make_shared<Callback>();
    registry.add(7, late);
    registry.add(0, first);
    registry.add(0, second);
    EXPECT_THAT(registry.getCallbacks(), ElementsAre(first, second, late));
}

TEST(ResetDataCallbackRegistry, RegistersACallbackOnceForEachOrder) {
    ResetDataCallbackRegistryImpl registry;
    const auto callback = std::make_shared<Callback>();
    registry.add(0, callback);
    registry.add(0, callback);
    registry.add(1, callback);
    EXPECT_THAT(registry.getCallbacks(), ElementsAre(callback, callback));
}

TEST(ResetDataCallbackRegistry, RemovesACallbackOnlyFromTheGivenOrder) {
    ResetDataCallbackRegistryImpl registry;
    const auto callback = std::make_shared<Callback>();
    registry.add(0, callback);
    registry.remove(1, callback);
    registry.remove(0, std::make_shared<Callback>());
    registry.remove(0, nullptr);
    EXPECT_THAT(registry.getCallbacks(), ElementsAre(callback));
    registry.remove(0, callback);
    EXPECT_THAT(registry.getCallbacks(), IsEmpty());
}

TEST(ResetDataCallbackRegistry, IgnoresAnEmptyCallback) {
    ResetDataCallbackRegistryImpl registry;
    registry.add(0, nullptr);
    EXPECT_THAT(registry.getCallbacks(), IsEmpty());
}

TEST(ResetDataCallbackRegistry, ReleasesCallbacksWithoutHoldingItsLock) {
    ResetDataCallbackRegistryImpl registry;
    auto removed = std::make_shared<CallingBack>(registry);
    registry.add(0, removed);
    registry.remove(0, std::move(removed));
    registry.add(0, std::make_shared<CallingBack>(registry));
    registry.clear();
    EXPECT_THAT(registry.getCallbacks(), IsEmpty());
}
