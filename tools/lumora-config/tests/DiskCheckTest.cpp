#include "DiskCheck.h"

#include "Failure.h"

#include <TemporaryProfile.h>
#include <gtest/gtest.h>

namespace lumora_config {

TEST(DiskCheckOfAFile, AcceptsTheContentAndNothingElse) {
    const testing_host::TemporaryProfile profile;
    const auto path = profile.data() / "p.reg";
    testing_host::writeFile(path, "content");
    EXPECT_NO_THROW(DiskCheck::requireFile(path.string(), "content"));
    EXPECT_THROW(DiskCheck::requireFile(path.string(), "content and more"), Failure);
    EXPECT_THROW(DiskCheck::requireFile(path.string(), ""), Failure);
    std::filesystem::remove(path);
    EXPECT_THROW(DiskCheck::requireFile(path.string(), "content"), Failure);
}

} // namespace lumora_config
