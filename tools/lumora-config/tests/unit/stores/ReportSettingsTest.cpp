#include "stores/ReportSettings.h"

#include "output/Failure.h"

#include <gtest/gtest.h>

namespace lumora_config {

TEST(ReportSettings, ContainEachKeyOnceFromTheFirstStore) {
    const auto dump = parseReport("<?xml version=\"1.0\"?><AllConfigs><AllMemoryConfigs>"
                                  "<store name=\"A\" priority=\"1\"><k>first</k></store>"
                                  "<store name=\"B\" priority=\"2\"><K>second</K><other>x</other></store>"
                                  "</AllMemoryConfigs></AllConfigs>",
                                  "r.xml");
    EXPECT_EQ(dump.source, "report");
    ASSERT_EQ(dump.settings.size(), 2U);
    EXPECT_EQ(dump.settings[0].value, L"first");
    EXPECT_EQ(dump.settings[0].storeName, L"A");
    EXPECT_EQ(dump.settings[1].storeName, L"B");
}

TEST(ReportSettings, PreferTheNewNameOfAKeyInWhicheverStoreItIs) {
    const auto dump = parseReport("<AllMemoryConfigs><store name=\"A\"><TftpServer1>old</TftpServer1></store>"
                                  "<store name=\"B\"><TFTPPrimaryServer>new</TFTPPrimaryServer></store>"
                                  "</AllMemoryConfigs>",
                                  "r.xml");
    ASSERT_EQ(dump.settings.size(), 1U);
    EXPECT_EQ(dump.settings[0].value, L"new");
}

TEST(ReportSettings, MayBeEmpty) {
    EXPECT_TRUE(parseReport("<AllConfigs><AllMemoryConfigs/></AllConfigs>", "r.xml").settings.empty());
}

TEST(ReportSettings, RefuseOtherDocuments) {
    EXPECT_THROW(parseReport("<Config/>", "r.xml"), Failure);
    EXPECT_THROW(parseReport("<AllMemoryConfigs>", "r.xml"), Failure);
}

} // namespace lumora_config
