#include <kyr/LocalSocket.h>

#include <TemporaryProfile.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

namespace KyrCoreUtils {
namespace {

/// Sets the runtime directory for the duration of a test.
class RuntimeDirectory {
public:
    explicit RuntimeDirectory(const std::string& path) {
        if (const char* const value = std::getenv(name)) {
            before = value;
        }
        setenv(name, path.c_str(), 1);
    }

    ~RuntimeDirectory() {
        if (before) {
            setenv(name, before->c_str(), 1);
        } else {
            unsetenv(name);
        }
    }

    RuntimeDirectory(const RuntimeDirectory&) = delete;
    RuntimeDirectory& operator=(const RuntimeDirectory&) = delete;

private:
    static constexpr auto name = "XDG_RUNTIME_DIR";
    std::optional<std::string> before;
};

TEST(LocalSocket, PathIsInTheStateDirectoryIfTheRuntimeDirectoryIsUnusable) {
    {
        const RuntimeDirectory runtime("/run/user/7");
        EXPECT_TRUE(LocalSocket::getPathFor("/home/a/config", "/home/a/state").starts_with("/run/user/7/lumora/"));
    }
    for (const auto& unusable : {std::string(), std::string("relative"), "/too/long/" + std::string(100, 'x')}) {
        const RuntimeDirectory runtime(unusable);
        EXPECT_TRUE(LocalSocket::getPathFor("/home/a/config", "/home/a/state").starts_with("/home/a/state/lumora/"));
    }
}

TEST(LocalSocket, ReturnsAlsoThePathOfAProcessWithoutARuntimeDirectory) {
    std::string without;
    {
        const RuntimeDirectory runtime("");
        without = LocalSocket::getPathFor("/home/a/config", "/home/a/state");
        EXPECT_EQ(LocalSocket::getPathsFor("/home/a/config", "/home/a/state"), std::vector{without});
    }
    const RuntimeDirectory runtime("/run/user/7");
    const auto with = LocalSocket::getPathFor("/home/a/config", "/home/a/state");
    EXPECT_EQ(LocalSocket::getPathsFor("/home/a/config", "/home/a/state"), (std::vector{with, without}));
}

TEST(LocalSocket, PathIsEmptyIfItIsTooLongForASocket) {
    const RuntimeDirectory runtime("");
    const std::string directory(300, 'd');
    for (std::size_t length = 1; length < 120; ++length) {
        const auto path = LocalSocket::getPathFor("/" + directory, "/" + std::string(length, 's'));
        EXPECT_LE(path.size(), 107U);
    }
    EXPECT_EQ(LocalSocket::getPathFor("/a", "/" + std::string(100, 's')), "");
}

TEST(LocalSocket, EachSpellingOfADirectoryHasTheSamePath) {
    const testing_host::TemporaryProfile profile;
    const auto directory = profile.config().string();
    std::filesystem::create_directory_symlink(profile.config(), profile.root() / "link");
    const auto path = LocalSocket::getPathFor(directory, "/s");
    EXPECT_EQ(LocalSocket::getPathFor(directory + "/", "/s"), path);
    EXPECT_EQ(LocalSocket::getPathFor(directory + "/../config/.", "/s"), path);
    EXPECT_EQ(LocalSocket::getPathFor((profile.root() / "link").string(), "/s"), path);
    EXPECT_NE(LocalSocket::getPathFor(profile.state().string(), "/s"), path);
}

TEST(LocalSocket, NameIsTheFirstHalfOfTheDigestOfTheDirectory) {
    const RuntimeDirectory runtime("");
    EXPECT_EQ(LocalSocket::getPathFor("/", "/s"), "/s/lumora/8a5edab282632443219e051e4ade2d1d.sock"); // SHA-256
}

} // namespace
} // namespace KyrCoreUtils
