#include "FaultInjectingFileLayer.h"
#include "InMemoryRegistry.h"
#include "LogRecorder.h"
#include "TemporaryProfile.h"

#include <registry/RegistryFiles.h>

#include <RegistryConfigStore.h>
#include <gmock/gmock.h>

#include <algorithm>

namespace {

using namespace ZelUnified;
using namespace zel::registry;
using testing::ElementsAre;
using testing::IsEmpty;
using testing_host::InMemoryRegistry;
using testing_host::LogRecorder;

constexpr const char* loggerName = "ConfigService-RegistryConfigStore";
const std::wstring policies = L"Software\\Policies\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC";

/// A path in the writable buffer that the deletion uses.
struct Path {
    explicit Path(const std::wstring& text) { *std::ranges::copy(text, buffer).out = L'\0'; }
    RegistryConfigStore::PathBuffer buffer;
};

class RegistryDeletionTest : public testing::Test {
protected:
    bool remove(const std::wstring& text) {
        Path path(text);
        const bool result = RegistryConfigStore::regDelnodeRecurse(HKEY_CURRENT_USER, path.buffer);
        EXPECT_EQ(std::wstring(path.buffer), text);
        return result;
    }
    bool has(const std::wstring& path) { return registry->hasKey(HKEY_CURRENT_USER, path); }
    void make(const std::wstring& path) { registry->makeKey(HKEY_CURRENT_USER, path); }

    InMemoryRegistry::Installed registry;
    LogRecorder log;
};

TEST_F(RegistryDeletionTest, DeletesAKeyWithoutSubkeysImmediately) {
    make(L"K\\Leaf");
    EXPECT_TRUE(remove(L"K\\Leaf"));
    EXPECT_FALSE(has(L"K\\Leaf"));
    EXPECT_TRUE(has(L"K"));
    EXPECT_THAT(registry->getOpened(), IsEmpty());
    const auto records = log.getRecords();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].logger, loggerName);
    EXPECT_EQ(records[0].level, ZelLogLevel::Info);
    EXPECT_EQ(records[0].function, "ZelUnified::RegistryConfigStore::regDelnodeRecurse");
    EXPECT_EQ(records[0].text, "Successfully deleted the key: K\\Leaf");
}

TEST_F(RegistryDeletionTest, AMissingKeyIsAWarningAndASuccess) {
    EXPECT_TRUE(remove(L"Absent"));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Warning), ElementsAre("Key not found: Absent"));
    EXPECT_EQ(log.getRecords().size(), 1U);
}

TEST_F(RegistryDeletionTest, AKeyThatCannotBeOpenedIsAWarningAndAFailure) {
    make(L"K\\Sub");
    registry->failOpening(L"K", RegistryResult::AccessDenied);
    EXPECT_FALSE(remove(L"K"));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Warning), ElementsAre("Error opening key: K"));
    EXPECT_TRUE(has(L"K\\Sub"));
}

TEST_F(RegistryDeletionTest, DeletesSubkeysBeforeTheirKey) {
    make(L"K\\A\\X");
    make(L"K\\B");
    EXPECT_TRUE(remove(L"K"));
    EXPECT_FALSE(has(L"K"));
    EXPECT_THAT(log.getTexts(loggerName),
                ElementsAre("Successfully deleted the key: K\\A\\X", "Successfully deleted the key: K\\A",
                            "Successfully deleted the key: K\\B", "Successfully deleted the key: K"));
    EXPECT_EQ(registry->getOpenKeyCount(), 0U);
}

TEST_F(RegistryDeletionTest, KeysAreOpenedForReading) {
    make(L"K\\A");
    remove(L"K");
    ASSERT_EQ(registry->getOpened().size(), 1U);
    EXPECT_EQ(registry->getOpened()[0].access, 131097U);
    EXPECT_EQ(registry->getOpened()[0].options, 0U);
}

TEST_F(RegistryDeletionTest, AddsNoSeparatorToAPathThatEndsWithOne) {
    make(L"K\\A");
    EXPECT_TRUE(remove(L"K\\"));
    EXPECT_THAT(registry->getDeletions(), ElementsAre(L"K\\", L"K\\A", L"K\\"));
}

TEST_F(RegistryDeletionTest, ASubkeyThatCannotBeDeletedEndsTheLoopAndTheKeyIsTriedOnceMore) {
    make(L"K\\A");
    make(L"K\\B");
    registry->failDeleting(L"K\\A", RegistryResult::AccessDenied);
    EXPECT_FALSE(remove(L"K"));
    EXPECT_TRUE(has(L"K\\B"));
    EXPECT_THAT(registry->getDeletions(), ElementsAre(L"K", L"K\\A", L"K\\A", L"K"));
    EXPECT_EQ(registry->getOpenKeyCount(), 0U);
    EXPECT_THAT(log.getRecords(), IsEmpty());
}

TEST_F(RegistryDeletionTest, ASubkeyThatRemainsAfterASuccessfulDeletionEndsTheLoop) {
    make(L"K\\A");
    registry->failDeleting(L"K\\A", RegistryResult::Success);
    EXPECT_FALSE(remove(L"K"));
    EXPECT_THAT(registry->getDeletions(), ElementsAre(L"K", L"K\\A", L"K"));
}

TEST_F(RegistryDeletionTest, APathLongerThanTheBufferIsTruncated) {
    const std::wstring parent(500, L'p');
    make(parent + L"\\" + std::wstring(100, L'c'));
    Path path(parent);
    EXPECT_FALSE(RegistryConfigStore::regDelnodeRecurse(HKEY_CURRENT_USER, path.buffer));
    EXPECT_EQ(std::wstring(path.buffer), parent);
    EXPECT_THAT(registry->getDeletions(), ElementsAre(parent, parent + L"\\" + std::wstring(18, L'c'), parent));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Warning).size(), 1U);
    EXPECT_EQ(registry->getOpenKeyCount(), 0U);
}

TEST_F(RegistryDeletionTest, ATruncatedPathMayBeThatOfAnotherSubkey) {
    const std::wstring parent(500, L'p');
    make(parent + L"\\" + std::wstring(18, L'c'));
    make(parent + L"\\" + std::wstring(19, L'c'));
    EXPECT_FALSE(remove(parent));
    EXPECT_FALSE(has(parent + L"\\" + std::wstring(18, L'c')));
    EXPECT_TRUE(has(parent + L"\\" + std::wstring(19, L'c')));
}

TEST_F(RegistryDeletionTest, WithoutRoomForTheNameOfASubkeyTheDeletionFails) {
    for (const std::size_t length : {517U, 518U, 519U}) {
        const std::wstring parent(length, L'p');
        make(parent + L"\\child");
        EXPECT_FALSE(remove(parent)) << length;
        EXPECT_TRUE(has(parent + L"\\child"));
    }
}

TEST_F(RegistryDeletionTest, RemoveRegistrySettingsDeletesOnlyTheUsersPolicyKey) {
    registry->setText(HKEY_CURRENT_USER, policies, L"Key", L"value");
    registry->setText(HKEY_CURRENT_USER, policies + L"\\Sub", L"Key", L"value");
    make(policies + L"Too");
    registry->makeKey(HKEY_LOCAL_MACHINE, policies);
    RegistryConfigStore::removeRegistrySettings();
    EXPECT_FALSE(has(policies));
    EXPECT_TRUE(has(policies + L"Too"));
    EXPECT_TRUE(registry->hasKey(HKEY_LOCAL_MACHINE, policies));
    EXPECT_EQ(registry->getDeletions().front(), policies);
}

TEST_F(RegistryDeletionTest, RemoveRegistrySettingsWithoutAPolicyKeyLogsThatItIsNotFound) {
    RegistryConfigStore::removeRegistrySettings();
    EXPECT_THAT(
        log.getTexts(loggerName),
        ElementsAre("Key not found: Software\\Policies\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC"));
}

TEST_F(RegistryDeletionTest, OnFilesTheUsersPolicyIsDeletedAndTheAdministratorsIsKept) {
    const testing_host::TemporaryProfile profile;
    const std::string key = "[HKEY_CURRENT_USER\\Software\\Policies\\Ventrix Systems, Inc.\\Unified Communications\\"
                            "VentrixUC";
    const std::string policy = "REGEDIT4\n" + key + "]\n\"Key\"=\"admin\"\n" + key + "\\Sub]\n\"InSub\"=\"admin\"\n";
    const auto policyFile = profile.root() / "etc/HKEY_CURRENT_USER/policy.reg";
    testing_host::writeFile(policyFile, policy);
    testing_host::writeFile(profile.data() / "registry/own.reg",
                            "REGEDIT4\n" + key + "]\n\"Key\"=\"user\"\n" + key + "\\Zebra]\n\"Own\"=\"user\"\n");
    overrideRegistry(makeFileRegistry({(profile.root() / "etc").string(), {}}));
    RegistryConfigStore::removeRegistrySettings();
    EXPECT_EQ(testing_host::readFile(policyFile), policy);
    EXPECT_EQ(testing_host::readFile(profile.data() / "registry/own.reg"), "REGEDIT4\n");
    RegistryConfigStore store(nullptr, "RegistryConfigStore", 30,
                              "Policies\\Ventrix Systems, Inc.\\Unified "
                              "Communications\\VentrixUC");
    std::wstring value;
    EXPECT_TRUE(store.getValue(L"Key", value));
    EXPECT_EQ(value, L"admin");
    EXPECT_THAT(store.getKeys(), ElementsAre(L"InSub", L"Key"));
}

TEST_F(RegistryDeletionTest, OnFilesAPolicyThatOnlyTheUserHasIsDeletedCompletely) {
    const testing_host::TemporaryProfile profile;
    const std::string key = "[HKEY_CURRENT_USER\\Software\\Policies\\Ventrix Systems, Inc.\\Unified Communications\\"
                            "VentrixUC";
    testing_host::writeFile(profile.data() / "registry/own.reg",
                            "REGEDIT4\n" + key + "\\A\\B]\n\"a\"=\"1\"\n" + key + "\\C]\n\"c\"=\"2\"\n");
    overrideRegistry(makeFileRegistry({(profile.root() / "none").string(), {}}));
    RegistryConfigStore::removeRegistrySettings();
    EXPECT_EQ(testing_host::readFile(profile.data() / "registry/own.reg"), "REGEDIT4\n");
    EXPECT_EQ(log.getTexts(ZelLogLevel::Info).size(), 4U);
    EXPECT_THAT(log.getTexts(ZelLogLevel::Warning), IsEmpty());
}

TEST_F(RegistryDeletionTest, OnFilesAPolicyWithManySubkeysIsDeletedInOneOrTwoRewrites) {
    const testing_host::TemporaryProfile profile;
    std::string lines = "REGEDIT4\n";
    for (int i = 0; i < 300; ++i) {
        lines += "[HKEY_CURRENT_USER\\Software\\Policies\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC\\" +
                 std::to_string(i) + "]\n\"Key\"=\"value\"\n";
    }
    const auto file = profile.data() / "registry/own.reg";
    testing_host::writeFile(file, lines);
    testing_host::FaultInjectingFileLayer layer;
    overrideRegistry(makeFileRegistry({(profile.root() / "none").string(), {}}, {}, &layer));
    RegistryConfigStore::removeRegistrySettings();
    EXPECT_EQ(testing_host::readFile(file), "REGEDIT4\n");
    EXPECT_EQ(log.getTexts(ZelLogLevel::Info).size(), 301U);
    EXPECT_LE(std::ranges::count(layer.getCalls(), testing_host::FaultInjectingFileLayer::Operation::Rename), 2);
    overrideRegistry(nullptr);
}

} // namespace
