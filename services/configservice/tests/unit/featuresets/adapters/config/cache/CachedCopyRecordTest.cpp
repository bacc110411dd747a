#include <kyr/FileUtils.h>

#include <CachedCopyRecord.h>
#include <gtest/gtest.h>

namespace ZelUnified {

namespace {

std::string path(const std::string& fileName) {
    const auto separator = KyrCoreUtils::FileUtils::FileSeparator();
    return "dir" + separator + "Cache" + separator + fileName;
}

} // namespace

TEST(CachedCopyRecord, FindsTheEntryOfAStoreIgnoringCase) {
    const CachedCopyRecord record(L"ATFTP:31;Tftp:41;");
    ASSERT_TRUE(record.find(L"TFTP").has_value());
    EXPECT_EQ(record.find(L"TFTP")->name, L"Tftp");
    EXPECT_EQ(record.find(L"TFTP")->priority, L"41");
    EXPECT_FALSE(record.find(L"FTP").has_value());
    EXPECT_FALSE(CachedCopyRecord(L"").find(L"TFTP").has_value());
}

TEST(CachedCopyRecord, ARepeatedStoreKeepsItsFirstSpellingAndItsLastPriority) {
    const auto entry = CachedCopyRecord(L"Foo:1;foo:2;").find(L"FOO");
    ASSERT_TRUE(entry.has_value());
    EXPECT_EQ(entry->name, L"Foo");
    EXPECT_EQ(entry->priority, L"2");
}

TEST(CachedCopyRecord, KeepsAllOtherPartsWhenAStoreIsRemoved) {
    EXPECT_EQ(CachedCopyRecord(L"ATFTP:31;junk;Tftp:41;TftpX:7").without(L"TFTP"), L"ATFTP:31;junk;TftpX:7");
    EXPECT_EQ(CachedCopyRecord(L"Foo:1;foo:2;").without(L"FOO"), L"");
    EXPECT_EQ(CachedCopyRecord(L"Foo:1;").without(L"Fo"), L"Foo:1;");
}

TEST(CachedCopyRecord, DetectsWhetherTheServiceWouldEraseAnotherEntry) {
    EXPECT_TRUE(CachedCopyRecord(L"").canBeErasedByService(L"TFTP"));
    EXPECT_TRUE(CachedCopyRecord(L"Other:1;").canBeErasedByService(L"TFTP"));
    EXPECT_TRUE(CachedCopyRecord(L"Other:1;TFTP:2;").canBeErasedByService(L"tftp"));
    EXPECT_FALSE(CachedCopyRecord(L"TFTPConfigStore:1;").canBeErasedByService(L"TFTP"));
    EXPECT_FALSE(CachedCopyRecord(L"ATFTP:1;TFTP:2;").canBeErasedByService(L"TFTP"));
    EXPECT_FALSE(CachedCopyRecord(L"TFTP:1;tftp:2;").canBeErasedByService(L"TFTP"));
}

TEST(StoreCopy, IsInTheFolderOfTheCopies) {
    EXPECT_EQ(CachedCopyRecord::findCopyPath("dir", "Foreign"), path("cachedForeign.dat"));
    EXPECT_EQ(CachedCopyRecord::findCopyPath("dir", "A/B"), path("cachedA/B.dat"));
    EXPECT_EQ(CachedCopyRecord::findCopyPath("dir", "a..b/..c"), path("cacheda..b/..c.dat"));
}

TEST(StoreCopy, DoesNotExistForANameWithAParentComponentOfAnyPlatform) {
    for (const auto* name : {"..", "../x", "F/../x", "F\\..\\x", "F/..", "F\\../x"}) {
        EXPECT_FALSE(CachedCopyRecord::findCopyPath("dir", name).has_value()) << name;
    }
}

} // namespace ZelUnified
