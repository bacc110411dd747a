#include "zel/storage/DurableFile.h"

#include <kyr/FileUtils.h>

#include <LogRecorder.h>
#include <OtherFileSystem.h>
#include <TemporaryProfile.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <future>
#include <sstream>
#include <string>
#include <vector>

namespace {

/// Called at the beginning of the next sync in this process if the flag is set.
std::function<void()> syncAction;
std::atomic<bool> hasSyncAction = false;

} // namespace

/// Replaces the C library's function in the whole process, also for the host.
extern "C" __attribute__((visibility("default"))) int fsync(int descriptor) {
    if (hasSyncAction.exchange(false)) {
        syncAction();
    }
    return static_cast<int>(::syscall(SYS_fsync, descriptor));
}

namespace {

namespace fs = std::filesystem;
using KyrCoreUtils::FileUtils;
using testing::Each;
using testing::HasSubstr;
using testing::SizeIs;
using testing_host::findPathOnOtherFileSystem;
using testing_host::LogRecorder;
using testing_host::readFile;
using testing_host::TemporaryProfile;
using testing_host::writeFile;

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
    const TemporaryProfile profile;
    const fs::path folder = profile.config();
    const fs::path elsewhere = findPathOnOtherFileSystem(folder, "lumora-killed-move");
    if (elsewhere.empty()) {
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

/// Returns true if the shell command succeeds. Discards what it prints.
bool run(const std::string& command) {
    return std::system((command + " >/dev/null 2>&1").c_str()) == 0;
}

/// Returns false if strace is missing or may not trace.
bool canTrace() {
    return run("strace -o /dev/null true");
}

/// Moves a file from the folder to another file system in a process of its own. Sets `calls` to its calls that sync or
/// remove files, in order.
void traceMoveElsewhere(const fs::path& folder, std::vector<std::string>& calls) {
    const fs::path trace = folder / "trace";
    const auto quote = [](const fs::path& path) { return "'" + path.string() + "'"; };
    ASSERT_TRUE(run("strace -f -qq -y -E ASAN_OPTIONS=detect_leaks=0 -e trace=fsync,?unlink,unlinkat -o " +
                    quote(trace) + " " + quote(fs::read_symlink("/proc/self/exe")) +
                    " --gtest_filter=FileUtilsTest.MovesBetweenFileSystems"))
        << "the traced test has failed";
    std::istringstream lines(readFile(trace));
    for (std::string line; std::getline(lines, line);) {
        calls.push_back(line);
    }
    ASSERT_FALSE(calls.empty()) << "the trace contains no call";
}

/// Otherwise a power cut between the two could lose the file.
TEST(FileUtilsLimits, AMoveBetweenFileSystemsSyncsTheFolderOfTheTargetBeforeItRemovesTheSource) {
    const TemporaryProfile profile;
    const fs::path elsewhere = findPathOnOtherFileSystem(profile.root(), "lumora-traced-move");
    if (elsewhere.empty()) {
        GTEST_SKIP() << "one file system";
    }
    if (!canTrace()) {
        GTEST_SKIP() << "no strace, or it may not trace";
    }
    std::vector<std::string> calls;
    ASSERT_NO_FATAL_FAILURE(traceMoveElsewhere(profile.root(), calls));
    const auto find = [&](const std::string& text) {
        return std::find_if(calls.begin(), calls.end(), [&](const auto& call) { return call.find(text) != call.npos; });
    };
    const auto sync = find("<" + elsewhere.parent_path().string() + ">");
    const auto removal = find("/source\"");
    ASSERT_NE(removal, calls.end());
    EXPECT_TRUE(sync < removal) << "the source was removed first";
}

/// While it exists, this process has at most this number of files open besides those that are open already.
class DescriptorLimit {
public:
    explicit DescriptorLimit(std::size_t more) {
        ::getrlimit(RLIMIT_NOFILE, &before);
        const rlimit now{findEnd(more), before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &now);
    }
    ~DescriptorLimit() { ::setrlimit(RLIMIT_NOFILE, &before); }
    DescriptorLimit(const DescriptorLimit&) = delete;
    DescriptorLimit& operator=(const DescriptorLimit&) = delete;

private:
    /// Returns the number after the last of the next descriptors. Each of them is the lowest free number.
    static rlim_t findEnd(std::size_t more) {
        std::vector<int> next;
        while (next.size() < more) {
            next.push_back(::open("/dev/null", O_RDONLY | O_CLOEXEC));
        }
        for (const int descriptor : next) {
            ::close(descriptor);
        }
        return next.empty() ? 0 : static_cast<rlim_t>(next.back()) + 1;
    }

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
        const DescriptorLimit limit(0);
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

/// Makes the call in a second thread while the first one syncs the name of a new directory.
void expectToWaitForTheSync(const std::string& folder, const std::function<void()>& call) {
    std::future<void> second;
    auto duringSync = std::future_status::ready;
    syncAction = [&] {
        second = std::async(std::launch::async, call);
        // Without the lock the second thread returns at once; with it, this wait times out.
        duringSync = second.wait_for(std::chrono::milliseconds(200));
    };
    hasSyncAction = true;
    EXPECT_EQ(FileUtils::createDirectory(folder), 0);
    syncAction = nullptr;
    ASSERT_TRUE(second.valid()) << "the name was not synced";
    EXPECT_EQ(duringSync, std::future_status::timeout);
    second.get();
}

TEST(FileUtilsLimits, OtherThreadsFindANewDirectoryWhenItsNameIsSynced) {
    const TemporaryProfile profile;
    const std::string first = (profile.config() / "first").string();
    expectToWaitForTheSync(first, [&] { EXPECT_EQ(FileUtils::createDirectory(first), 0); });
    const std::string second = (profile.config() / "second").string();
    expectToWaitForTheSync(second, [&] { EXPECT_TRUE(FileUtils::fileExists(second)); });
}

TEST(FileUtilsLimits, AMoveBetweenFileSystemsKeepsTheSourceIfTheFolderOfTheTargetCannotBeSynced) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "without descriptors, the sanitizer reports valid objects as invalid";
#endif
    const TemporaryProfile profile;
    const fs::path source = profile.root() / "source";
    const fs::path target = findPathOnOtherFileSystem(profile.root(), "lumora-unsynced-move");
    if (target.empty()) {
        GTEST_SKIP() << "one file system";
    }
    writeFile(source, "x");
    {
        const DescriptorLimit limit(2); // for source and target, but not for the folder
        EXPECT_EQ(FileUtils::moveFile(source.string(), target.string(), false), EMFILE);
    }
    EXPECT_EQ(readFile(source), "x");
    EXPECT_FALSE(fs::exists(target));
    EXPECT_EQ(FileUtils::moveFile(source.string(), target.string(), true), 0);
    EXPECT_EQ(readFile(target), "x");
    fs::remove(target);
}

} // namespace
