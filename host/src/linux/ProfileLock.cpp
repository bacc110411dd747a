#include "kyr/HexDigits.h"

#include <kyr/FileUtils.h>
#include <unified/ProfileLock.h>

#include <fcntl.h>
#include <openssl/sha.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace ZelUnified {

namespace {

/// One spelling of the directory for all processes, whether it exists yet or not.
std::string settledPath(const std::string& directory) {
    std::error_code failure;
    auto path = std::filesystem::weakly_canonical(std::filesystem::absolute(directory, failure), failure);
    if (failure) {
        return directory;
    }
    return (path.has_filename() ? path : path.parent_path()).string();
}

/// A digest, since a path may be longer than a file's name.
std::string lockFileName(const std::string& path) {
    std::array<unsigned char, SHA256_DIGEST_LENGTH> digest{};
    SHA256(reinterpret_cast<const unsigned char*>(path.data()), path.size(), digest.data());
    std::string name = "profile-";
    for (std::size_t i = 0; i < digest.size() / 2; ++i) {
        KyrCoreUtils::appendHex(name, digest[i]);
    }
    return name + ".lock";
}

std::string describe(int error) {
    return std::error_code(error, std::generic_category()).message();
}

} // namespace

/// The open file, and with it the lock.
class ProfileLock::LockFile {
public:
    LockFile(const std::string& configDirectory, const std::string& stateDirectory) {
        if (const int error = KyrCoreUtils::FileUtils::createDirectory(stateDirectory); error != 0) {
            problem = "The state folder " + stateDirectory + " can't be made: " + describe(error);
            return;
        }
        const auto path = stateDirectory + "/" + lockFileName(settledPath(configDirectory));
        descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
        if (descriptor < 0) {
            problem = "The lock file " + path + " can't be opened: " + describe(errno);
            return;
        }
        if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
            held = true;
            write(std::to_string(getpid()) + "\n");
            return;
        }
        if (errno != EWOULDBLOCK) {
            problem = "The lock file " + path + " can't be locked: " + describe(errno);
            return;
        }
        holder = readHolder();
        problem = "The profile " + configDirectory + " is in use by " +
                  (holder != 0 ? "process " + std::to_string(holder) : std::string("another process")) + ".";
    }

    ~LockFile() {
        if (held) {
            write(""); // whoever is refused next must not be told of this process
        }
        if (descriptor >= 0) {
            close(descriptor);
        }
    }

    LockFile(const LockFile&) = delete;
    LockFile& operator=(const LockFile&) = delete;

    bool held = false;
    long holder = 0;
    std::string problem;

private:
    /// The content only tells the user who it is; the lock stands without it.
    void write(std::string_view content) const {
        if (ftruncate(descriptor, 0) == 0 && !content.empty()) {
            [[maybe_unused]] const auto written = pwrite(descriptor, content.data(), content.size(), 0);
        }
    }

    long readHolder() const {
        std::array<char, 32> content{};
        const auto length = pread(descriptor, content.data(), content.size(), 0);
        long number = 0;
        if (length > 0) {
            std::from_chars(content.data(), content.data() + length, number);
        }
        return number;
    }

    int descriptor = -1;
};

ProfileLock::ProfileLock(const std::string& configDirectory, const std::string& stateDirectory)
    : file(std::make_unique<LockFile>(configDirectory, stateDirectory)) {}

ProfileLock::~ProfileLock() = default;

bool ProfileLock::isHeld() const noexcept {
    return file->held;
}

long ProfileLock::getHolder() const noexcept {
    return file->holder;
}

const std::string& ProfileLock::getProblem() const noexcept {
    return file->problem;
}

} // namespace ZelUnified
