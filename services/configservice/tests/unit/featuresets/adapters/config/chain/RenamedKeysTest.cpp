#include "featuresets/adapters/config/chain/RenamedKeys.h"

#include <ConfigCatalogue.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <string>

namespace ZelUnified {

TEST(RenamedKeys, FindsBothNamesOfEachRenamedKeyOfTheCatalogue) {
    const RenamedKeys renamedKeys;
    std::size_t renamed = 0;
    for (const auto& row : ConfigKeys::keys) {
        const auto* const newName = renamedKeys.findNewName(std::wstring(row.oldName));
        const auto* const oldName = renamedKeys.findOldName(std::wstring(row.name));
        ASSERT_EQ(newName != nullptr, row.isRenamed());
        ASSERT_EQ(oldName != nullptr, row.isRenamed());
        if (row.isRenamed()) {
            ++renamed;
            EXPECT_EQ(*newName, row.name);
            EXPECT_EQ(*oldName, row.oldName);
        }
    }
    EXPECT_EQ(renamedKeys.getNewNames().size(), renamed);
    EXPECT_GE(renamed, 18U);
}

TEST(RenamedKeys, FindsNamesIgnoringCaseInOneDirectionOnly) {
    const RenamedKeys renamedKeys;
    EXPECT_NE(renamedKeys.findNewName(L"TFTPSERVER1"), nullptr);
    EXPECT_EQ(renamedKeys.findNewName(L"TFTPPrimaryServer"), nullptr);
    EXPECT_EQ(renamedKeys.findOldName(L"TftpServer1"), nullptr);
}

} // namespace ZelUnified
