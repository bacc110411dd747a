#include "zel/storage/DurableFile.h"

#include <kyr/FileUtils.h>

#include <LogRecorder.h>
#include <TemporaryProfile.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using KyrCoreUtils::FileUtils;
using testing::Each;
using testing::HasSubstr;
using testing::SizeIs;
using testing_host::LogRecorder;
using testing_host::readFile;
using testing_host::TemporaryProfile;
using testing_host::writeFile;

dev_t deviceOf(const fs::path& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_dev : 0;
}

/// Moves a file between file systems in a process that is killed when it has copied 1,000 bytes.
void moveUntilKilled(const std::string& source, const std::string& target) {
    const pid_t child = ::fork();
    if (child == 0) {
        const rlimit none{0, 0};
        const rlimit size{1000, 1000};
        ::setrlimit(RLIMIT_CORE, &none);
        ::setrlimit(RLIMIT_FSIZE, &size);
        FileUtils::moveFile(source, target, false);
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
}

TEST(FileUtilsLimits, TheNextStartRemovesWhatAKilledMoveBetweenFileSystemsLeft) {
    const fs::path elsewhere = fs::path("/dev/shm") / ("lumora-killed-move-" + std::to_string(::getpid()));
    const TemporaryProfile profile;
    const fs::path folder = profile.config();
    if (deviceOf("/dev/shm") == deviceOf(folder)) {
        GTEST_SKIP() << "one file system";
    }
    writeFile(elsewhere, std::string(100000, 'x'));
    moveUntilKilled(elsewhere.string(), (folder / "file").string());
    fs::remove(elsewhere);
    ASSERT_FALSE(fs::is_empty(folder));
    const fs::path left = fs::directory_iterator(folder)->path();
    fs::last_write_time(left, fs::file_time_type::clock::now() - std::chrono::minutes(30));
    zel::storage::DurableFile::removeLeftovers(zel::storage::FileLayer::platform(), folder.string());
    EXPECT_TRUE(fs::is_empty(folder)) << left;
}

/// Moves a file from the folder to /dev/shm in a process of its own. Returns its calls that sync or remove files, in
/// order; none if this machine cannot trace it.
std::vector<std::string> traceMoveElsewhere(const fs::path& folder) {
    const fs::path trace = folder / "trace";
    const auto run = [](const std::string& command) {
        return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
    };
    if (!run("strace -o /dev/null true") ||
        !run("strace -f -qq -y -E ASAN_OPTIONS=detect_leaks=0 -e trace=fsync,unlink -o " + trace.string() + " " +
             fs::read_symlink("/proc/self/exe").string() + " --gtest_filter=FileUtilsTest.MovesBetweenFileSystems")) {
        return {};
    }
    std::vector<std::string> calls;
    std::istringstream lines(readFile(trace));
    for (std::string line; std::getline(lines, line);) {
        calls.push_back(line);
    }
    return calls;
}

/// Otherwise a power cut between the two could lose the file.
TEST(FileUtilsLimits, AMoveBetweenFileSystemsSyncsTheFolderOfTheTargetBeforeItRemovesTheSource) {
    const TemporaryProfile profile;
    if (deviceOf("/dev/shm") == deviceOf(profile.root())) {
        GTEST_SKIP() << "one file system";
    }
    const auto calls = traceMoveElsewhere(profile.root());
    if (calls.empty()) {
        GTEST_SKIP() << "no strace, or it may not trace";
    }
    const auto find = [&](const std::string& text) {
        return std::find_if(calls.begin(), calls.end(), [&](const auto& call) { return call.find(text) != call.npos; });
    };
    const auto sync = find("</dev/shm>");
    const auto removal = find("/source\")");
    ASSERT_NE(removal, calls.end());
    EXPECT_TRUE(sync < removal) << "the source was removed first";
}

/// While it exists, this process opens no file.
class NoMoreDescriptors {
public:
    NoMoreDescriptors() {
        ::getrlimit(RLIMIT_NOFILE, &before);
        const rlimit none{0, before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoMoreDescriptors() { ::setrlimit(RLIMIT_NOFILE, &before); }
    NoMoreDescriptors(const NoMoreDescriptors&) = delete;
    NoMoreDescriptors& operator=(const NoMoreDescriptors&) = delete;

private:
    rlimit before{};
};

TEST(FileUtilsLimits, AChangeWhoseDirectoryCannotBeSyncedIsMadeAndLogged) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "without descriptors, the sanitizer reports valid objects as invalid";
#endif
    const TemporaryProfile profile;
    const fs::path file = profile.config() / "file";
    const fs::path moved = profile.config() / "moved";
    const fs::path folder = profile.config() / "folder";
    writeFile(file, "x");
    const LogRecorder log;
    {
        const NoMoreDescriptors limit;
        EXPECT_EQ(FileUtils::createDirectory(folder.string()), 0);
        EXPECT_EQ(FileUtils::moveFile(file.string(), moved.string(), false), 0);
        EXPECT_EQ(FileUtils::removeFile(moved.string()), 0);
    }
    EXPECT_TRUE(fs::is_directory(folder));
    EXPECT_FALSE(fs::exists(file));
    EXPECT_FALSE(fs::exists(moved));
    const auto warnings = log.getTexts(ZelLogLevel::Warning);
    EXPECT_THAT(warnings, SizeIs(4)) << "a move syncs twice";
    EXPECT_THAT(warnings, Each(HasSubstr("could not be synced")));
}

} // namespace
