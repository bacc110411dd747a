#include "LogRecorder.h"
#include "PlatformRegistryKey.h"
#include "TemporaryProfile.h"

#include <registry/Registry.h>

#include <ConfigKeys.h>
#include <RegistryConfigStore.h>
#include <gmock/gmock.h>

#include <algorithm>

namespace {

using namespace ZelUnified;
using testing::ElementsAre;
using testing::IsEmpty;
using testing_host::LogRecorder;
using testing_host::PlatformRegistryKey;
using testing_host::readFile;

/// The store over the platform's own registry.
class RegistryConfigStorePlatformTest : public testing::Test {
protected:
    RegistryConfigStore makeStore() { return {nullptr, "RegistryConfigStore", 30, "LumoraTest\\Policies"}; }
    std::wstring read(const std::wstring& name) {
        std::wstring value;
        EXPECT_TRUE(makeStore().getValue(name, value));
        return value;
    }
    bool remove(const std::wstring& path) {
        RegistryConfigStore::PathBuffer buffer{};
        std::ranges::copy(path, buffer);
        return RegistryConfigStore::regDelnodeRecurse(zel::registry::HKEY_CURRENT_USER, buffer);
    }

    const testing_host::TemporaryProfile profile;
    PlatformRegistryKey key{L"Software\\LumoraTest\\Policies"};
};

} // namespace

TEST_F(RegistryConfigStorePlatformTest, ReadsTextsNumbersAndListsOfTheWholeTree) {
    key.setText(L"", L"Text", L"v\u00e4lue");
    key.setNumber(L"", L"Number", 4294967295U);
    key.setRaw(L"\\Sub", L"List", zel::registry::REG_MULTI_SZ, {'a', 0, 0, 0, 'b', 0, 0, 0, 0, 0});
    key.setRaw(L"\\Sub", L"Path", zel::registry::REG_EXPAND_SZ, {'%', 0, 'A', 0, '%', 0, 0, 0});
    key.setRaw(L"", L"Bytes", zel::registry::REG_BINARY, {'x', 0});
    EXPECT_EQ(read(L"text"), L"v\u00e4lue");
    EXPECT_EQ(read(L"Number"), L"4294967295");
    EXPECT_EQ(read(L"List"), L"a");
    EXPECT_EQ(read(L"Path"), L"%A%");
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"List", L"Number", L"Path", L"Text"));
}

TEST_F(RegistryConfigStorePlatformTest, KeepsCharactersOutsideTheFirstPlane) {
    key.setText(L"", L"K\U00010400y", L"\U0001F600");
    EXPECT_EQ(read(L"k\U00010428Y"), L"\U0001F600");
}

TEST_F(RegistryConfigStorePlatformTest, AMissingKeyGivesAnEmptyStore) {
    RegistryConfigStore store(nullptr, "RegistryConfigStore", 30, "LumoraTest\\Absent");
    EXPECT_THAT(store.getKeys(), IsEmpty());
}

TEST_F(RegistryConfigStorePlatformTest, WritesTheTextCopyWithoutPasswords) {
    key.setText(L"", L"BDIConnectionPassword", L"secret");
    key.setText(L"", L"Key", L"value");
    makeStore();
    EXPECT_EQ(readFile(profile.config() / "RegistryConfigStore.txt"),
              "BDIConnectionPassword: VALUE_HIDDEN\nKey: value\n");
}

TEST_F(RegistryConfigStorePlatformTest, DeletesATree) {
    key.setText(L"\\A\\B", L"Key", L"value");
    key.setText(L"\\C", L"Key", L"value");
    EXPECT_TRUE(remove(key.getPath()));
    EXPECT_FALSE(PlatformRegistryKey::exists(key.getPath()));
    EXPECT_TRUE(PlatformRegistryKey::exists(L"Software\\LumoraTest"));
}

TEST_F(RegistryConfigStorePlatformTest, DeletingAMissingKeySucceedsWithAWarning) {
    const LogRecorder log;
    EXPECT_TRUE(remove(L"Software\\LumoraTest\\Absent"));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Warning), ElementsAre("Key not found: Software\\LumoraTest\\Absent"));
}

TEST_F(RegistryConfigStorePlatformTest, TheDataResetDeletesThePoliciesOfTheUser) {
    const std::string policies(ConfigKeys::policyRegistryPath);
    PlatformRegistryKey policy(L"Software\\" + std::wstring(policies.begin(), policies.end()));
    policy.setText(L"\\Sub", L"Key", L"value");
    RegistryConfigStore::removeRegistrySettings();
    EXPECT_FALSE(PlatformRegistryKey::exists(policy.getPath()));
}
