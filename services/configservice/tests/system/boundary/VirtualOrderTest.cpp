// In the Itanium ABI a pointer to a virtual member contains the member's offset in the virtual table, so a test can
// read the order that other plug-ins were compiled against. The test also checks the signature of each operation.

#include "services/impl/ConfigServiceImpl.h"

#include <unified/FeatureSetAdapter.h>
#include <unified/PropertyNotifier.h>
#include <unified/ProviderResetDataCallback.h>
#include <unified/SystemService.h>
#include <unified/UnifiedFactory.h>
#include <unified/UnifiedService.h>

#include <ConfigFeatureSet.h>
#include <ConfigService.h>
#include <ConfigStore.h>
#include <ConfigStoreAddedObserver.h>
#include <ConfigStoreManager_Observer.h>
#include <ConfigValue.h>
#include <RegistryConfigStore.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <list>
#include <memory>
#include <string>
#include <vector>

namespace ZelUnified {
namespace {

/// A virtual destructor takes two slots.
constexpr std::ptrdiff_t destructor = 2;

struct Operation {
    const char* name;
    std::ptrdiff_t slot;
};

template <class Signature, class Class>
Operation op(const char* name, Signature Class::*member) {
    std::array<std::ptrdiff_t, 2> pointer{};
    static_assert(sizeof(pointer) == sizeof(member));
    std::memcpy(pointer.data(), &member, sizeof(member));
    // Where the second word does not contain it, the lowest bit of the first word marks a virtual member.
    return {name, (pointer[0] & ~std::ptrdiff_t{1}) / static_cast<std::ptrdiff_t>(sizeof(void*))};
}

/// Checks that the operations are in this order without gaps, beginning with slot `first`.
void expectOrder(std::ptrdiff_t first, const std::vector<Operation>& operations) {
    for (const auto& [name, slot] : operations) {
        EXPECT_EQ(slot, first++) << name;
    }
}

/// Returns the slot of an operation added after all those of the interface, which is the length of its table.
template <class Interface>
std::ptrdiff_t slotsOf() {
    class Longer : public Interface {
    public:
        virtual void addedLast() = 0;
    };
    return op<void()>("addedLast", &Longer::addedLast).slot;
}

using Text = std::wstring;
using Bytes = std::string;
template <class T>
using Shared = std::shared_ptr<T>;
template <class T>
using Weak = std::weak_ptr<T>;

constexpr std::ptrdiff_t businessObjectSlots = destructor + 6;
constexpr std::ptrdiff_t observerSlots = destructor + 3;

TEST(VirtualOrder, PropertyNotifierHasThePublishedOrder) {
    expectOrder(0,
                {op<Weak<PropertyNotifierConnection>(std::function<void()>)>("connect", &PropertyNotifier::connect)});
    EXPECT_EQ(slotsOf<PropertyNotifier>(), 1 + destructor);
    expectOrder(0, {op<void()>("disconnect", &PropertyNotifierConnection::disconnect),
                    op<bool()>("connected", &PropertyNotifierConnection::connected)});
    EXPECT_EQ(slotsOf<PropertyNotifierConnection>(), 2 + destructor);
}

TEST(VirtualOrder, UnifiedBusinessObjectHasThePublishedOrder) {
    using T = UnifiedBusinessObject;
    expectOrder(destructor, {
                                op<void(Weak<UnifiedBusinessObjectObserver>)>("addObserver", &T::addObserver),
                                op<void(Weak<UnifiedBusinessObjectObserver>)>("removeObserver", &T::removeObserver),
                                op<Shared<UnifiedBusinessObjectNotifiers>()>("getUnifiedBusinessObjectNotifiers",
                                                                             &T::getUnifiedBusinessObjectNotifiers),
                                op<Bytes()>("getGuid", &T::getGuid),
                                op<Bytes()>("toString", &T::toString),
                                op<Bytes()>("getInterfaceName", &T::getInterfaceName),
                            });
    EXPECT_EQ(slotsOf<T>(), businessObjectSlots);
}

TEST(VirtualOrder, UnifiedBusinessObjectObserverHasThePublishedOrder) {
    using T = UnifiedBusinessObjectObserver;
    expectOrder(destructor, {
                                op<void()>("OnInfoChanged", &T::OnInfoChanged),
                                op<void()>("OnGuidChanged", &T::OnGuidChanged),
                                op<Bytes()>("getInterfaceName", &T::getInterfaceName),
                            });
    EXPECT_EQ(slotsOf<T>(), observerSlots);
}

TEST(VirtualOrder, UnifiedBusinessObjectNotifiersHasThePublishedOrder) {
    using T = UnifiedBusinessObjectNotifiers;
    expectOrder(destructor, {op<Shared<PropertyNotifier>()>("getGuidNotifier", &T::getGuidNotifier)});
    EXPECT_EQ(slotsOf<T>(), destructor + 1);
}

TEST(VirtualOrder, UnifiedServiceHasThePublishedOrder) {
    using T = UnifiedService;
    expectOrder(businessObjectSlots,
                {
                    op<void(Weak<UnifiedServiceObserver>)>("addObserver", &T::addObserver),
                    op<void(Weak<UnifiedServiceObserver>)>("removeObserver", &T::removeObserver),
                    op<Shared<UnifiedServiceNotifiers>()>("getUnifiedServiceNotifiers", &T::getUnifiedServiceNotifiers),
                    op<bool()>("getBulkUpdateInProgress", &T::getBulkUpdateInProgress),
                });
    expectOrder(observerSlots,
                {op<void()>("OnBulkUpdateInProgressChanged", &UnifiedServiceObserver::OnBulkUpdateInProgressChanged)});
    expectOrder(destructor + 1,
                {op<Shared<PropertyNotifier>()>("getBulkUpdateInProgressNotifier",
                                                &UnifiedServiceNotifiers::getBulkUpdateInProgressNotifier)});
}

TEST(VirtualOrder, ConfigServiceHasThePublishedOrder) {
    using T = ConfigService;
    using Records = std::list<Shared<ConfigValue>>;
    expectOrder(businessObjectSlots + 4,
                {
                    op<void(Weak<ConfigServiceObserver>)>("addObserver", &T::addObserver),
                    op<void(Weak<ConfigServiceObserver>)>("removeObserver", &T::removeObserver),
                    op<Shared<ConfigServiceNotifiers>()>("getConfigServiceNotifiers", &T::getConfigServiceNotifiers),
                    op<bool()>("getConfigReady", &T::getConfigReady),
                    op<Shared<ConfigValue>(Text)>("getConfig", &T::getConfig),
                    op<void(Text, Text)>("setConfig", &T::setConfig),
                    op<void(Text, Text)>("setInMemoryConfig", &T::setInMemoryConfig),
                    op<void(Bytes)>("setMdmConfig", &T::setMdmConfig),
                    op<Shared<Records>()>("getAllConfig", &T::getAllConfig),
                    op<void(Text)>("resetConfig", &T::resetConfig),
                    op<bool(Text)>("removeConfigStoreAndCache", &T::removeConfigStoreAndCache),
                    op<void()>("removeAllCachedConfigStores", &T::removeAllCachedConfigStores),
                    op<void()>("logConfig", &T::logConfig),
                    op<void(Text)>("setKeySensitive", &T::setKeySensitive),
                    op<bool(Text)>("isKeySensitive", &T::isKeySensitive),
                    op<bool(Text)>("setUrlProvisioningData", &T::setUrlProvisioningData),
                    op<bool()>("resetAllowUriProvisioningData", &T::resetAllowUriProvisioningData),
                    op<Text()>("getAllConfigForPRT", &T::getAllConfigForPRT),
                    op<Text(Bytes, Text)>("getValueFromConfigStore", &T::getValueFromConfigStore),
                });
    EXPECT_EQ(slotsOf<T>(), businessObjectSlots + 4 + 19);
    expectOrder(observerSlots + 1, {op<void()>("OnConfigReadyChanged", &ConfigServiceObserver::OnConfigReadyChanged)});
    expectOrder(destructor + 2, {op<Shared<PropertyNotifier>()>("getConfigReadyNotifier",
                                                                &ConfigServiceNotifiers::getConfigReadyNotifier)});
}

TEST(VirtualOrder, ConfigValueHasThePublishedOrder) {
    using T = ConfigValue;
    expectOrder(businessObjectSlots,
                {
                    op<void(Weak<ConfigValueObserver>)>("addObserver", &T::addObserver),
                    op<void(Weak<ConfigValueObserver>)>("removeObserver", &T::removeObserver),
                    op<Shared<ConfigValueNotifiers>()>("getConfigValueNotifiers", &T::getConfigValueNotifiers),
                    op<Text()>("getKey", &T::getKey),
                    op<Text()>("getValue", &T::getValue),
                    op<Text()>("getOriginalValue", &T::getOriginalValue),
                    op<bool()>("getisOverridden", &T::getisOverridden),
                    op<bool()>("getisDefined", &T::getisDefined),
                    op<Text()>("getValueStoreName", &T::getValueStoreName),
                    op<Text()>("getOriginalValueStoreName", &T::getOriginalValueStoreName),
                    op<void(Text)>("storeValueAndNotify", &T::storeValueAndNotify),
                    op<bool(Text)>("isValueEqual", &T::isValueEqual),
                    op<void()>("resetToDefault", &T::resetToDefault),
                    op<bool()>("differsFromOriginal", &T::differsFromOriginal),
                });
    EXPECT_EQ(slotsOf<T>(), businessObjectSlots + 14);
}

/// The operations for the owner of a record follow the public ones.
TEST(VirtualOrder, ConfigValueBaseImplAddsItsOperationsInThePublishedOrder) {
    using T = ConfigValueBaseImpl;
    const auto last = op<Text()>("getOriginalValueStoreName", &T::getOriginalValueStoreName);
    expectOrder(last.slot + 1, {
                                   op<void(Text)>("setKey", &T::setKey),
                                   op<void(Text)>("setValue", &T::setValue),
                                   op<void(Text)>("setOriginalValue", &T::setOriginalValue),
                                   op<void(bool)>("setisOverridden", &T::setisOverridden),
                                   op<void(bool)>("setisDefined", &T::setisDefined),
                                   op<void(SharedText)>("setValueStoreName", &T::setValueStoreName),
                                   op<void(SharedText)>("setOriginalValueStoreName", &T::setOriginalValueStoreName),
                               });
}

TEST(VirtualOrder, ConfigServiceImplAddsItsOperationsInThePublishedOrder) {
    using T = ConfigServiceImpl;
    const auto last = op<Text(Bytes, Text)>("getValueFromConfigStore", &T::getValueFromConfigStore);
    expectOrder(last.slot + 1, {
                                   op<void()>("configDownloadFailed", &T::configDownloadFailed),
                                   op<void()>("reset", &T::reset),
                                   op<void()>("refreshConfigFeatureSet", &T::refreshConfigFeatureSet),
                               });
}

TEST(VirtualOrder, ConfigValueObserverHasThePublishedOrder) {
    using T = ConfigValueObserver;
    expectOrder(observerSlots, {
                                   op<void()>("OnKeyChanged", &T::OnKeyChanged),
                                   op<void()>("OnValueChanged", &T::OnValueChanged),
                                   op<void()>("OnOriginalValueChanged", &T::OnOriginalValueChanged),
                                   op<void()>("OnisOverriddenChanged", &T::OnisOverriddenChanged),
                                   op<void()>("OnisDefinedChanged", &T::OnisDefinedChanged),
                                   op<void()>("OnValueStoreNameChanged", &T::OnValueStoreNameChanged),
                                   op<void()>("OnOriginalValueStoreNameChanged", &T::OnOriginalValueStoreNameChanged),
                               });
    EXPECT_EQ(slotsOf<T>(), observerSlots + 7);
}

TEST(VirtualOrder, ConfigValueNotifiersHasThePublishedOrder) {
    using T = ConfigValueNotifiers;
    using Notifier = Shared<PropertyNotifier>;
    expectOrder(destructor + 1,
                {
                    op<Notifier()>("getKeyNotifier", &T::getKeyNotifier),
                    op<Notifier()>("getValueNotifier", &T::getValueNotifier),
                    op<Notifier()>("getOriginalValueNotifier", &T::getOriginalValueNotifier),
                    op<Notifier()>("getisOverriddenNotifier", &T::getisOverriddenNotifier),
                    op<Notifier()>("getisDefinedNotifier", &T::getisDefinedNotifier),
                    op<Notifier()>("getValueStoreNameNotifier", &T::getValueStoreNameNotifier),
                    op<Notifier()>("getOriginalValueStoreNameNotifier", &T::getOriginalValueStoreNameNotifier),
                });
    EXPECT_EQ(slotsOf<T>(), destructor + 1 + 7);
}

TEST(VirtualOrder, ConfigFeatureSetHasThePublishedOrder) {
    using T = ConfigFeatureSet;
    using Added = Shared<ConfigStoreAddedObserver>;
    expectOrder(
        destructor,
        {
            op<void(Shared<ConfigStore>)>("addConfigStore", &T::addConfigStore),
            op<bool(const Bytes&)>("removeConfigStore", &T::removeConfigStore),
            op<bool(const Bytes&)>("isConfigStorePresent", &T::isConfigStorePresent),
            op<void(Added)>("registerConfigStoreAddedObserver", &T::registerConfigStoreAddedObserver),
            op<void(Added)>("unregisterConfigStoreAddedObserver", &T::unregisterConfigStoreAddedObserver),
            op<void()>("removeAllCachedConfigStores", &T::removeAllCachedConfigStores),
            op<bool(const Text&, Text&, Text&, bool&, bool)>("getConfig with its store", &T::getConfig),
            op<bool(const Text&, Text&, bool)>("getConfig", &T::getConfig),
            op<bool(ConfigMap)>("setConfig of a map", &T::setConfig),
            op<bool(const Text&, const Text&)>("setConfig", &T::setConfig),
            op<bool(const Text&, const Text&)>("setInMemoryConfig", &T::setInMemoryConfig),
            op<void(const Bytes&)>("setMdmConfig", &T::setMdmConfig),
            op<void(const Text&)>("resetConfig", &T::resetConfig),
            op<bool(const Text&)>("isKeySensitive", &T::isKeySensitive),
            op<void(const Text&)>("setKeySensitive", &T::setKeySensitive),
            op<void()>("refreshConfigFeatureSet", &T::refreshConfigFeatureSet),
            op<bool(Text)>("setUrlProvisioningData", &T::setUrlProvisioningData),
            op<bool()>("resetAllowUriProvisioningData", &T::resetAllowUriProvisioningData),
            op<void(const Bytes&)>("resetConfigData", &T::resetConfigData),
            op<void(int, ConfigServiceIdsEnum::ConfigServiceIds, ServiceEventSeverityEnum::ServiceEventSeverity)>(
                "addServiceEvent", &T::addServiceEvent),
            op<void(Text&)>("getAllConfigForPRT", &T::getAllConfigForPRT),
            op<Text(const Bytes&, const Text&)>("getValueFromConfigStore", &T::getValueFromConfigStore),
            op<Shared<ConfigStore>(const Bytes&)>("getConfigStoreByName", &T::getConfigStoreByName),
        });
    EXPECT_EQ(slotsOf<T>(), destructor + 23);
}

TEST(VirtualOrder, ConfigStoreHasThePublishedOrder) {
    using T = ConfigStore;
    expectOrder(destructor, {
                                op<bool(const Text&, Text&)>("getValue", &T::getValue),
                                op<bool(const Text&, const Text&)>("storeValue", &T::storeValue),
                                op<std::vector<Text>()>("getKeys", &T::getKeys),
                                op<bool(const Text&)>("removeValue", &T::removeValue),
                                op<void()>("removeAllValues", &T::removeAllValues),
                                op<bool()>("isReadOnly", &T::isReadOnly),
                                op<Bytes()>("getName", &T::getName),
                                op<int()>("getPriority", &T::getPriority),
                                op<void()>("persistValues", &T::persistValues),
                                op<void()>("destroy", &T::destroy),
                                op<bool()>("isLocal", &T::isLocal),
                                op<bool()>("waitForStoreReady", &T::waitForStoreReady),
                                op<bool()>("shouldCacheConfigStore", &T::shouldCacheConfigStore),
                                op<int()>("getCachedPriority", &T::getCachedPriority),
                            });
    EXPECT_EQ(slotsOf<T>(), destructor + 14);
    expectOrder(0, {op<void(const Bytes&)>("OnConfigStoreAdded", &ConfigStoreAddedObserver::OnConfigStoreAdded)});
    EXPECT_EQ(slotsOf<ConfigStoreAddedObserver>(), 1) << "it has no virtual destructor";
}

TEST(VirtualOrder, ConfigStoreManagerObserverHasThePublishedOrder) {
    using T = ConfigStoreManager_Observer;
    expectOrder(destructor, {
                                op<void(Text)>("onFireIfRequired", &T::onFireIfRequired),
                                op<void(Text)>("onSensitiveKeyAddedOrUpdated", &T::onSensitiveKeyAddedOrUpdated),
                                op<void(Text, Text, Text, bool, bool, Text, Text, bool)>("onConfigAddedOrUpdated",
                                                                                         &T::onConfigAddedOrUpdated),
                            });
    EXPECT_EQ(slotsOf<T>(), destructor + 3);
}

TEST(VirtualOrder, FeatureSetAdapterHasThePublishedOrder) {
    using T = FeatureSetAdapter;
    using Events = Shared<ServiceEventList>;
    expectOrder(
        0, {
               op<void(unsigned int, Events)>("StartFeatureSet", &T::StartFeatureSet),
               op<void(unsigned int, Events)>("StopFeatureSet", &T::StopFeatureSet),
               op<void()>("Destroy", &T::Destroy),
               op<bool(unsigned int)>("IsFeatureSetStarted", &T::IsFeatureSetStarted),
               op<bool(unsigned int)>("IsFeatureSetProvisioned", &T::IsFeatureSetProvisioned),
               op<std::vector<unsigned int>(unsigned int)>("GetFeatureSetDependencies", &T::GetFeatureSetDependencies),
           });
    EXPECT_EQ(slotsOf<T>(), 6) << "it has no virtual destructor";
    EXPECT_EQ(slotsOf<FeatureSet>(), destructor);
}

TEST(VirtualOrder, UnifiedFactoryHasThePublishedOrder) {
    using T = UnifiedFactory;
    expectOrder(6 + destructor,
                {
                    op<void()>("Init", &T::Init),
                    op<Shared<Processing::ServicesDispatcher>()>("getServicesDispatcher", &T::getServicesDispatcher),
                    op<Shared<Processing::TaskDispatcher>()>("getBackgroundDispatcher", &T::getBackgroundDispatcher),
                    op<Shared<ResourceMonitor>()>("getResourceMonitor", &T::getResourceMonitor),
                    op<void(Shared<IDataPersistor>)>("setDataPersistor", &T::setDataPersistor),
                    op<Shared<IDataPersistor>()>("getDataPersistor", &T::getDataPersistor),
                    op<Shared<FeatureSetAdapter>(unsigned int)>("getFeatureSetAdapter", &T::getFeatureSetAdapter),
                });
    EXPECT_EQ(slotsOf<T>(), 6 + destructor + 7 + 2)
        << "the two loading operations, which only the host calls, are the last";
}

TEST(VirtualOrder, SystemServiceHasThePublishedOrder) {
    using T = SystemService;
    const auto own =
        op<Shared<ResetDataCallbackRegistry>()>("getResetDataCallbackRegistry", &T::getResetDataCallbackRegistry);
    EXPECT_EQ(own.slot, businessObjectSlots + 4 + 3) << "the fourth operation returns the reset callbacks";
}

TEST(VirtualOrder, ProviderResetDataCallbackHasThePublishedOrder) {
    expectOrder(destructor, {op<Bytes()>("getInterfaceName", &UnifiedCallback::getInterfaceName)});
    EXPECT_EQ(slotsOf<UnifiedCallback>(), destructor + 1);
    expectOrder(destructor + 1, {op<void(ResetDataOptionEnum::ResetDataOption)>(
                                    "InvokeResetData", &ProviderResetDataCallback::InvokeResetData)});
}

TEST(VirtualOrder, RegistryConfigStoreHasThePublishedOrder) {
    constexpr std::ptrdiff_t storeSlots = destructor + 14;
    expectOrder(storeSlots, {op<void()>("onRegistryChanged", &RegistryConfigStore::onRegistryChanged)});
}

} // namespace
} // namespace ZelUnified
