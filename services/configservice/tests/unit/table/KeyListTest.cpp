#include "table/KeyList.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ZelUnified {
namespace {

TEST(KeyList, ReturnsEachKeyUnchanged) {
    const std::vector<std::wstring> keys{L"First", L"", std::wstring(L"with\0NUL", 8), std::wstring(500, L'x'), L""};
    const KeyList list(keys);
    ASSERT_EQ(list.size(), keys.size());
    for (std::size_t i = 0; i < keys.size(); ++i) {
        EXPECT_EQ(list[i], keys[i]) << i;
    }
}

TEST(KeyList, IsEmptyAtFirst) {
    EXPECT_EQ(KeyList().size(), 0U);
}

} // namespace
} // namespace ZelUnified
