#include "ConfigStoreManagerFixture.h"

namespace ZelUnified {

using testing::ElementsAre;
using testing::IsEmpty;

/// Tests the announcements of one key for each combination of stores that contain it.
class ConfigStoreManagerAnnouncements : public ConfigStoreManagerFixture {};

namespace {

/// One row of the table: the stores that contain a key, and the announcement.
struct AnnouncedCase {
    const char* name;
    std::vector<std::shared_ptr<FakeConfigStore> (*)()> stores;
    std::wstring key;
    std::vector<std::string> announced;
};

class AnnouncedValues : public ConfigStoreManagerFixture, public testing::WithParamInterface<AnnouncedCase> {};

using Stores = std::vector<std::shared_ptr<FakeConfigStore> (*)()>;

} // namespace

TEST_P(AnnouncedValues, EqualTheTableForEveryCombinationOfStores) {
    for (const auto make : GetParam().stores) {
        given(make());
    }
    // An update announces the given keys of the old version. This is the simplest way to have one key announced.
    given(makeReadOnlyStore("Probe", 1000));
    manager.updateExistingConfigStore(makeReadOnlyStore("Probe", 1000), {GetParam().key});
    EXPECT_EQ(observer.announcements, GetParam().announced);
}

INSTANTIATE_TEST_SUITE_P(
    ConfigStoreManager, AnnouncedValues,
    testing::Values(AnnouncedCase{"OnlyTheUser",
                                  Stores{[] {
                                      return makeWritableStore("L", 20, {{L"K", L"u"}});
                                  }},
                                  L"K",
                                  {"K: u [L] |  [] overridden"}},
                    AnnouncedCase{"OnlyTheUserUnderANewName",
                                  Stores{[] {
                                      return makeWritableStore("L", 20, {{L"TFTPPrimaryServer", L"u"}});
                                  }},
                                  L"TFTPPrimaryServer",
                                  {"TFTPPrimaryServer: u [L] |  []"}},
                    AnnouncedCase{"UserAboveAdministrator",
                                  Stores{[] {
                                             return makeWritableStore("L", 20, {{L"K", L"u"}});
                                         },
                                         [] {
                                             return makeReadOnlyStore("R", 33, {{L"K", L"a"}});
                                         }},
                                  L"K",
                                  {"K: u [L] | a [R] overridden"}},
                    AnnouncedCase{"AdministratorAboveUser",
                                  Stores{[] {
                                             return makeReadOnlyStore("R", 10, {{L"K", L"a"}});
                                         },
                                         [] {
                                             return makeWritableStore("L", 20, {{L"K", L"u"}});
                                         }},
                                  L"K",
                                  {"K: a [R] | a [R]"}},
                    AnnouncedCase{"UserUnderTheNewNameAdministratorUnderTheOld",
                                  Stores{[] {
                                             return makeWritableStore("L", 20, {{L"TFTPPrimaryServer", L"u"}});
                                         },
                                         [] {
                                             return makeReadOnlyStore("R", 33, {{L"TftpServer1", L"a"}});
                                         }},
                                  L"TFTPPrimaryServer",
                                  {"TFTPPrimaryServer: u [L] | a [R]"}},
                    AnnouncedCase{"OldNameWhileTheNewOneIsHeld",
                                  Stores{[] {
                                             return makeWritableStore("L", 20, {{L"TftpServer1", L"u"}});
                                         },
                                         [] {
                                             return makeReadOnlyStore("R", 33, {{L"TFTPPrimaryServer", L"a"}});
                                         }},
                                  L"TftpServer1",
                                  {}},
                    AnnouncedCase{"OldNameAlone",
                                  Stores{[] {
                                      return makeWritableStore("L", 20, {{L"TftpServer1", L"u"}});
                                  }},
                                  L"TftpServer1",
                                  {"TFTPPrimaryServer: u [L] |  [] overridden"}},
                    AnnouncedCase{"OldNameOfUserAndAdministrator",
                                  Stores{[] {
                                             return makeWritableStore("L", 20, {{L"TftpServer1", L"u"}});
                                         },
                                         [] {
                                             return makeReadOnlyStore("R", 33, {{L"TftpServer1", L"a"}});
                                         }},
                                  L"TftpServer1",
                                  {"TFTPPrimaryServer: u [L] | a [R] overridden"}},
                    AnnouncedCase{"Nobody", Stores{}, L"K", {"K:  [] |  [] undefined"}}),
    [](const auto& tested) { return tested.param.name; });

TEST_F(ConfigStoreManagerAnnouncements, OldAndNewNameAreAnnouncedInEveryCombinationOfStores) {
    const std::wstring oldName = L"TftpServer1";
    const std::wstring newName = L"TFTPPrimaryServer";
    struct Row {
        bool userOld, userNew, adminOld, adminNew;
        std::string announced;
    };
    const std::vector<Row> rows{
        {false, false, false, false, " [] |  [] undefined"},
        {false, false, true, false, "ro [R] | ro [R]"},
        {false, false, false, true, "rn [R] | rn [R]"},
        {false, false, true, true, "rn [R] | rn [R]"},
        {true, false, false, false, "lo [L] |  [] overridden"},
        {true, false, true, false, "lo [L] | ro [R] overridden"},
        {true, false, false, true, "rn [R] | rn [R]"},
        {true, false, true, true, "rn [R] | rn [R]"},
        // A new name that only the user's store contains overrides nothing unless the old name is there too.
        {false, true, false, false, "ln [L] |  []"},
        {false, true, true, false, "ln [L] | ro [R]"},
        {false, true, false, true, "ln [L] | rn [R] overridden"},
        {false, true, true, true, "ln [L] | rn [R] overridden"},
        {true, true, false, false, "ln [L] |  [] overridden"},
        {true, true, true, false, "ln [L] | ro [R] overridden"},
        {true, true, false, true, "ln [L] | rn [R] overridden"},
        {true, true, true, true, "ln [L] | rn [R] overridden"},
    };
    const auto user = given(makeWritableStore("L", 20));
    const auto admin = given(makeReadOnlyStore("R", 33));
    given(makeReadOnlyStore("Probe", 1000));
    const auto announcementsOf = [&](const std::wstring& key) {
        forget();
        manager.updateExistingConfigStore(makeReadOnlyStore("Probe", 1000), {key});
        return observer.take();
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << "user old " << row.userOld << " new " << row.userNew << ", admin old "
                                        << row.adminOld << " new " << row.adminNew);
        user->values.clear();
        admin->values.clear();
        const auto hold = [](FakeConfigStore& store, bool held, const std::wstring& key, const wchar_t* value) {
            if (held) {
                store.values[key] = value;
            }
        };
        hold(*user, row.userOld, oldName, L"lo");
        hold(*user, row.userNew, newName, L"ln");
        hold(*admin, row.adminOld, oldName, L"ro");
        hold(*admin, row.adminNew, newName, L"rn");
        const auto expected = "TFTPPrimaryServer: " + row.announced;
        EXPECT_THAT(announcementsOf(newName), ElementsAre(expected));
        if (row.userNew || row.adminNew) {
            EXPECT_THAT(announcementsOf(oldName), IsEmpty());
        } else {
            EXPECT_THAT(announcementsOf(oldName), ElementsAre(expected));
        }
    }
}

TEST_F(ConfigStoreManagerAnnouncements, AStoreThatChangesBetweenTheTwoReadingsAnnouncesTheAdministratorsValue) {
    const auto user = given(makeWritableStore("L", 20, {{L"TftpServer1", L"old"}}));
    const auto admin = given(makeReadOnlyStore("R", 33));
    given(makeReadOnlyStore("Probe", 1000));
    int readings = 0;
    user->beforeReading = [&] {
        // The first two readings are those of the effective value, under the new name and then under the old name.
        if (++readings == 3) {
            user->values[L"TFTPPrimaryServer"] = L"new";
            admin->values[L"TFTPPrimaryServer"] = L"admin";
        }
    };
    manager.updateExistingConfigStore(makeReadOnlyStore("Probe", 1000), {L"TFTPPrimaryServer"});
    EXPECT_THAT(observer.announcements, ElementsAre("TFTPPrimaryServer: admin [L] | admin [R]"));
}

} // namespace ZelUnified
