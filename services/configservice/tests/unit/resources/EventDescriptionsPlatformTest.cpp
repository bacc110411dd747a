#include "PlatformResources.h"
#include "TemporaryProfile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

using testing_host::readPlatformResource;

TEST(EventDescriptionsPlatform, ThePlatformsCallsFindEveryDocumentInTheLibrary) {
    int found = 0;
    for (const auto& entry : std::filesystem::directory_iterator(RESOURCE_FOLDER)) {
        if (entry.path().extension() != ".XML") {
            continue;
        }
        ++found;
        EXPECT_EQ(readPlatformResource(SERVICE_LIBRARY, L"EVENTXML", entry.path().filename().wstring()),
                  testing_host::readFile(entry.path()))
            << entry.path();
    }
    EXPECT_EQ(found, 33);
}

TEST(EventDescriptionsPlatform, AnotherNameOrTypeIsNotFound) {
    EXPECT_EQ(readPlatformResource(SERVICE_LIBRARY, L"EVENTXML", L"ABSENT.XML"), std::nullopt);
    EXPECT_EQ(readPlatformResource(SERVICE_LIBRARY, L"XML", L"CONFIGSERVICEEVENTDESCRIPTIONS_EN-US.XML"), std::nullopt);
}
