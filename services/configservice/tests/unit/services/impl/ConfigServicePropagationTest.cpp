#include "ServiceFixture.h"

#include <LogRecorder.h>

#include <stdexcept>
#include <utility>
#include <vector>

namespace ZelUnified {
namespace {

using testing::ElementsAre;
using testing::InvokeWithoutArgs;
using testing::IsEmpty;

/// Tests how a change reaches a record and its observers.
struct ConfigServicePropagation : configservice_test::ServiceFixture {};

TEST_F(ConfigServicePropagation, AChangeUpdatesTheRecordAndFiresEachPropertyOnce) {
    const auto observer = observe(L"k");
    service->OnConfigChanged(L"K", L"v", L"ov", true, true, L"vs", L"ovs", false);
    EXPECT_THAT(observer->received, ElementsAre("Value", "OriginalValue", "isOverridden", "isDefined", "ValueStoreName",
                                                "OriginalValueStoreName"));
    const auto record = service->getConfig(L"k");
    EXPECT_EQ(record->getKey(), L"k");
    EXPECT_EQ(record->getValue(), L"v");
    EXPECT_EQ(record->getOriginalValue(), L"ov");
    EXPECT_TRUE(record->getisOverridden());
    EXPECT_TRUE(record->getisDefined());
    EXPECT_EQ(record->getValueStoreName(), L"vs");
    EXPECT_EQ(record->getOriginalValueStoreName(), L"ovs");
}

TEST_F(ConfigServicePropagation, TheOverriddenArgumentPrecedesTheDefinedOne) {
    service->OnConfigChanged(L"a", L"", L"", true, false, L"", L"", false);
    EXPECT_TRUE(service->getConfig(L"a")->getisOverridden());
    EXPECT_FALSE(service->getConfig(L"a")->getisDefined());
}

TEST_F(ConfigServicePropagation, AnEqualNotificationFiresAndLogsNothing) {
    const auto observer = observe(L"k");
    announce(L"k", L"v");
    observer->received.clear();
    const testing_host::LogRecorder log(testing_host::LogRecorder::Debug::On);
    announce(L"k", L"v");
    announce(L"k", L"V");
    EXPECT_THAT(observer->received, IsEmpty());
    EXPECT_THAT(log.getRecords(), IsEmpty());
    EXPECT_EQ(service->getConfig(L"k")->getValue(), L"v");
}

TEST_F(ConfigServicePropagation, ADeferredChangeWaitsForItsFiringAndFiresOnce) {
    const auto observer = observe(L"k");
    announce(L"k", L"one", true);
    announce(L"k", L"two", true);
    EXPECT_THAT(observer->received, IsEmpty());
    EXPECT_EQ(service->getConfig(L"k")->getValue(), L"two");
    service->FireIfRequired(L"K");
    EXPECT_THAT(observer->received, ElementsAre("Value", "isDefined", "ValueStoreName"));
    service->FireIfRequired(L"k");
    EXPECT_EQ(observer->received.size(), 3U);
}

TEST_F(ConfigServicePropagation, ABatchIsUpdatedBeforeAnyObserverIsCalled) {
    std::vector<std::wstring> seen;
    const auto observer = observe(L"a");
    observer->reaction = [&](const std::string& property) {
        if (property == "Value") {
            seen = {service->getConfig(L"a")->getValue(), service->getConfig(L"b")->getValue()};
        }
    };
    announce(L"a", L"1", true);
    announce(L"b", L"2", true);
    service->FireIfRequired(L"a");
    service->FireIfRequired(L"b");
    EXPECT_THAT(seen, ElementsAre(L"1", L"2"));
}

TEST_F(ConfigServicePropagation, ABatchFiresInAnyOrderAndSpelling) {
    const auto a = observe(L"a");
    const auto b = observe(L"b");
    const auto c = observe(L"c");
    for (const std::wstring key : {L"a", L"b", L"c"}) {
        announce(key, L"v", true);
    }
    for (const std::wstring key : {L"B", L"A", L"x", L"c", L"a", L"b", L"C"}) {
        service->FireIfRequired(key);
    }
    for (const auto& observer : {a, b, c}) {
        EXPECT_THAT(observer->received, ElementsAre("Value", "isDefined", "ValueStoreName"));
    }
}

TEST_F(ConfigServicePropagation, ADeferredChangeIsFiredByTheKeyOfItsRecordsCreation) {
    const auto a = observe(L"a");
    const auto b = observe(L"b");
    announce(L"a", L"1", true);
    announce(L"b", L"2", true);
    std::dynamic_pointer_cast<ConfigValueImpl>(service->getConfig(L"a"))->setKey(L"b");
    service->FireIfRequired(L"b");
    EXPECT_THAT(a->received, IsEmpty());
    EXPECT_THAT(b->received, ElementsAre("Value", "isDefined", "ValueStoreName"));
    service->FireIfRequired(L"a");
    EXPECT_THAT(a->received, ElementsAre("Value", "isDefined", "ValueStoreName"));
}

TEST_F(ConfigServicePropagation, AResetDropsDeferredChanges) {
    const auto before = observe(L"k");
    announce(L"k", L"v", true);
    service->reset();
    const auto after = observe(L"k");
    service->FireIfRequired(L"k");
    EXPECT_THAT(before->received, IsEmpty());
    EXPECT_THAT(after->received, IsEmpty());
    EXPECT_FALSE(service->getConfig(L"k")->getisDefined());
}

TEST_F(ConfigServicePropagation, FiringAnOldNameFiresTheRecordThatTheNameCurrentlyHas) {
    const auto old = observe(L"Old");
    service->setupConfigKeyAliases({{L"Old", L"New"}});
    announce(L"Old", L"one", true); // no record of the new name exists yet
    const auto current = observe(L"New");
    announce(L"New", L"two", true);
    service->FireIfRequired(L"Old");
    EXPECT_THAT(old->received, IsEmpty());
    EXPECT_THAT(current->received, ElementsAre("Value", "isDefined", "ValueStoreName"));
}

TEST_F(ConfigServicePropagation, FiringAnUnknownKeyCreatesARecordAndCallsNoObserver) {
    service->FireIfRequired(L"k");
    ASSERT_EQ(service->getAllConfig()->size(), 1U);
    EXPECT_FALSE(service->getAllConfig()->front()->getisDefined());
}

TEST_F(ConfigServicePropagation, AChangeOfAnOldNameUpdatesTheRecordOfItsNewName) {
    service->setupConfigKeyAliases({{L"Old", L"New"}});
    const auto observer = observe(L"New");
    announce(L"Old", L"v");
    EXPECT_THAT(observer->received, ElementsAre("Value", "isDefined", "ValueStoreName"));
    EXPECT_EQ(service->getAllConfig()->size(), 1U);
}

TEST_F(ConfigServicePropagation, TheValueOfASensitiveKeyIsNotMaskedInItsRecord) {
    service->updateSensitiveKeyList(L"secret");
    announce(L"secret", L"s3cr3t");
    EXPECT_EQ(service->getConfig(L"secret")->getValue(), L"s3cr3t");
}

TEST_F(ConfigServicePropagation, ANotifierFollowsOneProperty) {
    int values = 0;
    service->getConfig(L"k")->getConfigValueNotifiers()->getValueNotifier()->connect([&] { ++values; });
    announce(L"k", L"v");
    service->OnConfigChanged(L"k", L"v", L"ov", true, true, L"s", L"os", false);
    EXPECT_EQ(values, 1);
}

TEST_F(ConfigServicePropagation, AStoreNameThatDiffersOnlyInCaseIsAChange) {
    service->OnConfigChanged(L"k", L"v", L"ov", true, true, L"Store", L"Origin", false);
    const auto observer = observe(L"k");
    service->OnConfigChanged(L"k", L"v", L"ov", true, true, L"STORE", L"Origin", false);
    EXPECT_THAT(observer->received, ElementsAre("ValueStoreName"));
    observer->received.clear();
    service->OnConfigChanged(L"k", L"v", L"ov", true, true, L"STORE", L"origin", false);
    EXPECT_THAT(observer->received, ElementsAre("OriginalValueStoreName"));
    EXPECT_EQ(service->getConfig(L"k")->getValueStoreName(), L"STORE");
    EXPECT_EQ(service->getConfig(L"k")->getOriginalValueStoreName(), L"origin");
}

TEST_F(ConfigServicePropagation, EachOfManyStoreNamesIsReportedCorrectly) {
    const auto observer = observe(L"k");
    announce(L"k", L"v");
    const auto record = service->getConfig(L"k");
    for (int i = 0; i < 200; ++i) {
        observer->received.clear();
        const std::wstring name = L"Store " + std::to_wstring(i);
        const std::wstring original = L"Original " + std::to_wstring(i);
        service->OnConfigChanged(L"k", L"v", L"", false, true, name, original, false);
        ASSERT_THAT(observer->received, ElementsAre("ValueStoreName", "OriginalValueStoreName")) << i;
        ASSERT_EQ(record->getValueStoreName(), name);
        ASSERT_EQ(record->getOriginalValueStoreName(), original);
    }
}

TEST_F(ConfigServicePropagation, AnObserverMayReadConnectAndRemoveItself) {
    const auto observer = observe(L"k");
    const auto added = std::make_shared<configservice_test::RecordingValueObserver>();
    int connected = 0;
    observer->reaction = [&](const std::string&) {
        const auto record = service->getConfig(L"k");
        EXPECT_EQ(record->getValue(), L"v");
        record->removeObserver(observer);
        record->addObserver(added);
        record->getConfigValueNotifiers()->getValueNotifier()->connect([&] { ++connected; });
        service->getConfig(L"made inside");
    };
    announce(L"k", L"v");
    EXPECT_THAT(observer->received, ElementsAre("Value"));
    EXPECT_THAT(added->received, ElementsAre("isDefined", "ValueStoreName"));
    EXPECT_EQ(connected, 0);
    announce(L"k", L"w");
    EXPECT_EQ(connected, 1);
}

TEST_F(ConfigServicePropagation, AnObserverMayWriteTheSameKeyAgain) {
    const auto featureSet = fileFeatureSet();
    EXPECT_CALL(*featureSet, setConfig(std::wstring(L"k"), std::wstring(L"second"))).WillOnce(InvokeWithoutArgs([&] {
        announce(L"k", L"second");
        return true;
    }));
    const auto observer = observe(L"k");
    observer->reaction = [&](const std::string&) {
        if (observer->received.size() == 1) {
            service->setConfig(L"k", L"second");
        }
    };
    announce(L"k", L"first");
    EXPECT_THAT(observer->received, ElementsAre("Value", "Value", "isDefined", "ValueStoreName"));
    EXPECT_EQ(service->getConfig(L"k")->getValue(), L"second");
}

TEST_F(ConfigServicePropagation, AnObserverMayResetTheServiceDuringAFiring) {
    const auto observer = observe(L"k");
    observer->reaction = [&](const std::string&) { service->reset(); };
    announce(L"k", L"v");
    EXPECT_THAT(observer->received, ElementsAre("Value", "isDefined", "ValueStoreName"));
    EXPECT_TRUE(service->getAllConfig()->empty());
    announce(L"k", L"v", true);
    observer->reaction = nullptr;
    service->FireIfRequired(L"k");
    EXPECT_EQ(observer->received.size(), 3U);
}

TEST_F(ConfigServicePropagation, AnExceptionOfAnObserverPropagatesAndTheRestFiresLater) {
    const auto observer = observe(L"k");
    observer->reaction = [](const std::string& property) {
        if (property == "isDefined") {
            throw std::runtime_error("refused");
        }
    };
    EXPECT_THROW(announce(L"k", L"v"), std::runtime_error);
    EXPECT_EQ(service->getConfig(L"k")->getValueStoreName(), L"Store");
    observer->reaction = nullptr;
    service->FireIfRequired(L"k");
    EXPECT_THAT(observer->received, ElementsAre("Value", "isDefined", "isDefined", "ValueStoreName"));
}

TEST_F(ConfigServicePropagation, AnExceptionOfAnObserverOfADeferredChangePropagates) {
    const auto observer = observe(L"k");
    observer->reaction = [](const std::string&) { throw std::runtime_error("refused"); };
    announce(L"k", L"v", true);
    EXPECT_THROW(service->FireIfRequired(L"k"), std::runtime_error);
}

TEST_F(ConfigServicePropagation, InFipsModeTheForcedKeyFiresForEveryOtherValue) {
    const auto observer = observe(L"Telephony_P2P_Enabled");
    announce(L"Telephony_P2P_Enabled", L"true");
    observer->received.clear();
    zel::common::FipsUtils::overrideFipsMode(true);
    announce(L"Telephony_P2P_Enabled", L"true");
    EXPECT_THAT(observer->received, ElementsAre("Value"));
    announce(L"Telephony_P2P_Enabled", L"false");
    EXPECT_THAT(observer->received, ElementsAre("Value"));
}

TEST_F(ConfigServicePropagation, InFipsModeAFiringOverwritesADeferredValueThatNamesTheFipsKey) {
    const auto observer = observe(L"k");
    std::vector<std::wstring> seen;
    const auto record = std::dynamic_pointer_cast<ConfigValueImpl>(service->getConfig(L"k"));
    observer->reaction = [&](const std::string&) { seen.push_back(record->ConfigValueBaseImpl::getValue()); };
    announce(L"k", L"Telephony_P2P_Enabled", true);
    zel::common::FipsUtils::overrideFipsMode(true);
    EXPECT_EQ(record->getValue(), L"Telephony_P2P_Enabled") << "no lookup has happened yet";
    service->FireIfRequired(L"K");
    EXPECT_THAT(observer->received, ElementsAre("Value", "isDefined", "ValueStoreName"));
    EXPECT_THAT(seen, testing::Each(L"false"));
    EXPECT_EQ(record->ConfigValueBaseImpl::getValue(), L"false");
}

TEST_F(ConfigServicePropagation, InFipsModeALookupBeforeTheFiringOverwritesTheValueAndItFiresOnce) {
    const auto observer = observe(L"k");
    zel::common::FipsUtils::overrideFipsMode(true);
    announce(L"k", L"telephony_p2p_enabled", true);
    EXPECT_EQ(service->getConfig(L"k")->getValue(), L"false");
    EXPECT_THAT(observer->received, IsEmpty());
    service->FireIfRequired(L"k");
    EXPECT_THAT(observer->received, ElementsAre("Value", "isDefined", "ValueStoreName"));
    service->FireIfRequired(L"k");
    EXPECT_EQ(observer->received.size(), 3U);
}

TEST_F(ConfigServicePropagation, InFipsModeTheNextAnnouncementOverwritesADeferredValueThatNamesTheFipsKey) {
    zel::common::FipsUtils::overrideFipsMode(true);
    announce(L"k", L"Telephony_P2P_Enabled", true);
    const auto observer = observe(L"k"); // looks the record up, which overwrites the value
    announce(L"k", L"false", true);
    service->FireIfRequired(L"k");
    EXPECT_THAT(observer->received, ElementsAre("Value", "isDefined", "ValueStoreName"))
        << "the pending properties of the first change";
    announce(L"k", L"Telephony_P2P_Enabled", true);
    announce(L"k", L"Telephony_P2P_Enabled", true);
    service->FireIfRequired(L"k");
    EXPECT_EQ(observer->received.size(), 4U);
    EXPECT_EQ(service->getConfig(L"k")->getValue(), L"false");
}

TEST_F(ConfigServicePropagation, InFipsModeTheForcedKeyFiresADeferredChangeAndKeepsItsStoredValue) {
    const auto observer = observe(L"Telephony_P2P_Enabled");
    zel::common::FipsUtils::overrideFipsMode(true);
    announce(L"Telephony_P2P_Enabled", L"true", true);
    EXPECT_THAT(observer->received, IsEmpty());
    service->FireIfRequired(L"telephony_p2p_enabled");
    EXPECT_THAT(observer->received, ElementsAre("Value", "isDefined", "ValueStoreName"));
    const auto record = std::dynamic_pointer_cast<ConfigValueImpl>(service->getConfig(L"Telephony_P2P_Enabled"));
    EXPECT_EQ(record->getValue(), L"false");
    EXPECT_EQ(record->ConfigValueBaseImpl::getValue(), L"true");
}

TEST_F(ConfigServicePropagation, ABatchThatIsNeverFiredHoldsNoReferencesToLaterChanges) {
    announce(L"never shown", L"v", true);
    const std::weak_ptr<ConfigValue> record = service->getConfig(L"k");
    const auto holders = record.use_count();
    for (int i = 0; i < 100; ++i) {
        announce(L"k", std::to_wstring(i), true);
        service->FireIfRequired(L"k");
    }
    EXPECT_LE(record.use_count(), holders + 1);
}

TEST_F(ConfigServicePropagation, AnObserverMayStartABatchWhileAnotherIsFired) {
    const auto first = observe(L"a");
    const auto second = observe(L"b");
    const auto third = observe(L"c");
    for (const auto* key : {L"a", L"b", L"c"}) {
        announce(key, L"1", true);
    }
    bool isFirst = true;
    first->reaction = [&](const std::string&) {
        if (!std::exchange(isFirst, false)) {
            return;
        }
        announce(L"c", L"2", true);
        announce(L"b", L"2", true);
        service->FireIfRequired(L"c");
        EXPECT_THAT(third->received, ElementsAre("Value", "isDefined", "ValueStoreName"));
        EXPECT_TRUE(second->received.empty());
    };
    for (const auto* key : {L"A", L"B", L"C"}) {
        service->FireIfRequired(key);
    }
    EXPECT_EQ(second->received.size(), 3U);
    EXPECT_EQ(third->received.size(), 3U);
    EXPECT_EQ(service->getConfig(L"b")->getValue(), L"2");
}

TEST_F(ConfigServicePropagation, ABatchIsFiredUnderNewNamesThatWereSetMeanwhile) {
    const auto observer = observe(L"new");
    const auto former = observe(L"old");
    announce(L"old", L"1", true);
    service->setupConfigKeyAliases({{L"old", L"new"}});
    announce(L"new", L"2", true);
    service->FireIfRequired(L"old");
    EXPECT_EQ(observer->received.size(), 3U);
    EXPECT_TRUE(former->received.empty());
}

} // namespace
} // namespace ZelUnified
