#include "ServiceFixture.h"

#include <LogRecorder.h>

namespace ZelUnified {
namespace {

using configservice_test::serviceLogger;

const std::string head = "\n*********************** Master Configuration Settings *********************\n"
                         "\nOriginalValue is the value set by the administrator\n"
                         "\nValue is the value retrieved by searching the config sources by priority\n"
                         "\nDefined Values\n--------------\n";
const std::string middle = "\nUnDefined Values\n---------------\n";
const std::string tail = "\n*************************** End Settings ***************************\n";

/// The settings report in the log.
struct ConfigServiceReport : configservice_test::ServiceFixture {
    std::string report() {
        testing_host::LogRecorder log;
        service->logConfig();
        const auto records = log.getRecords();
        EXPECT_EQ(records.size(), 1U);
        if (records.empty()) {
            return {};
        }
        EXPECT_EQ(records.front().logger, serviceLogger);
        EXPECT_EQ(records.front().level, ZelLogLevel::Info);
        return records.front().text;
    }
};

TEST_F(ConfigServiceReport, WithoutRecordsContainsOnlyTheHeadings) {
    EXPECT_EQ(report(), head + middle + tail);
}

TEST_F(ConfigServiceReport, ListsDefinedAndUndefinedRecordsEachInKeyOrder) {
    service->OnConfigChanged(L"beta", L"v", L"ov", true, true, L"vs", L"ovs", false);
    service->OnConfigChanged(L"Alpha", L"1", L"", false, true, L"s", L"", false);
    service->getConfig(L"zed");
    service->OnConfigChanged(L"Gone", L"g", L"og", false, false, L"gs", L"ogs", false);
    EXPECT_EQ(report(),
              head + "Key: Alpha -  Value - [1] valueStoreName [s] | OriginalValue [] originalValueStoreName []\n" +
                  "Key: beta -  Value - [v] valueStoreName [vs] | OriginalValue [ov] originalValueStoreName [ovs]\n" +
                  middle +
                  "Key: Gone -  Value - [g] valueStoreName [g] | OriginalValue [og] originalValueStoreName [ogs]\n" +
                  "Key: zed -  Value - [] valueStoreName [] | OriginalValue [] originalValueStoreName []\n" + tail);
}

TEST_F(ConfigServiceReport, RecordsCreatedBetweenTwoReportsAreListedInKeyOrder) {
    service->OnConfigChanged(L"m", L"1", L"", false, true, L"s", L"", false);
    service->getConfig(L"y");
    report();
    service->OnConfigChanged(L"z", L"2", L"", false, true, L"s", L"", false);
    service->OnConfigChanged(L"A", L"3", L"", false, true, L"s", L"", false);
    service->getConfig(L"X");
    EXPECT_EQ(report(),
              head + "Key: A -  Value - [3] valueStoreName [s] | OriginalValue [] originalValueStoreName []\n" +
                  "Key: m -  Value - [1] valueStoreName [s] | OriginalValue [] originalValueStoreName []\n" +
                  "Key: z -  Value - [2] valueStoreName [s] | OriginalValue [] originalValueStoreName []\n" + middle +
                  "Key: X -  Value - [] valueStoreName [] | OriginalValue [] originalValueStoreName []\n" +
                  "Key: y -  Value - [] valueStoreName [] | OriginalValue [] originalValueStoreName []\n" + tail);
}

TEST_F(ConfigServiceReport, HidesBothValuesOfADefinedSensitiveKeyEvenIfEmpty) {
    service->updateSensitiveKeyList(L"SECRET");
    service->updateSensitiveKeyList(L"void");
    service->OnConfigChanged(L"secret", L"planted", L"planted too", true, true, L"vs", L"ovs", false);
    service->OnConfigChanged(L"void", L"", L"", true, true, L"vs", L"ovs", false);
    EXPECT_EQ(report(), head +
                            "Key: secret -  Value - [VALUE_HIDDEN] valueStoreName [vs] | OriginalValue [VALUE_HIDDEN] "
                            "originalValueStoreName [ovs]\n"
                            "Key: void -  Value - [VALUE_HIDDEN] valueStoreName [vs] | OriginalValue [VALUE_HIDDEN] "
                            "originalValueStoreName [ovs]\n" +
                            middle + tail);
}

TEST_F(ConfigServiceReport, AnUndefinedSensitiveKeyShowsItsValueInTheValuePosition) {
    service->updateSensitiveKeyList(L"secret");
    service->OnConfigChanged(L"secret", L"raw", L"original", false, false, L"vs", L"ovs", false);
    EXPECT_EQ(report(), head + middle +
                            "Key: secret -  Value - [raw] valueStoreName [VALUE_HIDDEN] | OriginalValue [VALUE_HIDDEN] "
                            "originalValueStoreName [ovs]\n" +
                            tail);
}

TEST_F(ConfigServiceReport, ContainsTheValueThatFipsModeForces) {
    announce(L"Telephony_P2P_Enabled", L"true");
    zel::common::FipsUtils::overrideFipsMode(true);
    EXPECT_EQ(report(), head +
                            "Key: Telephony_P2P_Enabled -  Value - [false] valueStoreName [Store] | OriginalValue [] "
                            "originalValueStoreName []\n" +
                            middle + tail);
}

TEST_F(ConfigServiceReport, DoesNotMaskPersonalData) {
    announce(L"Mail", L"jane.doe@example.com");
    EXPECT_THAT(report(), testing::HasSubstr("[jane.doe@example.com]"));
}

TEST_F(ConfigServiceReport, DoesNotInterpretValuesAsAFormat) {
    announce(L"k", L"{} %s {0}");
    EXPECT_THAT(report(), testing::HasSubstr("[{} %s {0}]"));
}

TEST_F(ConfigServiceReport, CreatesNoRecord) {
    report();
    EXPECT_TRUE(service->getAllConfig()->empty());
}

} // namespace
} // namespace ZelUnified
