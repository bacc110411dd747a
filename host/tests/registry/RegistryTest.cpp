#include "RegistryReading.h"

#include <registry/Registry.h>
#include <registry/RegistryHive.h>

#include <TemporaryProfile.h>
#include <gtest/gtest.h>

namespace {

using namespace registry_reading;

TEST(ProcessRegistry, IsThePlatformsRegistryUntilItIsOverridden) {
    const testing_host::TemporaryProfile profile;
    const auto platform = getRegistry();
    ASSERT_NE(platform, nullptr);
    EXPECT_EQ(getRegistry(), platform);
    const auto own = std::make_shared<RegistryHive>();
    overrideRegistry(own);
    EXPECT_EQ(getRegistry(), own);
    overrideRegistry(nullptr);
    EXPECT_EQ(getRegistry(), platform);
}

TEST(ProcessRegistry, ReadsTheUsersFilesOfTheCurrentProfile) {
    const testing_host::TemporaryProfile profile;
    testing_host::writeFile(profile.data() / "registry/a.reg", "REGEDIT4\n[HKCU\\Lumora test\\K]\n\"a\"=\"1\"\n");
    EXPECT_EQ(textOf(*getRegistry(), L"Lumora test\\K", L"a"), L"1");
}

} // namespace
