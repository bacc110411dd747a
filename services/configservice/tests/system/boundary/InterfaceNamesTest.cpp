#include "base/ConfigServiceNotifiersImpl.h"
#include "base/ConfigValueNotifiersImpl.h"
#include "base/TestObjects.h"
#include "services/impl/ConfigServiceImpl.h"

#include <unified/ProviderResetDataCallback.h>
#include <unified/SystemServiceObserver.h>

#include <gtest/gtest.h>

#include <memory>

namespace ZelUnified {
namespace {

class PlainObject final : public UnifiedBusinessObjectImpl {
public:
    explicit PlainObject(const std::shared_ptr<UnifiedFactory>& factory)
        : UnifiedBusinessObjectImpl(factory, "PlainObject") {}

private:
    void initNotifiers() override {}
};

class ResetCallback final : public ProviderResetDataCallback {
public:
    void InvokeResetData(ResetDataOptionEnum::ResetDataOption) override {}
};

class HostObserver final : public SystemServiceObserver {
public:
    void OnBulkUpdateInProgressChanged() override {}
};

TEST(InterfaceNames, EveryImplementationReturnsTheNameOfItsInterface) {
    const auto factory = std::make_shared<testing_host::RecordingFactory>();
    EXPECT_EQ(PlainObject(factory).getInterfaceName(), "UnifiedBusinessObject");
    EXPECT_EQ(configservice_test::PlainService(factory).getInterfaceName(), "UnifiedService");
    EXPECT_EQ(configservice_test::PlainRecord(factory, L"k").getInterfaceName(), "ConfigValue");
    EXPECT_EQ(ConfigValueImpl(factory, L"k").getInterfaceName(), "ConfigValue");
    const auto service = std::make_shared<ConfigServiceImpl>(factory);
    EXPECT_EQ(service->getInterfaceName(), "ConfigService");
    EXPECT_EQ(std::static_pointer_cast<UnifiedBusinessObject>(service)->getInterfaceName(), "ConfigService");
}

TEST(InterfaceNames, ObserversAndNotifierSetsReturnTheNameOfTheirInterface) {
    EXPECT_EQ(UnifiedBusinessObjectNotifiersImpl().getInterfaceName(), "UnifiedBusinessObjectObserver");
    EXPECT_EQ(UnifiedServiceNotifiersImpl().getInterfaceName(), "UnifiedServiceObserver");
    EXPECT_EQ(ConfigServiceNotifiersImpl().getInterfaceName(), "ConfigServiceObserver");
    EXPECT_EQ(ConfigValueNotifiersImpl().getInterfaceName(), "ConfigValueObserver");
    EXPECT_EQ(configservice_test::RecordingValueObserver().getInterfaceName(), "ConfigValueObserver");
    EXPECT_EQ(HostObserver().getInterfaceName(), "SystemServiceObserver");
}

TEST(InterfaceNames, CallbacksReturnTheNameOfTheirInterface) {
    EXPECT_EQ(UnifiedCallback().getInterfaceName(), "UnifiedCallback");
    EXPECT_EQ(ResetCallback().getInterfaceName(), "ProviderResetDataCallback");
}

} // namespace
} // namespace ZelUnified
