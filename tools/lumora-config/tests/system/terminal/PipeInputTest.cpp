#include "Program.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

namespace program_test {

using testing::HasSubstr;

namespace {

/// Runs lumora-config in the profile, with a pipe as its last argument through which the content arrives.
Outcome runWithPipe(const Profile& profile, const std::string& command, const std::string& content) {
    const auto pipe = (profile.root() / "pipe").string();
    EXPECT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const auto outcome =
        runProcess("/bin/sh", {"-c", R"(cat "$1" >"$2" & exec "$0" --profile "$3" "$4" "$2")", LUMORA_CONFIG_PROGRAM,
                               profile.write("content", content), pipe, profile.root().string(), command});
    std::filesystem::remove(pipe);
    return outcome;
}

} // namespace

TEST(PipeInput, IsReadByLoadAndDiff) {
    const Profile profile;
    const auto loaded = runWithPipe(profile, "load", "Note = \"from a pipe\"\n");
    EXPECT_EQ(loaded.exitCode, 0) << loaded.error;
    EXPECT_EQ(profile.run({"get", "Note"}).out, "from a pipe\n");
    EXPECT_EQ(runWithPipe(profile, "diff", "Note = \"from a pipe\"\n").exitCode, 0);
    const auto outcome = runWithPipe(profile, "diff", "Note = \"other\"\n");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.out, HasSubstr("-Note = \"other\"\n+note = \"from a pipe\"  # LocalFileConfigStore\n"));
}

TEST(PipeInput, IsLimited) {
    const Profile profile;
    const auto outcome = runWithPipe(profile, "load", std::string((std::size_t{64} << 20U) + 1, ' '));
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.error, HasSubstr("/pipe: larger than 64 MiB"));
}

} // namespace program_test
