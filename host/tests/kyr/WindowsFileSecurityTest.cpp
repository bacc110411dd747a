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

/// Returns what the system's text form of an owner and a list allows.
FileAccess accessOf(const std::wstring& text) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    EXPECT_TRUE(
        ::ConvertStringSecurityDescriptorToSecurityDescriptorW(text.c_str(), SDDL_REVISION_1, &descriptor, nullptr));
    const auto security = FileSecurity::take(descriptor);
    EXPECT_TRUE(security);
    return security ? security->describe() : FileAccess();
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
    for (const auto* const group : {L"WD", L"AU", L"BU", L"IU", L"BG", L"AN", L"NU"}) {
        const std::wstring start = L"O:SYD:P(A;;";
        EXPECT_TRUE(accessOf(start + L"FW;;;" + group + L")").writableByEverybody) << group;
        EXPECT_TRUE(accessOf(start + L"SD;;;" + group + L")").writableByEverybody) << group;
        EXPECT_TRUE(accessOf(start + L"WD;;;" + group + L")").writableByEverybody) << group;
        EXPECT_FALSE(accessOf(start + L"FR;;;" + group + L")").writableByEverybody) << group;
        EXPECT_TRUE(accessOf(start + L"FR;;;" + group + L")").usableByOthers) << group;
    }
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

TEST(WindowsFileSecurity, WithoutAnOwnerNothingIsKnown) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ASSERT_TRUE(::ConvertStringSecurityDescriptorToSecurityDescriptorW(L"D:P(A;;FA;;;SY)", SDDL_REVISION_1, &descriptor,
                                                                       nullptr));
    EXPECT_FALSE(FileSecurity::take(descriptor));
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
