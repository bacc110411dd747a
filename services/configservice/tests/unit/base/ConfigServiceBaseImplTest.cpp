#include "TestObjects.h"
#include "services/impl/ConfigServiceImpl.h"

#include <unified/UpdateAccessError.h>

#include <gtest/gtest.h>

#include <list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ZelUnified {
namespace {

using configservice_test::RecordingServiceObserver;

/// The base class of the service, which records what its addObserver() is called with.
class RegisteringService final : public ConfigServiceBaseImpl {
public:
    explicit RegisteringService(const std::shared_ptr<UnifiedFactory>& factory) : ConfigServiceBaseImpl(factory) {}

    void addObserver(std::weak_ptr<ConfigServiceObserver> added) override {
        registered.push_back(added.lock());
        ConfigServiceBaseImpl::addObserver(std::move(added));
    }

    std::shared_ptr<ConfigValue> getConfig(std::wstring) override { return nullptr; }
    void setConfig(std::wstring, std::wstring) override {}
    void setInMemoryConfig(std::wstring, std::wstring) override {}
    void setMdmConfig(std::string) override {}
    std::shared_ptr<std::list<std::shared_ptr<ConfigValue>>> getAllConfig() override { return nullptr; }
    void resetConfig(std::wstring) override {}
    bool removeConfigStoreAndCache(std::wstring) override { return false; }
    void removeAllCachedConfigStores() override {}
    void logConfig() override {}
    void setKeySensitive(std::wstring) override {}
    bool isKeySensitive(std::wstring) override { return false; }
    bool setUrlProvisioningData(std::wstring) override { return false; }
    bool resetAllowUriProvisioningData() override { return false; }
    std::wstring getAllConfigForPRT() override { return {}; }
    std::wstring getValueFromConfigStore(std::string, std::wstring) override { return {}; }

    std::vector<std::shared_ptr<ConfigServiceObserver>> registered;
};

struct ConfigServiceBaseImplTest : testing::Test {
    std::shared_ptr<testing_host::RecordingFactory> factory = std::make_shared<testing_host::RecordingFactory>();
    std::shared_ptr<ConfigServiceImpl> service = std::make_shared<ConfigServiceImpl>(factory);
    std::shared_ptr<RecordingServiceObserver> observer = std::make_shared<RecordingServiceObserver>();
};

TEST_F(ConfigServiceBaseImplTest, IsNotReadyAtFirstAndTheSetterFiresNothing) {
    service->addObserver(observer);
    EXPECT_FALSE(service->getConfigReady());
    service->setConfigReady(true);
    EXPECT_TRUE(service->getConfigReady());
    EXPECT_EQ(observer->readyChanges, 0);
    service->fireConfigReady();
    EXPECT_EQ(observer->readyChanges, 1);
    service->removeObserver(observer);
    service->fireConfigReady();
    EXPECT_EQ(observer->readyChanges, 1);
}

TEST_F(ConfigServiceBaseImplTest, TheBasesNotifierSetIsTheServicesNotifierSet) {
    const auto shared = service->getUnifiedServiceNotifiers();
    const auto own = service->getConfigServiceNotifiers();
    ASSERT_TRUE(own);
    EXPECT_EQ(std::dynamic_pointer_cast<ConfigServiceNotifiers>(shared), own);
    int ready = 0;
    int bulk = 0;
    own->getConfigReadyNotifier()->connect([&] { ++ready; });
    shared->getBulkUpdateInProgressNotifier()->connect([&] { ++bulk; });
    service->fireConfigReady();
    service->fireOnBulkUpdateInProgressChanged();
    EXPECT_EQ(ready, 1);
    EXPECT_EQ(bulk, 1);
}

TEST_F(ConfigServiceBaseImplTest, TheNotifierSetIsRegisteredOnceWithTheServicesAddObserver) {
    RegisteringService registering(factory);
    const auto notifiers = registering.getConfigServiceNotifiers();
    EXPECT_EQ(registering.getConfigServiceNotifiers(), notifiers);
    ASSERT_EQ(registering.registered.size(), 1U);
    EXPECT_EQ(std::dynamic_pointer_cast<ConfigServiceNotifiers>(registering.registered.front()), notifiers);
}

TEST_F(ConfigServiceBaseImplTest, AnObserverOfTheServiceIsNotifiedOfTheBulkUpdate) {
    service->addObserver(observer);
    service->fireOnBulkUpdateInProgressChanged();
    EXPECT_EQ(observer->bulkUpdateChanges, 1);
}

TEST_F(ConfigServiceBaseImplTest, ASharedPointerToAnObserverSelectsTheOverloadOfItsType) {
    const std::shared_ptr<ConfigService> face = service;
    face->addObserver(observer);
    service->fireConfigReady();
    EXPECT_EQ(observer->readyChanges, 1);
}

TEST_F(ConfigServiceBaseImplTest, ReadinessIsAccessibleOnTheDispatchersThreadOnly) {
    service->addObserver(observer);
    factory->servicesDispatcher->disown();
    EXPECT_THROW(service->getConfigReady(), UpdateAccessError);
    EXPECT_THROW(service->setConfigReady(true), UpdateAccessError);
    EXPECT_THROW(service->fireConfigReady(), UpdateAccessError);
    EXPECT_TRUE(service->getConfigServiceNotifiers());
    factory->servicesDispatcher->claim();
    EXPECT_FALSE(service->getConfigReady());
    EXPECT_EQ(observer->readyChanges, 0);
}

TEST_F(ConfigServiceBaseImplTest, ToStringContainsTheNameOfTheBaseClass) {
    EXPECT_EQ(service->toString(), "ConfigServiceBaseImpl {" + service->getGuid() + "}");
}

} // namespace
} // namespace ZelUnified
