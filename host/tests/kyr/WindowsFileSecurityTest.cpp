#include "windows/FileSecurity.h"

#include <kyr/StandardStreams.h>
#include <kyr/StringUtils.h>

#include <PrivateFiles.h>
#include <TemporaryProfile.h>
#include <gtest/gtest.h>

// The others need the system's header.
// clang-format off
#include <windows.h>
#include <sddl.h>
// clang-format on

#include <string>

namespace {

using KyrCoreUtils::FileAccess;
using KyrCoreUtils::StandardStreams;
using zel::platform::FileSecurity;

/// Returns the descriptor of the system's text form of an owner and a list.
PSECURITY_DESCRIPTOR makeDescriptor(const std::wstring& text) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    EXPECT_TRUE(
        ::ConvertStringSecurityDescriptorToSecurityDescriptorW(text.c_str(), SDDL_REVISION_1, &descriptor, nullptr));
    return descriptor;
}

/// Returns what the owner and the list in this text allow.
FileAccess accessOf(const std::wstring& text) {
    return FileSecurity::take(makeDescriptor(text)).describe();
}

bool belongsToAnotherUser(const std::wstring& text) {
    return FileSecurity::take(makeDescriptor(text)).belongsToAnotherUser();
}

/// Returns what a list with one entry for the system allows, after its type and flags were replaced.
FileAccess accessOfEntry(BYTE type, BYTE flags) {
    const auto descriptor = makeDescriptor(L"O:SYD:P(A;;FR;;;SY)");
    BOOL isPresent = FALSE;
    BOOL isDefault = FALSE;
    PACL list = nullptr;
    void* entry = nullptr;
    EXPECT_TRUE(::GetSecurityDescriptorDacl(descriptor, &isPresent, &list, &isDefault));
    EXPECT_TRUE(::GetAce(list, 0, &entry));
    static_cast<ACE_HEADER*>(entry)->AceType = type;
    static_cast<ACE_HEADER*>(entry)->AceFlags = flags;
    return FileSecurity::take(descriptor).describe();
}

/// Redirects the standard output of the process to a file while it exists.
class OutputToFile {
public:
    explicit OutputToFile(const std::filesystem::path& path)
        : file(::CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                             nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {
        ::SetStdHandle(STD_OUTPUT_HANDLE, file);
    }
    ~OutputToFile() {
        ::SetStdHandle(STD_OUTPUT_HANDLE, before);
        ::CloseHandle(file);
    }
    OutputToFile(const OutputToFile&) = delete;
    OutputToFile& operator=(const OutputToFile&) = delete;

private:
    const HANDLE before = ::GetStdHandle(STD_OUTPUT_HANDLE);
    const HANDLE file;
};

const std::wstring someUser = L"S-1-5-21-1-2-3-1234";
const std::wstring otherUser = L"S-1-5-21-1-2-3-1235";

} // namespace

TEST(WindowsFileSecurity, TheOwnerTheSystemAndTheAdministratorsAreNotOtherUsers) {
    const auto access = accessOf(L"O:" + someUser + L"D:P(A;;FA;;;" + someUser +
                                 L")(A;;FA;;;SY)(A;;FA;;;BA)(A;;FA;;;S-1-3-4)(A;;FA;;;"
                                 L"S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464)");
    EXPECT_EQ(access.owner, FileAccess::Owner::Other);
    EXPECT_FALSE(access.writableByEverybody);
    EXPECT_FALSE(access.writableByOthers);
    EXPECT_FALSE(access.usableByOthers);
}

TEST(WindowsFileSecurity, TheSystemAndTheAdministratorsAreRecognisedAsOwners) {
    for (const auto* const owner :
         {L"O:SY", L"O:BA", L"O:S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464"}) {
        EXPECT_EQ(accessOf(owner + std::wstring(L"D:P(A;;FA;;;SY)")).owner, FileAccess::Owner::Administrator);
    }
    EXPECT_EQ(accessOf(L"O:BUD:P(A;;FA;;;SY)").owner, FileAccess::Owner::Other);
    EXPECT_EQ(accessOf(L"O:" + someUser + L"D:P").ownerName, "S-1-5-21-1-2-3-1234");
}

TEST(WindowsFileSecurity, TheUserIsTheOwnerOfHisFolder) {
    const testing_host::TemporaryProfile profile;
    std::wstring name(256, L'\0');
    auto size = static_cast<DWORD>(name.size());
    ASSERT_TRUE(::GetUserNameW(name.data(), &size));
    name.resize(size - 1); // the size includes the terminator
    const auto access = FileAccess::read(profile.root().string());
    ASSERT_TRUE(access);
    EXPECT_EQ(access->owner, FileAccess::Owner::Self);
    EXPECT_EQ(access->ownerName, KyrCoreUtils::toString(name));
}

TEST(WindowsFileSecurity, RightsOfAnotherUserAreNotRightsOfEverybody) {
    const auto reading = accessOf(L"O:SYD:P(A;;FR;;;" + otherUser + L")");
    EXPECT_FALSE(reading.writableByOthers);
    EXPECT_TRUE(reading.usableByOthers);
    const auto writing = accessOf(L"O:SYD:P(A;;FW;;;" + otherUser + L")");
    EXPECT_FALSE(writing.writableByEverybody);
    EXPECT_TRUE(writing.writableByOthers);
    EXPECT_TRUE(writing.usableByOthers);
}

TEST(WindowsFileSecurity, GroupsOfAllUsersAreEverybody) {
    for (const auto* const group :
         {L"WD", L"AU", L"BU", L"IU", L"BG", L"AN", L"NU", L"S-1-2-0", L"S-1-2-1", L"S-1-5-13", L"S-1-5-14",
          L"S-1-5-15", L"S-1-5-113", L"S-1-5-64-10", L"S-1-5-32-554", L"S-1-5-21-1-2-3-513", L"S-1-5-21-1-2-3-514"}) {
        const std::wstring start = L"O:SYD:P(A;;";
        EXPECT_TRUE(accessOf(start + L"FW;;;" + group + L")").writableByEverybody) << group;
        EXPECT_TRUE(accessOf(start + L"SD;;;" + group + L")").writableByEverybody) << group;
        EXPECT_TRUE(accessOf(start + L"WD;;;" + group + L")").writableByEverybody) << group;
        EXPECT_FALSE(accessOf(start + L"FR;;;" + group + L")").writableByEverybody) << group;
        EXPECT_TRUE(accessOf(start + L"FR;;;" + group + L")").usableByOthers) << group;
    }
}

TEST(WindowsFileSecurity, AttributesAreWritten) {
    for (const auto* const right : {L"0x100", L"0x10"}) { // FILE_WRITE_ATTRIBUTES, FILE_WRITE_EA
        EXPECT_TRUE(accessOf(std::wstring(L"O:SYD:P(A;;") + right + L";;;WD)").writableByEverybody);
    }
}

TEST(WindowsFileSecurity, AllowingEntriesOfOtherFormsAreFullAccessForEverybody) {
    for (const int type :
         {ACCESS_ALLOWED_COMPOUND_ACE_TYPE, ACCESS_ALLOWED_OBJECT_ACE_TYPE, ACCESS_ALLOWED_CALLBACK_OBJECT_ACE_TYPE}) {
        EXPECT_TRUE(accessOfEntry(static_cast<BYTE>(type), 0).writableByEverybody) << type;
        EXPECT_FALSE(accessOfEntry(static_cast<BYTE>(type), INHERIT_ONLY_ACE).usableByOthers) << type;
    }
    for (const int type : {ACCESS_ALLOWED_ACE_TYPE, ACCESS_ALLOWED_CALLBACK_ACE_TYPE, ACCESS_DENIED_OBJECT_ACE_TYPE}) {
        EXPECT_FALSE(accessOfEntry(static_cast<BYTE>(type), 0).usableByOthers) << type;
    }
}

TEST(WindowsFileSecurity, AnotherUserIsTheOwnerUnlessTheFileSystemHasNone) {
    EXPECT_TRUE(belongsToAnotherUser(L"O:" + someUser + L"D:P"));
    EXPECT_TRUE(belongsToAnotherUser(L"D:P"));
    EXPECT_FALSE(belongsToAnotherUser(L"O:SYD:P"));
    EXPECT_FALSE(belongsToAnotherUser(L"O:BAD:P"));
    EXPECT_FALSE(belongsToAnotherUser(L"O:WD"));
}

TEST(WindowsFileSecurity, EntriesForWhatIsCreatedInAFolderAllowNothingOnTheFolder) {
    EXPECT_FALSE(accessOf(L"O:SYD:P(A;OICIIO;FA;;;WD)").usableByOthers);
    EXPECT_TRUE(accessOf(L"O:SYD:P(A;OICI;FA;;;WD)").writableByEverybody);
}

TEST(WindowsFileSecurity, AnEntryThatDeniesAllowsNothing) {
    EXPECT_FALSE(accessOf(L"O:SYD:P(D;;FA;;;WD)").usableByOthers);
}

TEST(WindowsFileSecurity, WithoutAListEverythingIsAllowedToEverybody) {
    EXPECT_TRUE(accessOf(L"O:SY").writableByEverybody);
    EXPECT_FALSE(accessOf(L"O:SYD:P").usableByOthers) << "an empty list allows nothing";
}

TEST(WindowsFileSecurity, WithoutAnOwnerEverythingIsAllowedToEverybody) {
    for (const auto& access : {accessOf(L"D:P(A;;FA;;;SY)"), FileSecurity::take(nullptr).describe()}) {
        EXPECT_EQ(access.owner, FileAccess::Owner::Other);
        EXPECT_EQ(access.ownerName, "");
        EXPECT_TRUE(access.writableByEverybody);
        EXPECT_TRUE(access.writableByOthers);
        EXPECT_TRUE(access.usableByOthers);
    }
}

TEST(WindowsFileSecurity, OnlyAFileThatDoesNotExistHasNoAccess) {
    const testing_host::TemporaryProfile profile;
    EXPECT_FALSE(FileAccess::read((profile.root() / "absent" / "file").string()));
    const auto access = FileAccess::read("NUL"); // a device, whose list cannot be read
    ASSERT_TRUE(access);
    EXPECT_EQ(access->owner, FileAccess::Owner::Other);
    EXPECT_TRUE(access->writableByEverybody);
}

TEST(WindowsFileSecurity, StandardOutputIsPrivateIfOthersCannotReadItsFile) {
    const testing_host::TemporaryProfile profile;
    const auto path = profile.root() / "output";
    testing_host::writeFile(path, "");
    testing_host::makePrivate(path);
    const OutputToFile output(path);
    EXPECT_TRUE(StandardStreams::isPrivateFile(StandardStreams::Stream::Output));
    testing_host::letEverybodyRead(path);
    EXPECT_FALSE(StandardStreams::isPrivateFile(StandardStreams::Stream::Output));
}
