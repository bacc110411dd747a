#include <unified/LibraryRecord.h>
#include <unified/LifeCycle.h>
#include <unified/LifeCycleObserver.h>
#include <unified/ProviderResetDataCallback.h>
#include <unified/ServerHealthInformation.h>
#include <unified/ServerHealthInformationObserver.h>
#include <unified/ServiceEvent.h>
#include <unified/ServiceEventObserver.h>
#include <unified/SystemService.h>
#include <unified/SystemServiceObserver.h>
#include <unified/UnifiedService.h>

#include <algorithm>
#include <memory>
#include <string>

using namespace ZelUnified;

namespace {

/// Returns the name that an object of an interface returns, whatever its class. Overrides none of the operations.
template <class Interface>
class Observing final : public virtual Interface {};

template <class Interface>
std::string nameOfObserver() {
    return Observing<Interface>().getInterfaceName();
}

class Callback final : public ProviderResetDataCallback {
public:
    void InvokeResetData(ResetDataOptionEnum::ResetDataOption) override {}
};

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Woverloaded-virtual"
#endif

template <class Interface>
class Object : public virtual Interface {
public:
    void addObserver(std::weak_ptr<UnifiedBusinessObjectObserver>) override {}
    void removeObserver(std::weak_ptr<UnifiedBusinessObjectObserver>) override {}
    std::shared_ptr<UnifiedBusinessObjectNotifiers> getUnifiedBusinessObjectNotifiers() override { return nullptr; }
    std::string getGuid() override { return {}; }
    std::string toString() override { return {}; }
};

class EventObject final : public Object<ServiceEvent> {
public:
    using Object<ServiceEvent>::addObserver;
    using Object<ServiceEvent>::removeObserver;
    void addObserver(std::weak_ptr<ServiceEventObserver>) override {}
    void removeObserver(std::weak_ptr<ServiceEventObserver>) override {}
    std::shared_ptr<ServiceEventNotifiers> getServiceEventNotifiers() override { return nullptr; }
};

class HealthObject final : public Object<ServerHealthInformation> {
public:
    using Object<ServerHealthInformation>::addObserver;
    using Object<ServerHealthInformation>::removeObserver;
    void addObserver(std::weak_ptr<ServerHealthInformationObserver>) override {}
    void removeObserver(std::weak_ptr<ServerHealthInformationObserver>) override {}
    std::shared_ptr<ServerHealthInformationNotifiers> getServerHealthInformationNotifiers() override { return nullptr; }
};

class LifeCycleObject final : public Object<LifeCycle> {
public:
    using Object<LifeCycle>::addObserver;
    using Object<LifeCycle>::removeObserver;
    void addObserver(std::weak_ptr<LifeCycleObserver>) override {}
    void removeObserver(std::weak_ptr<LifeCycleObserver>) override {}
    std::shared_ptr<LifeCycleNotifiers> getLifeCycleNotifiers() override { return nullptr; }
};

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

} // namespace

TEST(InterfaceNames, AnObjectReturnsTheNameOfItsInterface) {
    EXPECT_EQ(Object<UnifiedBusinessObject>().getInterfaceName(), "UnifiedBusinessObject");
    EXPECT_EQ(EventObject().getInterfaceName(), "ServiceEvent");
    EXPECT_EQ(HealthObject().getInterfaceName(), "ServerHealthInformation");
    EXPECT_EQ(LifeCycleObject().getInterfaceName(), "LifeCycle");
}

TEST(InterfaceNames, AnObserverReturnsTheNameOfItsInterface) {
    EXPECT_EQ(nameOfObserver<UnifiedBusinessObjectObserver>(), "UnifiedBusinessObjectObserver");
    EXPECT_EQ(nameOfObserver<ServiceEventObserver>(), "ServiceEventObserver");
    EXPECT_EQ(nameOfObserver<ServerHealthInformationObserver>(), "ServerHealthInformationObserver");
    EXPECT_EQ(nameOfObserver<LifeCycleObserver>(), "LifeCycleObserver");
    class ServiceObserver : public virtual UnifiedServiceObserver {
        void OnBulkUpdateInProgressChanged() override {}
    };
    EXPECT_EQ(ServiceObserver().getInterfaceName(), "UnifiedServiceObserver");
    class SystemObserver : public virtual SystemServiceObserver {
        void OnBulkUpdateInProgressChanged() override {}
    };
    EXPECT_EQ(SystemObserver().getInterfaceName(), "SystemServiceObserver");
}

TEST(InterfaceNames, ACallbackReturnsTheNameOfItsInterface) {
    EXPECT_EQ(UnifiedCallback().getInterfaceName(), "UnifiedCallback");
    EXPECT_EQ(Callback().getInterfaceName(), "ProviderResetDataCallback");
}

TEST(LibraryRecord, IsEmptyAtConstruction) {
    const LibraryRecord record;
    EXPECT_TRUE(record.name.empty());
    EXPECT_TRUE(record.path.empty());
    EXPECT_EQ(record.entries.size(), 19U);
    EXPECT_TRUE(
        std::all_of(record.entries.begin(), record.entries.end(), [](const void* entry) { return entry == nullptr; }));
}
