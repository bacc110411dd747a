#include "MovedAsideFixture.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using testing_host::writeFile;
using zel::storage::EncryptFileUtils;
using zel::storage::ReadResult;

class MovedFilesTest : public storage_test::MovedAsideFixture {};

TEST_F(MovedFilesTest, AnUnreadableFileThatIsReplacedIsReported) {
    writeFile(config / "a.dat", "rubbish");
    write("a.dat");
    const auto moved = EncryptFileUtils::health(configDirectory).movedAside;
    ASSERT_EQ(moved.size(), 1U);
    EXPECT_EQ(moved[0].original, storage.configFile("a.dat"));
    EXPECT_EQ(moved[0].keptAs, storage.configFile("a.dat.unreadable"));
    EXPECT_EQ(moved[0].reason, ReadResult::Damaged);
}

} // namespace
