#include "ServiceFixture.h"

#include <InMemoryRegistry.h>
#include <LogRecorder.h>

#include <latch>
#include <list>
#include <thread>
#include <vector>

namespace ZelUnified {
namespace {

using configservice_test::serviceLogger;
using testing::ElementsAre;
using testing::IsEmpty;

/// Tests how the service finds, creates and lists its records.
struct ConfigServiceLookup : configservice_test::ServiceFixture {
    std::vector<std::wstring> listKeys() {
        std::vector<std::wstring> keys;
        const auto all = service->getAllConfig();
        for (const auto& record : *all) {
            keys.push_back(record->getKey());
        }
        return keys;
    }
    std::shared_ptr<ConfigValueImpl> makeRecord(const std::wstring& key) {
        return std::dynamic_pointer_cast<ConfigValueImpl>(service->getConfig(key));
    }
    std::vector<std::string> takeLines() {
        auto lines = log.getTexts(serviceLogger);
        log.clear();
        return lines;
    }

    void setMailClient(std::wstring_view name) {
        registry->setText(zel::registry::HKEY_CURRENT_USER, L"SOFTWARE\\Clients\\Mail", L"", name);
    }

    testing_host::InMemoryRegistry::Installed registry;
    testing_host::LogRecorder log;
};

TEST_F(ConfigServiceLookup, AnUnknownKeyCreatesAnUndefinedRecordThatIsListed) {
    const auto record = service->getConfig(L"Unknown");
    ASSERT_TRUE(record);
    EXPECT_EQ(record->getKey(), L"Unknown");
    EXPECT_FALSE(record->getisDefined());
    EXPECT_THAT(listKeys(), ElementsAre(L"Unknown"));
    EXPECT_THAT(takeLines(), IsEmpty());
}

TEST_F(ConfigServiceLookup, TheEmptyKeyHasARecord) {
    const auto record = service->getConfig(L"");
    EXPECT_EQ(service->getConfig(L""), record);
    EXPECT_THAT(listKeys(), ElementsAre(L""));
}

TEST_F(ConfigServiceLookup, SpellingsOfOneKeyShareTheRecordOfTheFirst) {
    const auto record = service->getConfig(L"Phone_Mode");
    EXPECT_EQ(service->getConfig(L"PHONE_MODE"), record);
    announce(L"phone_mode", L"v");
    EXPECT_EQ(record->getValue(), L"v");
    EXPECT_THAT(listKeys(), ElementsAre(L"Phone_Mode"));
}

TEST_F(ConfigServiceLookup, AReadTouchesNoStore) {
    const auto featureSet = fileFeatureSet(); // a strict mock
    service->getConfig(L"k");
    service->getAllConfig();
    service->FireIfRequired(L"other");
}

TEST_F(ConfigServiceLookup, ListsASnapshotOfAllRecordsInCaseInsensitiveOrder) {
    announce(L"beta", L"1");
    service->getConfig(L"_x");
    service->getConfig(L"ALPHA");
    announce(L"Gamma", L"2");
    EXPECT_THAT(listKeys(), ElementsAre(L"_x", L"ALPHA", L"beta", L"Gamma"));
    const auto before = service->getAllConfig();
    service->getConfig(L"new");
    announce(L"beta", L"changed");
    EXPECT_EQ(before->size(), 4U);
    EXPECT_EQ((*std::next(before->begin(), 2))->getValue(), L"changed");
}

TEST_F(ConfigServiceLookup, RecordsCreatedBetweenTwoListingsAreListedInKeyOrder) {
    service->getConfig(L"m");
    announce(L"C", L"1");
    EXPECT_THAT(listKeys(), ElementsAre(L"C", L"m"));
    announce(L"z", L"2");
    service->getConfig(L"D");
    service->getConfig(L"M");
    service->getConfig(L"a");
    EXPECT_THAT(listKeys(), ElementsAre(L"a", L"C", L"D", L"m", L"z"));
    service->getConfig(L"B");
    EXPECT_THAT(listKeys(), ElementsAre(L"a", L"B", L"C", L"D", L"m", L"z"));
}

TEST_F(ConfigServiceLookup, ARecordWhoseKeyChangesIsStillFoundByTheKeyOfItsCreation) {
    const auto record = makeRecord(L"k");
    record->setKey(L"renamed");
    EXPECT_EQ(service->getAllConfig()->size(), 1U);
    EXPECT_EQ(service->getConfig(L"K"), record);
    EXPECT_NE(service->getConfig(L"renamed"), record);
    EXPECT_EQ(service->getAllConfig()->size(), 2U);
}

TEST_F(ConfigServiceLookup, ARecordSetToTheKeyOfAnotherIsStillListedAndFound) {
    const auto first = makeRecord(L"a");
    auto second = makeRecord(L"b");
    second->setKey(L"a");
    EXPECT_THAT(*service->getAllConfig(), ElementsAre(first, second));
    const auto* const address = second.get();
    second.reset(); // only the service holds it now
    EXPECT_EQ(service->getConfig(L"b").get(), address);
    EXPECT_EQ(service->getConfig(L"a"), first);
}

TEST_F(ConfigServiceLookup, AListingIsOrderedByCreationKeysEvenIfARecordsKeyChanges) {
    const auto a = makeRecord(L"a");
    const auto b = makeRecord(L"b");
    const auto c = makeRecord(L"c");
    a->setKey(L"z");
    EXPECT_THAT(*service->getAllConfig(), ElementsAre(a, b, c));
    c->setKey(L"0");
    EXPECT_THAT(*service->getAllConfig(), ElementsAre(a, b, c));
}

TEST_F(ConfigServiceLookup, SeveralThreadsMayListConcurrentlyWithoutChanges) {
    constexpr int keys = 300;
    constexpr int listers = 4;
    for (int round = 0; round < 20; ++round) {
        service->reset();
        for (int i = 0; i < keys; ++i) {
            service->getConfig(L"k" + std::to_wstring(i));
        }
        std::vector<std::list<std::shared_ptr<ConfigValue>>> listings(listers);
        std::vector<std::thread> threads;
        std::latch ready(listers);
        for (auto& listing : listings) {
            threads.emplace_back([&] {
                ready.arrive_and_wait();
                listing = *service->getAllConfig();
            });
        }
        for (auto& thread : threads) {
            thread.join();
        }
        for (const auto& listing : listings) {
            ASSERT_EQ(listing.size(), std::size_t{keys});
            ASSERT_EQ(listing, *service->getAllConfig());
        }
    }
}

TEST_F(ConfigServiceLookup, AnOldNameFindsTheRecordOfItsNewNameAndLogsOneLine) {
    announce(L"TftpServer1", L"tftp.example.com");
    service->setupConfigKeyAliases({{L"TFTPPrimaryServer", L"TftpServer1"}});
    const auto record = service->getConfig(L"tftpprimaryserver");
    EXPECT_EQ(record->getKey(), L"TftpServer1");
    ASSERT_EQ(log.getRecords().size(), 1U);
    const auto line = log.getRecords().front();
    EXPECT_EQ(line.logger, serviceLogger);
    EXPECT_EQ(line.level, ZelLogLevel::Info);
    EXPECT_EQ(line.function, "ZelUnified::ConfigServiceImpl::findConfig");
    EXPECT_EQ(line.text,
              "findConfig key : [tftpprimaryserver] is an alias for key : [TftpServer1] actual lookup done on "
              "this key - value : [tftp.example.com]");
}

TEST_F(ConfigServiceLookup, ALookupByTheNewNameLogsNothing) {
    service->setupConfigKeyAliases({{L"Old", L"New"}});
    announce(L"New", L"v");
    service->getConfig(L"New");
    EXPECT_THAT(takeLines(), IsEmpty());
}

TEST_F(ConfigServiceLookup, AnOldNameWithoutARecordCreatesTheRecordOfItsNewName) {
    service->setupConfigKeyAliases({{L"Old", L"New"}});
    const auto record = service->getConfig(L"Old");
    EXPECT_EQ(record->getKey(), L"New");
    EXPECT_FALSE(record->getisDefined());
    EXPECT_THAT(listKeys(), ElementsAre(L"New"));
    EXPECT_THAT(takeLines(), IsEmpty());
    EXPECT_EQ(service->getConfig(L"New"), record);
}

TEST_F(ConfigServiceLookup, ARecordOfTheOldNameIsFoundWhileTheNewNameHasNone) {
    const auto old = service->getConfig(L"Old");
    service->setupConfigKeyAliases({{L"Old", L"New"}});
    EXPECT_EQ(service->getConfig(L"Old"), old);
    EXPECT_THAT(takeLines(), IsEmpty());
    const auto target = service->getConfig(L"New");
    EXPECT_EQ(service->getConfig(L"Old"), target);
    EXPECT_EQ(takeLines().size(), 1U);
    EXPECT_THAT(listKeys(), ElementsAre(L"New", L"Old"));
}

TEST_F(ConfigServiceLookup, ANewTableOfOldNamesReplacesTheFirst) {
    service->setupConfigKeyAliases({{L"Old", L"New"}});
    service->setupConfigKeyAliases({{L"Older", L"New"}});
    EXPECT_EQ(service->getConfig(L"Old")->getKey(), L"Old");
    EXPECT_EQ(service->getConfig(L"Older")->getKey(), L"New");
}

TEST_F(ConfigServiceLookup, TheRequestedNameDecidesWhetherTheLineHidesTheValue) {
    announce(L"New", L"secret-text");
    service->setupConfigKeyAliases({{L"Old", L"New"}});
    service->updateSensitiveKeyList(L"OLD");
    EXPECT_EQ(service->getConfig(L"Old")->getValue(), L"secret-text");
    EXPECT_FALSE(log.mentions("secret-text"));
    EXPECT_THAT(takeLines(),
                ElementsAre("findConfig key : [Old] is an alias for key : [New] actual lookup done on this "
                            "key - value : [VALUE_HIDDEN]"));
}

TEST_F(ConfigServiceLookup, ASensitiveNewNameDoesNotHideTheValueRequestedByTheOldName) {
    announce(L"New", L"plain");
    service->setupConfigKeyAliases({{L"Old", L"New"}});
    service->updateSensitiveKeyList(L"New");
    service->getConfig(L"Old");
    EXPECT_THAT(takeLines(), ElementsAre(testing::EndsWith("- value : [plain]")));
}

TEST_F(ConfigServiceLookup, PersonalDataInTheLineIsMasked) {
    announce(L"New", L"jane.doe@example.com");
    service->setupConfigKeyAliases({{L"Old", L"New"}});
    service->getConfig(L"Old");
    EXPECT_FALSE(log.mentions("jane.doe"));
    EXPECT_THAT(takeLines(), ElementsAre(testing::HasSubstr("@example.com]")));
}

TEST_F(ConfigServiceLookup, TheFirstRequestOfTheCalendarKeyRunsItsCheckAndLaterOnesDoNot) {
    setMailClient(L"Microsoft Outlook");
    const auto record = service->getConfig(L"CalendarIntegrationType");
    EXPECT_EQ(record->getKey(), L"CalendarIntegrationType");
    EXPECT_EQ(record->getValue(), L"1");
    EXPECT_FALSE(record->getisDefined());
    setMailClient(L"IBM Notes");
    EXPECT_EQ(service->getConfig(L"CALENDARINTEGRATIONTYPE"), record);
    EXPECT_EQ(record->getValue(), L"1");
    EXPECT_EQ(registry->getOpened().size(), 1U);
    EXPECT_THAT(listKeys(), ElementsAre(L"CalendarIntegrationType"));
}

TEST_F(ConfigServiceLookup, AFiringOfTheCalendarKeyRunsItsCheckAndCallsNoObserver) {
    setMailClient(L"Lotus Notes");
    service->FireIfRequired(L"calendarintegrationtype");
    const auto observer = observe(L"calendarintegrationtype");
    service->FireIfRequired(L"calendarintegrationtype");
    EXPECT_EQ(service->getConfig(L"calendarintegrationtype")->getValue(), L"2");
    EXPECT_EQ(registry->getOpened().size(), 1U);
    EXPECT_THAT(observer->received, IsEmpty());
}

TEST_F(ConfigServiceLookup, AStoresValueOfTheCalendarKeyOverridesItsCheck) {
    setMailClient(L"Microsoft Outlook");
    announce(L"calendarintegrationtype", L"2");
    EXPECT_EQ(service->getConfig(L"calendarintegrationtype")->getValue(), L"2");
    EXPECT_EQ(registry->getOpened().size(), 1U);
}

TEST_F(ConfigServiceLookup, AnOldNameOfTheCalendarKeyFindsItsRecordOnTheFirstRequest) {
    setMailClient(L"Microsoft Outlook");
    service->setupConfigKeyAliases({{L"Old", L"calendarintegrationtype"}});
    EXPECT_EQ(service->getConfig(L"Old")->getKey(), L"calendarintegrationtype");
    EXPECT_THAT(takeLines(), ElementsAre("findConfig key : [Old] is an alias for key : [calendarintegrationtype] "
                                         "actual lookup done on this key - value : [1]"));
}

TEST_F(ConfigServiceLookup, InFipsModeALookupOverwritesAValueThatNamesTheFipsKey) {
    announce(L"Asked", L"TELEPHONY_p2p_enabled");
    announce(L"Listed", L"Telephony_P2P_Enabled");
    const auto observer = observe(L"Asked");
    zel::common::FipsUtils::overrideFipsMode(true);
    EXPECT_EQ(service->getConfig(L"Asked")->getValue(), L"false");
    const auto all = service->getAllConfig();
    EXPECT_EQ(all->back()->getValue(), L"false");
    service->FireIfRequired(L"Asked");
    EXPECT_THAT(observer->received, IsEmpty());
    zel::common::FipsUtils::overrideFipsMode(false);
    EXPECT_EQ(service->getConfig(L"Asked")->getValue(), L"false") << "the stored value itself is gone";
    EXPECT_EQ(service->getConfig(L"Listed")->getValue(), L"false");
}

TEST_F(ConfigServiceLookup, OutsideFipsModeAValueThatNamesTheFipsKeyIsKept) {
    announce(L"Asked", L"Telephony_P2P_Enabled");
    service->getAllConfig();
    EXPECT_EQ(service->getConfig(L"Asked")->getValue(), L"Telephony_P2P_Enabled");
}

TEST_F(ConfigServiceLookup, TheRecordOfTheFipsKeyKeepsItsStoredValue) {
    announce(L"Telephony_P2P_Enabled", L"true");
    const auto record = std::dynamic_pointer_cast<ConfigValueImpl>(service->getConfig(L"Telephony_P2P_Enabled"));
    ASSERT_TRUE(record);
    zel::common::FipsUtils::overrideFipsMode(true);
    service->getAllConfig();
    EXPECT_EQ(service->getConfig(L"telephony_p2p_enabled")->getValue(), L"false");
    EXPECT_EQ(record->ConfigValueBaseImpl::getValue(), L"true");
}

} // namespace
} // namespace ZelUnified
