#include "PlatformRegistryKey.h"
#include "RecordingFactory.h"
#include "services/impl/CalendarIntegrationTypeCheck.h"
#include "services/impl/ConfigValueImpl.h"

#include <gtest/gtest.h>

#include <memory>

using namespace ZelUnified;

TEST(CalendarIntegrationPlatform, TheUsersMailClientOfThePlatformsRegistryIsUsed) {
    testing_host::PlatformRegistryKey client(L"SOFTWARE\\Clients\\Mail");
    const auto factory = std::make_shared<testing_host::RecordingFactory>();
    ZelLogger& logger = ZelLogger_getLogger("ConfigService-ConfigServiceImpl");
    const auto detect = [&] {
        const auto record = std::make_shared<ConfigValueImpl>(factory, L"calendarintegrationtype");
        CalendarIntegrationTypeCheck::detectCalendarIntegrationType(logger, record);
        return record->getValue();
    };
    EXPECT_EQ(detect(), L"0");
    client.setText(L"", L"", L"Microsoft Outlook");
    EXPECT_EQ(detect(), L"1");
    client.setText(L"", L"", L"IBM Notes");
    EXPECT_EQ(detect(), L"2");
    factory->Destroy();
}
