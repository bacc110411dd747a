#include "zel/ProfileDirectoryLock.h"

#include "DirectoryDigest.h"
#include "FileDescriptor.h"

#include <kyr/FileUtils.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <string_view>
#include <vector>

namespace zel::platform {

namespace {

/// Returns true if the file system cannot lock a directory; some network file systems cannot.
bool isUnsupported(int error) {
    return error == EBADF || error == EINVAL || error == ENOLCK || error == ENOTSUP;
}

int lockAtOnce(int descriptor) {
    return flock(descriptor, LOCK_EX | LOCK_NB) == 0 ? 0 : errno;
}

/// Marks the directory, which is locked, as in use, until it is closed. The mark is a shared lock of the kind that
/// other processes can see without an attempt to acquire it, which could make another process fail. Locks of flock()
/// are visible in /proc/locks only, and reading that waits ten milliseconds and more for all processors. Ignores
/// failures: some file systems have no such locks, and isLockedBy() works without a mark.
void markAsUsed(int directory) {
    struct flock whole {};
    whole.l_type = F_RDLCK;
    ::fcntl(directory, F_OFD_SETLK, &whole);
}

/// Returns true if another open descriptor of the directory is marked.
bool isMarkedAsUsed(int directory) {
    struct flock whole {};
    whole.l_type = F_WRLCK;
    return ::fcntl(directory, F_OFD_GETLK, &whole) == 0 && whole.l_type != F_UNLCK;
}

/// Returns true if the process holds a lock of flock() on one of the open files. The device is not compared: the one
/// in the list of locks differs from that of stat() on some file systems. If there is no list, believes the caller
/// that the process may hold the lock.
bool isLockedBy(long process, std::initializer_list<int> descriptors) {
    std::vector<std::string> inodes;
    for (const int descriptor : descriptors) {
        struct stat status {};
        if (fstat(descriptor, &status) == 0) {
            inodes.push_back(':' + std::to_string(status.st_ino));
        }
    }
    std::ifstream locks("/proc/locks");
    if (!locks) {
        return true;
    }
    for (std::string line; std::getline(locks, line);) {
        std::istringstream stream(line);
        std::array<std::string, 6> words; // NUMBER: FLOCK ADVISORY WRITE PROCESS MAJOR:MINOR:INODE
        for (auto& word : words) {
            stream >> word;
        }
        const auto isFile = [&](const std::string& inode) { return words[5].ends_with(inode); };
        if (words[1] == "FLOCK" && words[4] == std::to_string(process) && std::ranges::any_of(inodes, isFile)) {
            return true;
        }
    }
    return false;
}

/// Records in the state folder which process holds a lock. The record is for users only; every failure is ignored.
class HolderFile {
public:
    /// Opens the file to write it, or only an existing one to read it.
    enum class Purpose { Write, Read };

    HolderFile(const std::string& configDirectory, const std::string& stateDirectory, Purpose purpose)
        : file(open(stateDirectory, configDirectory, purpose)) {}

    int getDescriptor() const { return file.get(); }

    void write(std::string_view content) const {
        if (ftruncate(file.get(), 0) == 0 && !content.empty()) {
            [[maybe_unused]] const auto written = pwrite(file.get(), content.data(), content.size(), 0);
        }
    }

    /// Returns the id of the holder; 0 if it is unknown or belongs to a process that was killed.
    long read() const {
        std::array<char, 32> content{};
        const auto length = pread(file.get(), content.data(), content.size(), 0);
        long number = 0;
        if (length > 0) {
            std::from_chars(content.data(), content.data() + length, number);
        }
        const bool isAlive = number > 0 && (kill(static_cast<pid_t>(number), 0) == 0 || errno == EPERM);
        return isAlive ? number : 0;
    }

private:
    static int open(const std::string& stateDirectory, const std::string& configDirectory, Purpose purpose) {
        const auto path = stateDirectory + "/profile-" + digestDirectory(configDirectory) + ".lock";
        if (purpose == Purpose::Read) {
            return ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
        }
        KyrCoreUtils::FileUtils::createDirectory(stateDirectory);
        return ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    }

    const FileDescriptor file;
};

/// The open directory, which holds the lock.
class LockedDirectory final : public ProfileDirectoryLock {
public:
    LockedDirectory(const std::string& configDirectory, const std::string& stateDirectory)
        : ProfileDirectoryLock(configDirectory),
          created(KyrCoreUtils::FileUtils::createDirectory(configDirectory)),
          directory(open(getPath().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)),
          openError(directory.get() < 0 ? errno : 0),
          holderFile(configDirectory, stateDirectory, HolderFile::Purpose::Write) {
        if (created != 0 || openError != 0) {
            recordOpenFailure(created != 0 ? created : openError);
            return;
        }
        int error = lockAtOnce(directory.get());
        if (isUnsupported(error)) {
            error = lockAtOnce(holderFile.getDescriptor());
        }
        if (error == 0) {
            recordSuccess();
            markAsUsed(directory.get());
            holderFile.write(std::to_string(getpid()) + "\n");
            return;
        }
        if (error != EWOULDBLOCK) {
            recordLockFailure(error);
            return;
        }
        recordUse(holderFile.read());
    }

    ~LockedDirectory() override {
        if (isHeld()) {
            holderFile.write(""); // the next process that fails to lock must not report this one
        }
    }

    LockedDirectory(const LockedDirectory&) = delete;
    LockedDirectory& operator=(const LockedDirectory&) = delete;

private:
    const int created;
    const FileDescriptor directory;
    const int openError;
    const HolderFile holderFile;
};

} // namespace

std::unique_ptr<ProfileDirectoryLock> ProfileDirectoryLock::acquire(const std::string& configDirectory,
                                                                    const std::string& stateDirectory) {
    return std::make_unique<LockedDirectory>(configDirectory, stateDirectory);
}

ProfileDirectoryLock::Problem ProfileDirectoryLock::findProblem(const std::string& configDirectory,
                                                                const std::string& stateDirectory) {
    const FileDescriptor directory(::open(configDirectory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory.get() < 0) {
        return errno == ENOENT ? Problem() : makeOpenFailure(configDirectory, errno);
    }
    const HolderFile holderFile(configDirectory, stateDirectory, HolderFile::Purpose::Read);
    const auto recorded = holderFile.read();
    // The holder may have failed to set the mark. A killed holder's id may belong to another process now.
    const bool inUse = isMarkedAsUsed(directory.get()) ||
                       (recorded != 0 && isLockedBy(recorded, {directory.get(), holderFile.getDescriptor()}));
    return inUse ? makeUse(configDirectory, recorded) : Problem();
}

} // namespace zel::platform
