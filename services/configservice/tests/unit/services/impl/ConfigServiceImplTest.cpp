#include "ServiceFixture.h"

#include <unified/UpdateAccessError.h>

#include <LogRecorder.h>

#include <functional>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace ZelUnified {
namespace {

using configservice_test::RecordingServiceObserver;
using configservice_test::serviceLogger;
using testing::_;
using testing::IsEmpty;
using testing::Return;
using testing::SetArgReferee;
using testing::Throw;

struct ConfigServiceImplTest : configservice_test::ServiceFixture {};

TEST_F(ConfigServiceImplTest, IsEmptyAndNotReadyAtFirst) {
    EXPECT_THAT(*service->getAllConfig(), IsEmpty());
    EXPECT_FALSE(service->getConfigReady());
    EXPECT_EQ(service->getInterfaceName(), "ConfigService");
    EXPECT_EQ(RecordingServiceObserver().getInterfaceName(), "ConfigServiceObserver");
    EXPECT_TRUE(factory->servicesDispatcher->getTaskNames().empty());
    EXPECT_THAT(factory->triedFeatureSetLoads, IsEmpty());
}

TEST_F(ConfigServiceImplTest, ForwardsChangesToTheFeatureSet) {
    const auto featureSet = fileFeatureSet();
    const testing::InSequence order;
    EXPECT_CALL(*featureSet, setConfig(std::wstring(L"k"), std::wstring(L"v"))).WillOnce(Return(false));
    EXPECT_CALL(*featureSet, setInMemoryConfig(std::wstring(L"k"), std::wstring(L"m"))).WillOnce(Return(false));
    EXPECT_CALL(*featureSet, setMdmConfig(std::string("<mdm/>")));
    EXPECT_CALL(*featureSet, resetConfig(std::wstring(L"k")));
    EXPECT_CALL(*featureSet, removeAllCachedConfigStores());
    EXPECT_CALL(*featureSet, setKeySensitive(std::wstring(L"k")));
    EXPECT_CALL(*featureSet, refreshConfigFeatureSet());
    service->setConfig(L"k", L"v");
    service->setInMemoryConfig(L"k", L"m");
    service->setMdmConfig("<mdm/>");
    service->resetConfig(L"k");
    service->removeAllCachedConfigStores();
    service->setKeySensitive(L"k");
    service->refreshConfigFeatureSet();
}

TEST_F(ConfigServiceImplTest, ReturnsTheResultsOfTheFeatureSet) {
    const auto featureSet = fileFeatureSet();
    EXPECT_CALL(*featureSet, removeConfigStore(std::string("St\xC3\xB6re")))
        .WillOnce(Return(true))
        .WillOnce(Return(false));
    EXPECT_TRUE(service->removeConfigStoreAndCache(L"Störe"));
    EXPECT_FALSE(service->removeConfigStoreAndCache(L"Störe"));
    EXPECT_CALL(*featureSet, setUrlProvisioningData(std::wstring(L"data")))
        .WillOnce(Return(true))
        .WillOnce(Return(false));
    EXPECT_TRUE(service->setUrlProvisioningData(L"data"));
    EXPECT_FALSE(service->setUrlProvisioningData(L"data"));
    EXPECT_CALL(*featureSet, resetAllowUriProvisioningData()).WillOnce(Return(true)).WillOnce(Return(false));
    EXPECT_TRUE(service->resetAllowUriProvisioningData());
    EXPECT_FALSE(service->resetAllowUriProvisioningData());
    EXPECT_CALL(*featureSet, getValueFromConfigStore(std::string("Store"), std::wstring(L"k"))).WillOnce(Return(L"v"));
    EXPECT_EQ(service->getValueFromConfigStore("Store", L"k"), L"v");
}

TEST_F(ConfigServiceImplTest, AnExceptionOfTheFeatureSetReachesTheCaller) {
    const auto featureSet = fileFeatureSet();
    const std::runtime_error refused("refused");
    EXPECT_CALL(*featureSet, setConfig(_, _)).WillOnce(Throw(refused));
    EXPECT_CALL(*featureSet, setInMemoryConfig(_, _)).WillOnce(Throw(refused));
    EXPECT_CALL(*featureSet, setMdmConfig(_)).WillOnce(Throw(refused));
    EXPECT_CALL(*featureSet, resetConfig(_)).WillOnce(Throw(refused));
    EXPECT_CALL(*featureSet, removeConfigStore(_)).WillOnce(Throw(refused));
    EXPECT_CALL(*featureSet, removeAllCachedConfigStores()).WillOnce(Throw(refused));
    EXPECT_CALL(*featureSet, setKeySensitive(_)).WillOnce(Throw(refused));
    EXPECT_CALL(*featureSet, setUrlProvisioningData(_)).WillOnce(Throw(refused));
    EXPECT_CALL(*featureSet, resetAllowUriProvisioningData()).WillOnce(Throw(refused));
    EXPECT_CALL(*featureSet, getAllConfigForPRT(_)).WillOnce(Throw(refused));
    EXPECT_CALL(*featureSet, getValueFromConfigStore(_, _)).WillOnce(Throw(refused));
    EXPECT_CALL(*featureSet, refreshConfigFeatureSet()).WillOnce(Throw(refused));
    EXPECT_THROW(service->setConfig(L"k", L"v"), std::runtime_error);
    EXPECT_THROW(service->setInMemoryConfig(L"k", L"m"), std::runtime_error);
    EXPECT_THROW(service->setMdmConfig("<mdm/>"), std::runtime_error);
    EXPECT_THROW(service->resetConfig(L"k"), std::runtime_error);
    EXPECT_THROW(service->removeConfigStoreAndCache(L"S"), std::runtime_error);
    EXPECT_THROW(service->removeAllCachedConfigStores(), std::runtime_error);
    EXPECT_THROW(service->setKeySensitive(L"k"), std::runtime_error);
    EXPECT_THROW(service->setUrlProvisioningData(L"data"), std::runtime_error);
    EXPECT_THROW(service->resetAllowUriProvisioningData(), std::runtime_error);
    EXPECT_THROW(service->getAllConfigForPRT(), std::runtime_error);
    EXPECT_THROW(service->getValueFromConfigStore("S", L"k"), std::runtime_error);
    EXPECT_THROW(service->refreshConfigFeatureSet(), std::runtime_error);
}

TEST_F(ConfigServiceImplTest, TheReportStartsFromAnEmptyText) {
    const auto featureSet = fileFeatureSet();
    EXPECT_CALL(*featureSet, getAllConfigForPRT(testing::Eq(std::wstring())))
        .Times(2)
        .WillRepeatedly(SetArgReferee<0>(std::wstring(L"<AllConfigs/>")));
    EXPECT_EQ(service->getAllConfigForPRT(), L"<AllConfigs/>");
    EXPECT_EQ(service->getAllConfigForPRT(), L"<AllConfigs/>");
}

TEST_F(ConfigServiceImplTest, WithoutAFeatureSetForwardedCallsDoNothing) {
    service->setConfig(L"k", L"v");
    service->setInMemoryConfig(L"k", L"v");
    service->setMdmConfig("<mdm/>");
    service->resetConfig(L"k");
    service->removeAllCachedConfigStores();
    service->setKeySensitive(L"k");
    service->refreshConfigFeatureSet();
    EXPECT_FALSE(service->removeConfigStoreAndCache(L"Store"));
    EXPECT_FALSE(service->setUrlProvisioningData(L"data"));
    EXPECT_FALSE(service->resetAllowUriProvisioningData());
    EXPECT_EQ(service->getAllConfigForPRT(), L"");
    EXPECT_EQ(service->getValueFromConfigStore("Store", L"k"), L"");
    EXPECT_FALSE(service->isKeySensitive(L"k"));
    EXPECT_THAT(*service->getAllConfig(), IsEmpty());
    EXPECT_EQ(factory->triedFeatureSetLoads.size(), 1U);
}

TEST_F(ConfigServiceImplTest, AKeyIsSensitiveOnlyIfItIsInTheList) {
    const auto featureSet = fileFeatureSet();
    EXPECT_CALL(*featureSet, setKeySensitive(std::wstring(L"Secret")));
    service->setKeySensitive(L"Secret");
    EXPECT_FALSE(service->isKeySensitive(L"Secret"));
    service->updateSensitiveKeyList(L"Secret");
    service->updateSensitiveKeyList(L"SECRET");
    EXPECT_TRUE(service->isKeySensitive(L"sEcReT"));
    EXPECT_FALSE(service->isKeySensitive(L"Secret2"));
    EXPECT_FALSE(service->isKeySensitive(L""));
}

TEST_F(ConfigServiceImplTest, ResetRemovesTheRecordsAndKeepsSensitiveKeysAndOldNames) {
    service->updateSensitiveKeyList(L"Secret");
    service->setupConfigKeyAliases({{L"Old", L"New"}});
    announce(L"New", L"before");
    const auto held = service->getConfig(L"New");
    const auto observer = observe(L"New");
    service->reset();
    EXPECT_THAT(*service->getAllConfig(), IsEmpty());
    announce(L"New", L"after");
    EXPECT_EQ(held->getValue(), L"before");
    EXPECT_THAT(observer->received, IsEmpty());
    const auto fresh = service->getConfig(L"Old");
    EXPECT_NE(fresh, held);
    EXPECT_EQ(fresh->getValue(), L"after");
    EXPECT_TRUE(service->isKeySensitive(L"secret"));
}

TEST_F(ConfigServiceImplTest, AfterAResetALookupReturnsAnUndefinedRecord) {
    announce(L"k", L"v");
    service->reset();
    EXPECT_FALSE(service->getConfig(L"k")->getisDefined());
}

TEST_F(ConfigServiceImplTest, ResetReleasesListedAndNewerRecords) {
    announce(L"listed", L"v");
    service->getAllConfig();
    announce(L"since", L"w");
    const std::weak_ptr<ConfigValue> listed = service->getConfig(L"listed");
    const std::weak_ptr<ConfigValue> since = service->getConfig(L"since");
    service->reset();
    EXPECT_TRUE(listed.expired());
    EXPECT_TRUE(since.expired());
    EXPECT_THAT(*service->getAllConfig(), IsEmpty());
    for (const auto* key : {L"LISTED", L"SINCE"}) {
        const auto fresh = service->getConfig(key);
        EXPECT_EQ(fresh->getKey(), key);
        EXPECT_EQ(fresh->getValue(), L"");
        EXPECT_FALSE(fresh->getisDefined());
    }
    EXPECT_EQ(service->getAllConfig()->size(), 2U);
}

TEST_F(ConfigServiceImplTest, ObjectsDestroyedByAResetMayCallTheService) {
    struct CallsBack {
        ~CallsBack() { size = service.getAllConfig()->size(); }
        ConfigServiceImpl& service;
        std::size_t& size;
    };
    std::size_t size = 99;
    service->getConfig(L"a");
    service->getConfig(L"b")->getConfigValueNotifiers()->getValueNotifier()->connect(
        [dying = std::shared_ptr<CallsBack>(new CallsBack{*service, size})] {});
    service->reset();
    EXPECT_EQ(size, 0U);
}

TEST_F(ConfigServiceImplTest, ReadinessFollowsTheFeatureSetAndFiresOnAChangeOnly) {
    const auto observer = std::make_shared<RecordingServiceObserver>();
    bool seen = false;
    observer->reaction = [&] { seen = service->getConfigReady(); };
    service->addObserver(observer);
    FeatureSetReadyListener& listener = *service;
    listener.onFeatureSetReady(false);
    EXPECT_EQ(observer->readyChanges, 0);
    listener.onFeatureSetReady(true);
    listener.onFeatureSetReady(true);
    EXPECT_EQ(observer->readyChanges, 1);
    EXPECT_TRUE(seen);
    listener.onFeatureSetReady(false);
    EXPECT_EQ(observer->readyChanges, 2);
    EXPECT_FALSE(service->getConfigReady());
}

TEST_F(ConfigServiceImplTest, AFailedDownloadLogsADebugLineAndChangesNoState) {
    {
        testing_host::LogRecorder quiet;
        service->configDownloadFailed();
        EXPECT_THAT(quiet.getRecords(), IsEmpty());
    }
    testing_host::LogRecorder log(testing_host::LogRecorder::Debug::On);
    service->configDownloadFailed();
    ASSERT_EQ(log.getRecords().size(), 1U);
    const auto line = log.getRecords().front();
    EXPECT_EQ(line.logger, serviceLogger);
    EXPECT_EQ(line.level, ZelLogLevel::Debug);
    EXPECT_EQ(line.text, "ConfigServiceImpl::configDownloadFailed()");
    EXPECT_EQ(line.function, "ZelUnified::ConfigServiceImpl::configDownloadFailed");
    EXPECT_THAT(*service->getAllConfig(), IsEmpty());
    EXPECT_FALSE(service->getConfigReady());
}

using Operation = std::pair<std::string, std::function<void(ConfigServiceImpl&)>>;

std::vector<Operation> guardedOperations() {
    return {
        {"getConfigReady", [](auto& service) { service.getConfigReady(); }},
        {"getConfig", [](auto& service) { service.getConfig(L"known"); }},
        {"setConfig", [](auto& service) { service.setConfig(L"known", L"x"); }},
        {"setInMemoryConfig", [](auto& service) { service.setInMemoryConfig(L"known", L"x"); }},
        {"setMdmConfig", [](auto& service) { service.setMdmConfig("x"); }},
        {"resetConfig", [](auto& service) { service.resetConfig(L"known"); }},
        {"removeConfigStoreAndCache", [](auto& service) { service.removeConfigStoreAndCache(L"x"); }},
        {"removeAllCachedConfigStores", [](auto& service) { service.removeAllCachedConfigStores(); }},
        {"logConfig", [](auto& service) { service.logConfig(); }},
        {"setKeySensitive", [](auto& service) { service.setKeySensitive(L"known"); }},
        {"isKeySensitive", [](auto& service) { service.isKeySensitive(L"known"); }},
        {"getAllConfigForPRT", [](auto& service) { service.getAllConfigForPRT(); }},
        {"getValueFromConfigStore", [](auto& service) { service.getValueFromConfigStore("x", L"known"); }},
        {"reset", [](auto& service) { service.reset(); }},
        {"refreshConfigFeatureSet", [](auto& service) { service.refreshConfigFeatureSet(); }},
        {"OnConfigChanged",
         [](auto& service) { service.OnConfigChanged(L"known", L"x", L"", true, true, L"x", L"", false); }},
        {"FireIfRequired of a known key", [](auto& service) { service.FireIfRequired(L"known"); }},
        {"FireIfRequired of an unknown key", [](auto& service) { service.FireIfRequired(L"unknown"); }},
        {"setupConfigKeyAliases", [](auto& service) { service.setupConfigKeyAliases({}); }},
        {"updateSensitiveKeyList", [](auto& service) { service.updateSensitiveKeyList(L"known"); }},
        {"onFeatureSetReady", [](auto& service) { service.onFeatureSetReady(true); }},
    };
}

TEST_F(ConfigServiceImplTest, CallsOnAnotherThreadThrowAndChangeNothing) {
    const auto featureSet = fileFeatureSet(); // a strict mock: any call fails the test
    announce(L"known", L"v");
    service->setupConfigKeyAliases({{L"Old", L"known"}});
    const auto observer = observe(L"known");
    announce(L"known", L"w", true);
    testing_host::LogRecorder log;
    for (const auto& [name, operation] : guardedOperations()) {
        SCOPED_TRACE(name);
        log.clear();
        std::thread([&, call = operation] { EXPECT_THROW(call(*service), UpdateAccessError); }).join();
        const auto errors = log.getTexts(ZelLogLevel::Error);
        ASSERT_EQ(errors.size(), 1U);
        EXPECT_THAT(errors[0], testing::HasSubstr("ConfigServiceBaseImpl {"));
    }
    EXPECT_THAT(observer->received, IsEmpty());
    EXPECT_EQ(service->getAllConfig()->size(), 1U);
    EXPECT_EQ(service->getConfig(L"Old")->getValue(), L"w");
    EXPECT_FALSE(service->isKeySensitive(L"known"));
    EXPECT_FALSE(service->getConfigReady());
}

TEST_F(ConfigServiceImplTest, ThreeOperationsSucceedOnEveryThread) {
    service->getConfig(L"k");
    const auto featureSet = fileFeatureSet();
    EXPECT_CALL(*featureSet, setUrlProvisioningData(std::wstring(L"data"))).WillOnce(Return(true));
    EXPECT_CALL(*featureSet, resetAllowUriProvisioningData()).WillOnce(Return(true));
    factory->servicesDispatcher->disown();
    EXPECT_TRUE(service->setUrlProvisioningData(L"data"));
    EXPECT_TRUE(service->resetAllowUriProvisioningData());
    EXPECT_EQ(service->getAllConfig()->size(), 1U);
}

TEST(ConfigServiceImpl, WithoutAFactoryEveryOperationThrowsOrReturnsFalse) {
    ConfigServiceImpl withoutFactory(nullptr);
    EXPECT_THROW(withoutFactory.getConfig(L"k"), UpdateAccessError);
    EXPECT_FALSE(withoutFactory.setUrlProvisioningData(L"data"));
    EXPECT_FALSE(withoutFactory.resetAllowUriProvisioningData());
    EXPECT_THAT(*withoutFactory.getAllConfig(), IsEmpty());
}

} // namespace
} // namespace ZelUnified
