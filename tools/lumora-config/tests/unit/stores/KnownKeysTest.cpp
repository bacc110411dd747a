#include "stores/KnownKeys.h"

#include <gmock/gmock.h>

namespace lumora_config {

using testing::Contains;
using testing::IsEmpty;

TEST(KnownKeys, APatternWithoutWildcardsMatchesNamesThatContainIt) {
    EXPECT_TRUE(matchesPattern(L"TFTPBackupServer1", L"backup"));
    EXPECT_TRUE(matchesPattern(L"TFTPBackupServer1", L""));
    EXPECT_FALSE(matchesPattern(L"TFTPBackupServer1", L"backup1"));
}

TEST(KnownKeys, APatternWithWildcardsMatchesTheWholeName) {
    EXPECT_TRUE(matchesPattern(L"TFTPBackupServer1", L"tftp*server?"));
    EXPECT_FALSE(matchesPattern(L"TFTPBackupServer1", L"backup*"));
}

TEST(KnownKeys, AKeyIsFoundByItsOldAndItsNewName) {
    const auto byOld = findKeyFacts(L"tftpserver1");
    const auto byNew = findKeyFacts(L"TFTPPRIMARYSERVER");
    ASSERT_TRUE(byOld && byNew);
    EXPECT_EQ(byOld->key, L"TFTPPrimaryServer");
    EXPECT_EQ(byNew->key, L"TFTPPrimaryServer");
    EXPECT_EQ(byNew->oldName, L"TftpServer1");
    EXPECT_FALSE(findKeyFacts(L"NoSuchKey"));
}

TEST(KnownKeys, APatternFindsKeysByTheirOldNames) {
    const auto found = findKeys("TftpServer1");
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found.front().key, L"TFTPPrimaryServer");
    EXPECT_THAT(findKeys("no-such-key"), IsEmpty());
    EXPECT_THAT(listKnownNames(), Contains("TftpServer1"));
    EXPECT_THAT(listKnownNames(), Contains("TFTPPrimaryServer"));
}

TEST(KnownKeys, AnOldNameKeepsItsNameInTheSpellingOfTheCatalogue) {
    EXPECT_EQ(spell("tftpserver1"), "TftpServer1");
    EXPECT_EQ(spell("ip_mode"), "IP_MODE");
    EXPECT_EQ(spell("noSuchKey"), "noSuchKey");
    EXPECT_EQ(spell("not UTF-8: \xff"), "not UTF-8: \xff");
}

} // namespace lumora_config
