#include "stores/RenamedKeys.h"

#include <gmock/gmock.h>

namespace lumora_config {

TEST(RenamedKeys, KnowsAKeyByEitherNameInAnyCase) {
    const auto byOldName = namesOf(L"tftpserver1");
    EXPECT_EQ(byOldName.current, L"TFTPPrimaryServer");
    EXPECT_EQ(byOldName.earlier, L"TftpServer1");
    EXPECT_TRUE(byOldName.askedByEarlierName);
    const auto byNewName = namesOf(L"TFTPPRIMARYSERVER");
    EXPECT_EQ(byNewName.current, L"TFTPPrimaryServer");
    EXPECT_FALSE(byNewName.askedByEarlierName);
}

TEST(RenamedKeys, NamesTheNewNameFirst) {
    EXPECT_THAT(namesOf(L"CtiServer1").getAll(), testing::ElementsAre(L"CTIPrimaryServer", L"CtiServer1"));
}

TEST(RenamedKeys, LeavesAKeyThatWasNeverRenamed) {
    const auto names = namesOf(L"ServicesDomain");
    EXPECT_EQ(names.current, L"ServicesDomain");
    EXPECT_FALSE(names.earlier);
    EXPECT_THAT(names.getAll(), testing::ElementsAre(L"ServicesDomain"));
}

} // namespace lumora_config
