#include "Program.h"

#include <gmock/gmock.h>

#include <csignal>

namespace program_test {

namespace {

constexpr auto mainFile = "config/lumoraLocalConfig.dat";
constexpr auto backupFile = "config/lumoraLocalConfig_backup.dat";

} // namespace

class EndSignal : public testing::TestWithParam<int> {
protected:
    static constexpr std::size_t bigSize = 1 << 20;

    /// Blocks the shell in an answer that is larger than the pipe's buffer; `next` waits behind it.
    void startBlockedAnswer(const RunningShell& shell, const std::string& next) const {
        const auto document = profile.writeDocument("big.xml", "<Big>" + std::string(bigSize, 'x') + "</Big>");
        shell.send("add-store " + document + ":Foreign:40");
        ASSERT_EQ(shell.receive().at("type"), "done");
        shell.send("get Big");
        shell.send(next);
        shell.awaitOutput();
    }

    const Profile profile;
};

TEST_P(EndSignal, EndsTheShellAfterTheFileAndItsBackupAreWritten) {
    RunningShell shell(profile);
    shell.send("set Theme dark");
    ASSERT_EQ(shell.receive().at("type"), "done");
    shell.signal(GetParam());
    EXPECT_EQ(shell.waitForEnd(), 128 + GetParam());
    ASSERT_TRUE(std::filesystem::exists(profile.root() / backupFile));
    profile.write(mainFile, "damaged");
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "dark\n");
}

TEST_P(EndSignal, FinishesTheRunningCommandAndRunsNoOther) {
    RunningShell shell(profile);
    startBlockedAnswer(shell, "set Never 1");
    shell.signal(GetParam());
    const auto answer = shell.receive();
    EXPECT_EQ(answer.at("value").get<std::string>().size(), bigSize);
    EXPECT_EQ(shell.waitForEnd(), 128 + GetParam());
    EXPECT_EQ(profile.run({"get", "Never"}).exitCode, 1);
}

TEST_P(EndSignal, ASecondSignalEndsTheProcessAtOnce) {
    RunningShell shell(profile);
    startBlockedAnswer(shell, "wait");
    EXPECT_EQ(shell.signalUntilEnd(GetParam()), 128 + GetParam());
}

INSTANTIATE_TEST_SUITE_P(Kinds, EndSignal, testing::Values(SIGINT, SIGTERM, SIGHUP));

} // namespace program_test
