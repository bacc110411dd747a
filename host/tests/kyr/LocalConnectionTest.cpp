#include <kyr/LocalConnection.h>
#include <kyr/LocalListener.h>

#include <TemporaryProfile.h>
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>

namespace KyrCoreUtils {
namespace {

using namespace std::chrono_literals;

TEST(LocalConnection, ReportsTheIdAndTheEndOfTheOtherProcess) {
    const testing_host::TemporaryProfile profile;
    const auto path = (profile.root() / "s" / "s.sock").string();
    std::string line;
    std::optional<LocalListener> listener(path);
    LocalConnection connection(path);
    ASSERT_TRUE(connection.isOpen());
    EXPECT_GT(connection.getPeer(), 0);
    EXPECT_TRUE(connection.sendLine("hello", 1s));
    EXPECT_EQ(connection.receiveLine(line, 1ms), LocalConnection::Received::Timeout);
    listener.reset();
    EXPECT_EQ(connection.receiveLine(line, 20s), LocalConnection::Received::End);
    EXPECT_FALSE(LocalConnection(path).isOpen());
}

} // namespace
} // namespace KyrCoreUtils
