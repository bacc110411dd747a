#include "services/impl/CalendarIntegrationTypeCheck.h"

#include "InMemoryRegistry.h"
#include "LogRecorder.h"
#include "RecordingFactory.h"
#include "services/impl/ConfigValueImpl.h"

#include <gmock/gmock.h>

namespace {

using namespace ZelUnified;
using namespace zel::registry;
using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing_host::LogRecorder;

const std::wstring mailClients = L"SOFTWARE\\Clients\\Mail";

class CalendarIntegrationTypeCheckTest : public testing::Test {
protected:
    ~CalendarIntegrationTypeCheckTest() override { factory->Destroy(); }

    void setClient(HKEY root, std::wstring_view name) { registry->setText(root, mailClients, L"", name); }

    std::wstring detect() {
        const auto record = std::make_shared<ConfigValueImpl>(factory, L"calendarintegrationtype");
        CalendarIntegrationTypeCheck::detectCalendarIntegrationType(logger, record);
        EXPECT_FALSE(record->getisDefined());
        EXPECT_EQ(record->getOriginalValue(), L"");
        return record->getValue();
    }

    ZelLogger& logger = ZelLogger_getLogger("ConfigService-ConfigServiceImpl");
    testing_host::InMemoryRegistry::Installed registry;
    LogRecorder log;
    const std::shared_ptr<testing_host::RecordingFactory> factory = std::make_shared<testing_host::RecordingFactory>();
};

TEST_F(CalendarIntegrationTypeCheckTest, OutlookIgnoringCaseIsOne) {
    setClient(HKEY_CURRENT_USER, L"MICROSOFT Outlook");
    EXPECT_EQ(detect(), L"1");
    EXPECT_THAT(log.getRecords(), IsEmpty());
}

TEST_F(CalendarIntegrationTypeCheckTest, BothNamesOfNotesAreTwo) {
    setClient(HKEY_CURRENT_USER, L"Lotus Notes");
    EXPECT_EQ(detect(), L"2");
    setClient(HKEY_CURRENT_USER, L"IBM Notes");
    EXPECT_EQ(detect(), L"2");
}

TEST_F(CalendarIntegrationTypeCheckTest, OnlyTheWholeNameMatches) {
    for (const auto* name : {L"Microsoft Outlook 2016", L"Outlook", L" Microsoft Outlook", L"Notes", L"M\u00e4iler"}) {
        setClient(HKEY_CURRENT_USER, name);
        EXPECT_EQ(detect(), L"0") << name;
    }
}

TEST_F(CalendarIntegrationTypeCheckTest, TheUsersClientOverridesTheMachines) {
    setClient(HKEY_CURRENT_USER, L"Some mailer");
    setClient(HKEY_LOCAL_MACHINE, L"Microsoft Outlook");
    EXPECT_EQ(detect(), L"0");
    ASSERT_EQ(registry->getOpened().size(), 1U);
    EXPECT_EQ(registry->getOpened()[0].root, HKEY_CURRENT_USER);
    EXPECT_EQ(registry->getOpened()[0].path, mailClients);
    EXPECT_EQ(registry->getOpened()[0].options, 0U);
    EXPECT_EQ(registry->getOpened()[0].access, 131097U);
}

TEST_F(CalendarIntegrationTypeCheckTest, AnEmptyClientOfTheUserFallsBackToTheMachinesWithoutALine) {
    setClient(HKEY_CURRENT_USER, L"");
    setClient(HKEY_LOCAL_MACHINE, L"IBM Notes");
    EXPECT_EQ(detect(), L"2");
    EXPECT_THAT(log.getRecords(), IsEmpty());
}

TEST_F(CalendarIntegrationTypeCheckTest, WithoutAKeyUnderEitherRootTheTypeIsZeroWithTwoErrors) {
    EXPECT_EQ(detect(), L"0");
    EXPECT_THAT(log.getTexts("ConfigService-ConfigServiceImpl"),
                ElementsAre("GetDefaultMailClientFromRegedit - RegOpenKeyEx returned error:2",
                            "GetDefaultMailClientFromRegedit - RegOpenKeyEx returned error:2"));
    EXPECT_THAT(log.getRecords(), Each(Field(&zel::logging::LogRecord::level, ZelLogLevel::Error)));
    EXPECT_THAT(log.getRecords(),
                Each(Field(&zel::logging::LogRecord::function,
                           "ZelUnified::CalendarIntegrationTypeCheck::GetDefaultMailClientFromRegedit")));
}

TEST_F(CalendarIntegrationTypeCheckTest, AKeyWithoutADefaultValueIsAnError) {
    registry->setText(HKEY_CURRENT_USER, mailClients, L"named", L"Microsoft Outlook");
    setClient(HKEY_LOCAL_MACHINE, L"Microsoft Outlook");
    EXPECT_EQ(detect(), L"1");
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error),
                ElementsAre("GetDefaultMailClientFromRegedit - RegQueryValueExA returned error:2"));
}

TEST_F(CalendarIntegrationTypeCheckTest, AFailedOpeningLogsItsCodeAndClosesTheHandle) {
    registry->failOpening(mailClients, RegistryResult::AccessDenied);
    EXPECT_EQ(CalendarIntegrationTypeCheck::GetDefaultMailClientFromRegedit(logger, HKEY_CURRENT_USER), "");
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error),
                ElementsAre("GetDefaultMailClientFromRegedit - RegOpenKeyEx returned error:5"));
    EXPECT_THAT(registry->getClosed(), ElementsAre(HKEY{}));
}

TEST_F(CalendarIntegrationTypeCheckTest, EveryKeyThatWasOpenedIsClosed) {
    setClient(HKEY_CURRENT_USER, L"");
    setClient(HKEY_LOCAL_MACHINE, L"x");
    detect();
    EXPECT_EQ(registry->getOpenKeyCount(), 0U);
    EXPECT_EQ(registry->getClosed().size(), 2U);
}

TEST_F(CalendarIntegrationTypeCheckTest, AValueOf260BytesWithoutATerminatorIsReadCompletely) {
    registry->setValue(HKEY_CURRENT_USER, mailClients, {L"", REG_BINARY, std::vector<std::uint8_t>(260, 'x')});
    EXPECT_EQ(CalendarIntegrationTypeCheck::GetDefaultMailClientFromRegedit(logger, HKEY_CURRENT_USER),
              std::string(260, 'x'));
}

TEST_F(CalendarIntegrationTypeCheckTest, AValueOfMoreThan260BytesIsAnError) {
    setClient(HKEY_CURRENT_USER, std::wstring(260, L'x'));
    EXPECT_EQ(CalendarIntegrationTypeCheck::GetDefaultMailClientFromRegedit(logger, HKEY_CURRENT_USER), "");
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error),
                ElementsAre("GetDefaultMailClientFromRegedit - RegQueryValueExA returned error:234"));
}

TEST_F(CalendarIntegrationTypeCheckTest, TheNameEndsAtItsFirstNullCharacter) {
    registry->setValue(HKEY_CURRENT_USER, mailClients, {L"", REG_MULTI_SZ, {'a', 0, 'b', 0, 0, 0, 'c', 0, 0, 0, 0, 0}});
    EXPECT_EQ(CalendarIntegrationTypeCheck::GetDefaultMailClientFromRegedit(logger, HKEY_CURRENT_USER), "ab");
}

TEST_F(CalendarIntegrationTypeCheckTest, SettingTheRecordFiresNothing) {
    setClient(HKEY_CURRENT_USER, L"Microsoft Outlook");
    const auto record = std::make_shared<ConfigValueImpl>(factory, L"calendarintegrationtype");
    int fired = 0;
    const auto connection = record->getConfigValueNotifiers()->getValueNotifier()->connect([&fired] { ++fired; });
    CalendarIntegrationTypeCheck::detectCalendarIntegrationType(logger, record);
    record->fireChanged();
    EXPECT_EQ(fired, 0);
    EXPECT_EQ(record->getValue(), L"1");
}

} // namespace
