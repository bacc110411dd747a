#include "LogRecorder.h"
#include "RegistryReading.h"
#include "TemporaryProfile.h"

#include <registry/RegistryFiles.h>

#include <PrivateFiles.h>
#include <gmock/gmock.h>

#include <chrono>
#include <thread>

namespace {

using namespace registry_reading;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing_host::LogRecorder;
using testing_host::readFile;
using testing_host::writeFile;

const std::string header = "Windows Registry Editor Version 5.00\r\n\r\n";

class FileRegistryTest : public testing::Test {
protected:
    void writeAdministrator(const std::string& name, const std::string& lines) {
        writeFile(administrator / "HKEY_CURRENT_USER" / name, header + lines);
    }
    void writeMachine(const std::string& name, const std::string& lines) {
        writeFile(administrator / "HKEY_LOCAL_MACHINE" / name, header + lines);
    }
    void writeUser(const std::string& name, const std::string& lines) { writeFile(user / name, header + lines); }

    RegistryResult remove(const std::wstring& path, HKEY root = HKEY_CURRENT_USER) {
        return registry->RegDeleteKeyW(root, path.c_str());
    }

    testing_host::TemporaryProfile profile;
    const std::filesystem::path administrator = profile.root() / "etc";
    const std::filesystem::path user = profile.data() / "registry";
    const std::shared_ptr<Registry> registry = makeFileRegistry({administrator.string(), {}});
};

TEST_F(FileRegistryTest, WithoutFilesBothRootsAreEmpty) {
    EXPECT_TRUE(hasKey(*registry, L""));
    EXPECT_THAT(Key(*registry, HKEY_CURRENT_USER, L"").getSubkeys(), IsEmpty());
    EXPECT_FALSE(hasKey(*registry, L"Software", HKEY_LOCAL_MACHINE));
}

TEST_F(FileRegistryTest, TheUsersValuesOverrideTheAdministrators) {
    writeAdministrator("z.reg", "[HKCU\\K]\r\n\"a\"=\"admin\"\r\n\"b\"=\"admin\"\r\n");
    writeUser("a.reg", "[HKCU\\K]\r\n\"A\"=\"user\"\r\n\"c\"=\"user\"\r\n");
    EXPECT_THAT(Key(*registry, HKEY_CURRENT_USER, L"K").getValues(),
                ElementsAre(makeTextValue(L"a", L"user"), makeTextValue(L"b", L"admin"), makeTextValue(L"c", L"user")));
}

TEST_F(FileRegistryTest, WithoutTheUsersLayerOnlyTheAdministratorsValuesCount) {
    writeAdministrator("a.reg", "[HKCU\\K]\r\n\"a\"=\"admin\"\r\n");
    writeUser("z.reg", "[HKCU\\K]\r\n\"a\"=\"user\"\r\n[HKCU\\L]\r\n\"a\"=\"user\"\r\n");
    const auto ofAdministrator = makeFileRegistry({.administrator = administrator.string(), .readsUserFiles = false});
    EXPECT_EQ(textOf(*ofAdministrator, L"K", L"a"), L"admin");
    EXPECT_FALSE(hasKey(*ofAdministrator, L"L"));
}

TEST_F(FileRegistryTest, AFileWhoseTimeMovesBackIsReadAgain) {
    writeAdministrator("a.reg", "[HKCU\\K]\r\n\"a\"=\"first one\"\r\n");
    EXPECT_EQ(textOf(*registry, L"K", L"a"), L"first one");
    writeAdministrator("a.reg", "[HKCU\\K]\r\n\"a\"=\"other one\"\r\n");
    const auto file = administrator / "HKEY_CURRENT_USER" / "a.reg";
    std::filesystem::last_write_time(file, std::filesystem::last_write_time(file) - std::chrono::hours(24));
    EXPECT_EQ(textOf(*registry, L"K", L"a"), L"other one");
}

TEST_F(FileRegistryTest, OfSeveralFilesInAFolderTheLastByNameWins) {
    writeAdministrator("20-b.reg", "[HKCU\\K]\r\n\"a\"=\"second\"\r\n");
    writeAdministrator("10-z.reg", "[HKCU\\K]\r\n\"a\"=\"first\"\r\n");
    EXPECT_EQ(textOf(*registry, L"K", L"a"), L"second");
}

TEST_F(FileRegistryTest, ALaterFileDeletesValuesAndKeysOfAnEarlierOne) {
    writeAdministrator("1.reg", "[HKCU\\K]\r\n\"a\"=\"1\"\r\n\"b\"=\"2\"\r\n\"c\"=\"3\"\r\n[HKCU\\K\\Sub\\Leaf]\r\n");
    writeAdministrator("2.reg", "[HKCU\\K]\r\n\"B\"=-\r\n\"absent\"=-\r\n[-HKCU\\K\\sub]\r\n[-HKCU\\Absent\\X]\r\n");
    const Key key(*registry, HKEY_CURRENT_USER, L"K");
    EXPECT_THAT(key.getValues(), ElementsAre(makeTextValue(L"a", L"1"), makeTextValue(L"c", L"3")));
    EXPECT_THAT(key.getSubkeys(), IsEmpty());
}

TEST_F(FileRegistryTest, AValueThatIsDeletedAndSetAgainIsListedLast) {
    writeAdministrator("1.reg", "[HKCU\\K]\r\n\"a\"=\"1\"\r\n\"b\"=\"2\"\r\n\"a\"=-\r\n\"a\"=\"3\"\r\n");
    EXPECT_THAT(Key(*registry, HKEY_CURRENT_USER, L"K").getValues(),
                ElementsAre(makeTextValue(L"b", L"2"), makeTextValue(L"a", L"3")));
}

TEST_F(FileRegistryTest, EachFolderAcceptsOnlySectionsOfItsRoot) {
    writeAdministrator("a.reg", "[HKLM\\Wrong]\r\n[HKCU\\Right]\r\n");
    writeMachine("a.reg", "[HKCU\\Wrong]\r\n[HKLM\\Right]\r\n");
    writeUser("a.reg", "[HKLM\\Wrong]\r\n[HKCU\\Right too]\r\n");
    LogRecorder log;
    EXPECT_THAT(Key(*registry, HKEY_CURRENT_USER, L"").getSubkeys(), ElementsAre(L"Right", L"Right too"));
    EXPECT_THAT(Key(*registry, HKEY_LOCAL_MACHINE, L"").getSubkeys(), ElementsAre(L"Right"));
    EXPECT_THAT(log.getRecords(), SizeIs(3));
    EXPECT_TRUE(
        log.mentions((administrator / "HKEY_CURRENT_USER" / "a.reg").string() + ":3: refused: a key of another root"));
}

TEST_F(FileRegistryTest, OnlyVisibleFilesOfTheFolderItselfWithTheExtensionAreRead) {
    writeUser("yes.reg", "[HKCU\\Yes]\r\n");
    writeUser("UPPER.REG", "[HKCU\\Upper]\r\n");
    writeUser(".hidden.reg", "[HKCU\\Hidden]\r\n");
    writeUser("no.reg.bak", "[HKCU\\Backup]\r\n");
    writeUser(".reg", "[HKCU\\Bare]\r\n");
    writeUser("below/deep.reg", "[HKCU\\Deep]\r\n");
    std::filesystem::create_directory(user / "folder.reg");
    EXPECT_THAT(Key(*registry, HKEY_CURRENT_USER, L"").getSubkeys(), ElementsAre(L"Upper", L"Yes"));
}

TEST_F(FileRegistryTest, ARejectedLineIsLoggedAndTheOthersAreUsed) {
    writeUser("bad.reg", "[HKCU\\K]\r\n\"a\"=\"1\"\r\n\"secret\"=swordfish\r\n\"b\"=\"2\"\r\nmore rubbish\r\n");
    writeUser("good.reg", "[HKCU\\K]\r\n\"c\"=\"3\"\r\n");
    LogRecorder log;
    EXPECT_EQ(textOf(*registry, L"K", L"a"), L"1");
    EXPECT_EQ(textOf(*registry, L"K", L"b"), L"2");
    EXPECT_EQ(textOf(*registry, L"K", L"c"), L"3");
    const auto records = log.getRecords();
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].level, ZelLogLevel::Warning);
    EXPECT_THAT(records[0].text,
                HasSubstr((user / "bad.reg").string() + ":5: refused: a kind of value that is not known"));
    EXPECT_THAT(records[1].text,
                HasSubstr((user / "bad.reg").string() + ":7: refused: neither a key nor a value nor a comment"));
    EXPECT_FALSE(log.mentions("swordfish"));
}

TEST_F(FileRegistryTest, TheNumberOfLoggedRejectionsOfAFileIsLimited) {
    std::string lines;
    for (int i = 0; i < 1000; ++i) {
        lines += "rubbish\r\n";
    }
    writeUser("bad.reg", lines);
    LogRecorder log;
    textOf(*registry, L"K", L"a");
    EXPECT_THAT(log.getRecords(), SizeIs(51));
    EXPECT_TRUE(log.mentions((user / "bad.reg").string() + ": 950 further lines are refused"));
}

TEST_F(FileRegistryTest, AChangedFileIsReadAgainUnlessAKeyIsOpen) {
    writeUser("a.reg", "[HKCU\\K]\r\n\"a\"=\"1\"\r\n");
    {
        const Key key(*registry, HKEY_CURRENT_USER, L"K");
        writeUser("a.reg", "[HKCU\\K]\r\n\"a\"=\"changed\"\r\n");
        EXPECT_EQ(textOf(*registry, L"K", L"a"), L"1");
    }
    EXPECT_EQ(textOf(*registry, L"K", L"a"), L"changed");
    writeUser("b.reg", "[HKCU\\K]\r\n\"a\"=\"from another\"\r\n");
    EXPECT_EQ(textOf(*registry, L"K", L"a"), L"from another");
    std::filesystem::remove(user / "b.reg");
    EXPECT_EQ(textOf(*registry, L"K", L"a"), L"changed");
}

TEST_F(FileRegistryTest, DeletingAUsersKeyRemovesItsSectionsFromAllHisFiles) {
    writeUser("a.reg",
              "; mine\r\n[HKCU\\K]\r\n\"a\"=\"1\"\r\n[HKCU\\Other]\r\n\"o\"=\"2\"\r\n[HKCU\\k]\r\n\"b\"=\"3\"\r\n");
    writeUser("b.reg", "[HKCU\\K]\r\n\"c\"=\"4\"\r\n");
    writeUser("c.reg", "[HKCU\\Third]\r\n");
    const auto untouched = std::filesystem::last_write_time(user / "c.reg");
    EXPECT_EQ(remove(L"K"), RegistryResult::Success);
    EXPECT_FALSE(hasKey(*registry, L"K"));
    EXPECT_EQ(readFile(user / "a.reg"), header + "; mine\r\n[HKCU\\Other]\r\n\"o\"=\"2\"\r\n");
    EXPECT_EQ(readFile(user / "b.reg"), header);
    EXPECT_EQ(std::filesystem::last_write_time(user / "c.reg"), untouched);
    EXPECT_FALSE(hasKey(*makeFileRegistry({administrator.string(), {}}), L"K"));
}

TEST_F(FileRegistryTest, ARewrittenFileHasMode0600AndNoTemporaryFileRemains) {
    writeUser("a.reg", "[HKCU\\K]\r\n\"a\"=\"1\"\r\n");
    ASSERT_EQ(remove(L"K"), RegistryResult::Success);
    EXPECT_TRUE(testing_host::isPrivate(user / "a.reg"));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(user), std::filesystem::directory_iterator()), 1);
}

TEST_F(FileRegistryTest, AKeyThatHasSubkeysIsNotDeletedAndNothingIsWritten) {
    const std::string lines = "[HKCU\\K]\r\n\"a\"=\"1\"\r\n[HKCU\\K\\Sub]\r\n";
    writeUser("a.reg", lines);
    EXPECT_EQ(remove(L"K"), RegistryResult::AccessDenied);
    EXPECT_EQ(readFile(user / "a.reg"), header + lines);
    EXPECT_EQ(remove(L"Absent"), RegistryResult::NotFound);
    EXPECT_EQ(remove(L"K\\Sub"), RegistryResult::Success);
    EXPECT_EQ(remove(L"K"), RegistryResult::Success);
}

TEST_F(FileRegistryTest, AParentWithoutASectionOfItsOwnCanBeDeletedAfterItsSubkey) {
    writeUser("a.reg", "[HKCU\\K\\Sub]\r\n\"a\"=\"1\"\r\n");
    ASSERT_EQ(remove(L"K\\Sub"), RegistryResult::Success);
    EXPECT_TRUE(hasKey(*registry, L"K"));
    EXPECT_EQ(remove(L"K"), RegistryResult::Success);
    EXPECT_FALSE(hasKey(*registry, L"K"));
}

TEST_F(FileRegistryTest, DeletingAnAdministratorsKeyIsDeniedAndRemovesTheUsersCopy) {
    const std::string policy = "[HKCU\\K]\r\n\"a\"=\"admin\"\r\n[HKCU\\K\\Sub]\r\n\"s\"=\"admin\"\r\n";
    writeAdministrator("policy.reg", policy);
    writeUser("a.reg",
              "[HKCU\\K]\r\n\"a\"=\"user\"\r\n[HKCU\\K\\Sub]\r\n\"s\"=\"user\"\r\n[HKCU\\K\\Zebra]\r\n[HKCU\\KK]\r\n");
    ASSERT_EQ(textOf(*registry, L"K", L"a"), L"user");
    EXPECT_EQ(remove(L"k"), RegistryResult::AccessDenied);
    EXPECT_EQ(textOf(*registry, L"K", L"a"), L"admin");
    EXPECT_EQ(textOf(*registry, L"K\\Sub", L"s"), L"admin");
    EXPECT_FALSE(hasKey(*registry, L"K\\Zebra"));
    EXPECT_TRUE(hasKey(*registry, L"KK"));
    EXPECT_EQ(readFile(user / "a.reg"), header + "[HKCU\\KK]\r\n");
    EXPECT_EQ(readFile(administrator / "HKEY_CURRENT_USER/policy.reg"), header + policy);
}

TEST_F(FileRegistryTest, AParentOfAnAdministratorsKeyIsNotDeleted) {
    writeAdministrator("policy.reg", "[HKCU\\K\\Sub]\r\n\"s\"=\"admin\"\r\n");
    EXPECT_EQ(remove(L"K"), RegistryResult::AccessDenied);
    EXPECT_EQ(remove(L"K\\Sub"), RegistryResult::AccessDenied);
    EXPECT_EQ(textOf(*registry, L"K\\Sub", L"s"), L"admin");
}

TEST_F(FileRegistryTest, ARepeatedRefusalDoesNotReadTheFilesAgain) {
    writeAdministrator("policy.reg", "[HKCU\\K]\r\nrubbish\r\n");
    LogRecorder log;
    EXPECT_EQ(remove(L"K"), RegistryResult::AccessDenied);
    EXPECT_EQ(remove(L"K"), RegistryResult::AccessDenied);
    EXPECT_EQ(log.getRecords().size(), 1U);
}

TEST_F(FileRegistryTest, RootsAndTheMachinesKeysAreNeverDeleted) {
    writeMachine("a.reg", "[HKLM\\K]\r\n");
    writeUser("a.reg", "[HKCU\\K]\r\n");
    EXPECT_EQ(remove(L""), RegistryResult::AccessDenied);
    EXPECT_EQ(remove(L"K", HKEY_LOCAL_MACHINE), RegistryResult::AccessDenied);
    EXPECT_EQ(remove(L"Absent", HKEY_LOCAL_MACHINE), RegistryResult::NotFound);
    EXPECT_EQ(registry->RegDeleteKeyW(HKEY{}, L"K"), RegistryResult::InvalidHandle);
    EXPECT_EQ(registry->RegDeleteKeyW(HKEY_CURRENT_USER, nullptr), RegistryResult::AccessDenied);
    EXPECT_TRUE(hasKey(*registry, L"K"));
    EXPECT_TRUE(hasKey(*registry, L"K", HKEY_LOCAL_MACHINE));
}

TEST_F(FileRegistryTest, AKeyIsNotDeletedIfItsFileCannotBeRewritten) {
    // The longest possible file name, so no temporary file with a longer name can exist beside it.
    const auto name = std::string(251, 'n') + ".reg";
    writeUser(name, "[HKCU\\K]\r\n\"a\"=\"1\"\r\n");
    EXPECT_EQ(remove(L"K"), RegistryResult::AccessDenied);
    EXPECT_EQ(textOf(*registry, L"K", L"a"), L"1");
    EXPECT_EQ(readFile(user / name), header + "[HKCU\\K]\r\n\"a\"=\"1\"\r\n");
}

TEST_F(FileRegistryTest, DeletingRelativeToAnOpenKeyRewritesTheFile) {
    writeUser("a.reg", "[HKCU\\K\\Sub]\r\n[HKCU\\Sub]\r\n");
    const Key key(*registry, HKEY_CURRENT_USER, L"K");
    EXPECT_EQ(registry->RegDeleteKeyW(key.get(), L"Sub"), RegistryResult::Success);
    EXPECT_EQ(readFile(user / "a.reg"), header + "[HKCU\\Sub]\r\n");
    EXPECT_THAT(key.getSubkeys(), IsEmpty());
}

TEST_F(FileRegistryTest, ReadsTheGivenUserFolder) {
    writeFile(profile.root() / "elsewhere/a.reg", header + "[HKCU\\There]\r\n");
    writeUser("a.reg", "[HKCU\\Here]\r\n");
    const auto other = makeFileRegistry({administrator.string(), (profile.root() / "elsewhere").string()});
    EXPECT_TRUE(hasKey(*other, L"There"));
    EXPECT_FALSE(hasKey(*other, L"Here"));
}

TEST_F(FileRegistryTest, TheMailClientIsAddedToRootsWithoutOne) {
    writeAdministrator("a.reg", "[HKCU\\Software\\Clients\\Mail]\r\n@=\"Configured\"\r\n");
    std::wstring machine = L"Found";
    const auto completed = makeFileRegistry(
        {administrator.string(), {}}, [&](HKEY root) { return root == HKEY_LOCAL_MACHINE ? machine : L"Unused"; });
    EXPECT_EQ(textOf(*completed, L"SOFTWARE\\Clients\\Mail", L""), L"Configured");
    EXPECT_EQ(textOf(*completed, L"SOFTWARE\\Clients\\Mail", L"", HKEY_LOCAL_MACHINE), L"Found");
    machine = L"Another";
    EXPECT_EQ(textOf(*completed, L"SOFTWARE\\Clients\\Mail", L"", HKEY_LOCAL_MACHINE), L"Another");
    machine.clear();
    EXPECT_FALSE(hasKey(*completed, L"SOFTWARE\\Clients\\Mail", HKEY_LOCAL_MACHINE));
}

TEST_F(FileRegistryTest, AMailClientThatWasAddedIsNotDeleted) {
    const auto completed = makeFileRegistry({administrator.string(), {}}, [](HKEY) { return L"Found"; });
    EXPECT_EQ(completed->RegDeleteKeyW(HKEY_CURRENT_USER, L"SOFTWARE\\Clients\\Mail"), RegistryResult::AccessDenied);
    EXPECT_EQ(textOf(*completed, L"SOFTWARE\\Clients\\Mail", L""), L"Found");
}

TEST_F(FileRegistryTest, SeveralThreadsReadWhileKeysAreDeleted) {
    std::string lines;
    for (int i = 0; i < 20; ++i) {
        lines += "[HKCU\\K\\k" + std::to_string(i) + "]\r\n\"a\"=\"1\"\r\n";
    }
    writeUser("a.reg", lines + "[HKCU\\Stays]\r\n\"a\"=\"1\"\r\n");
    std::thread reader([this] {
        for (int i = 0; i < 100; ++i) {
            EXPECT_EQ(textOf(*registry, L"Stays", L"a"), L"1");
        }
    });
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(remove(L"K\\k" + std::to_wstring(i)), RegistryResult::Success);
    }
    reader.join();
    EXPECT_EQ(readFile(user / "a.reg"), header + "[HKCU\\Stays]\r\n\"a\"=\"1\"\r\n");
}

TEST_F(FileRegistryTest, AHundredThousandValuesAreRead) {
    std::string lines = "[HKCU\\K]\r\n";
    for (int i = 0; i < 100000; ++i) {
        lines += "\"Key" + std::to_string(i) + "\"=dword:" + std::to_string(i % 10) + "\r\n";
    }
    writeAdministrator("big.reg", lines);
    const Key key(*registry, HKEY_CURRENT_USER, L"K");
    std::array<wchar_t, 260> name{};
    std::array<std::uint8_t, 16> data{};
    std::uint32_t nameLength = 0;
    std::uint32_t dataLength = 0;
    std::uint32_t type = 0;
    std::uint32_t count = 0;
    while (registry->RegEnumValueW(key.get(), count, name, nameLength, type, data, dataLength) ==
           RegistryResult::Success) {
        ++count;
    }
    EXPECT_EQ(count, 100000U);
}

} // namespace
