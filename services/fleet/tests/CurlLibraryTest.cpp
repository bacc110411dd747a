#include "CurlLibrary.h"

#include "EtcdCluster.h"
#include "FleetHost.h"
#include "InterruptibleProgram.h"
#include "ProgramRun.h"

#include <TemporaryProfile.h>
#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace fleet_test {
namespace {

using fleet::CurlLibrary;
using testing::HasSubstr;
using testing::Not;
using testing::ThrowsMessage;

/// The arguments of "env" that run the program without a usable libcurl.
std::vector<std::string> withoutLibcurl(const testing_host::TemporaryProfile& profile,
                                        const std::vector<std::string>& arguments) {
    const auto folder = profile.root() / "libraries";
    testing_host::writeFile(folder / "libcurl.so.4", "");
    std::vector<std::string> words{"LD_LIBRARY_PATH=" + folder.string(), PROGRAM};
    words.insert(words.end(), arguments.begin(), arguments.end());
    return words;
}

TEST(CurlLibrary, ReportsThatItIsMissingOrIncomplete) {
    EXPECT_THAT([] { CurlLibrary::load("liblumora-absent.so.4"); },
                ThrowsMessage<std::runtime_error>(
                    AllOf(HasSubstr("libcurl cannot be used: "), HasSubstr("liblumora-absent.so.4"))));
    EXPECT_THAT([] { CurlLibrary::load("libc.so.6"); },
                ThrowsMessage<std::runtime_error>(HasSubstr("libcurl cannot be used: ")));
}

// It brings about 30 other libraries along, which would delay the start of each client.
TEST(CurlLibrary, IsNotLoadedWithThePlugin) {
    const auto libraries = runProgram(findProgram("ldd"), {FLEET_LIBRARY});
    EXPECT_THAT(libraries.output, HasSubstr("liblumora_host.so"));
    EXPECT_THAT(libraries.output, Not(HasSubstr("libcurl")));
}

TEST(CurlLibrary, CommandReportsThatItIsMissing) {
    const testing_host::TemporaryProfile profile;
    const auto result =
        runProgram(findProgram("env"), withoutLibcurl(profile, {"fleet", "list", "--endpoint", "https://127.0.0.1:1"}));
    EXPECT_EQ(result.code, 3);
    EXPECT_THAT(result.output, AllOf(HasSubstr("libcurl cannot be used: "), HasSubstr("libcurl.so.4")));
}

TEST(CurlLibrary, ClientWithoutItReportsThatAndHasTheLastSettings) {
    if (const auto reason = EtcdCluster::whyUnavailable(); !reason.empty()) {
        GTEST_SKIP() << reason;
    }
    const testing_host::TemporaryProfile profile;
    EtcdCluster cluster;
    cluster.put("/lumora/fleet/all/Theme", "dark");
    FleetHost::writeDefaults(profile.resources(), cluster.getAccess());
    {
        const FleetHost host;
        ASSERT_TRUE(host.waitForValue(L"Theme", L"dark"));
    }
    const auto root = profile.root().string();
    InterruptibleProgram client(findProgram("env"), withoutLibcurl(profile, {"--verbose", "--profile", root, "serve"}));
    EXPECT_TRUE(client.readUntil("its last settings stay in force: libcurl cannot be used: ")) << client.getOutput();
    EXPECT_TRUE(client.readUntil("serving ")) << client.getOutput();
    EXPECT_THAT(runProgram(PROGRAM, {"--profile", root, "--live", "get", "Theme"}).output, HasSubstr("dark\n"));
    EXPECT_EQ(client.interrupt(), 0);
}

} // namespace
} // namespace fleet_test
