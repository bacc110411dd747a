#include "StoreCopy.h"

#include <kyr/FileUtils.h>

#include <gtest/gtest.h>

namespace lumora_config {

namespace {

std::string path(const std::string& fileName) {
    const auto separator = KyrCoreUtils::FileUtils::FileSeparator();
    return "dir" + separator + "Cache" + separator + fileName;
}

} // namespace

TEST(StoreCopy, LiesInTheFolderOfTheCopies) {
    EXPECT_EQ(findPathOfCopy("dir", "Foreign"), path("cachedForeign.dat"));
    EXPECT_EQ(findPathOfCopy("dir", "A/B"), path("cachedA/B.dat"));
    EXPECT_EQ(findPathOfCopy("dir", "a..b/..c"), path("cacheda..b/..c.dat"));
}

TEST(StoreCopy, IsNoneIfTheNameHasAParentComponentOfAnyPlatform) {
    for (const auto* name : {"..", "../x", "F/../x", "F\\..\\x", "F/..", "F\\../x"}) {
        EXPECT_FALSE(findPathOfCopy("dir", name).has_value()) << name;
    }
}

} // namespace lumora_config
