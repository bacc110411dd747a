#include "FileDescriptor.h"
#include "LocalSocketAddress.h"

#include <kyr/FileUtils.h>
#include <kyr/LocalListener.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace KyrCoreUtils {

namespace {

constexpr int waitingConnections = 128;

/// Creates the folder with mode 0700, or checks that only this user has access to it. Returns 0 or an errno value.
int prepareFolder(const std::string& folder) {
    if (const int error = FileUtils::createDirectory(folder); error != 0) {
        return error;
    }
    struct stat status {};
    if (lstat(folder.c_str(), &status) != 0) {
        return errno;
    }
    if (!S_ISDIR(status.st_mode) || status.st_uid != geteuid()) {
        return EPERM;
    }
    if ((status.st_mode & (S_IRWXG | S_IRWXO)) != 0 && chmod(folder.c_str(), S_IRWXU) != 0) {
        return errno;
    }
    return 0;
}

bool isSocket(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0 && S_ISSOCK(status.st_mode);
}

/// Returns true if the path is a socket on which no process listens.
bool isDeadSocket(const std::string& path) {
    const zel::platform::FileDescriptor probe(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    return probe.get() >= 0 && isSocket(path) && zel::platform::connectTo(probe.get(), path) == ECONNREFUSED;
}

} // namespace

LocalListener::LocalListener(std::string socketPath) : path(std::move(socketPath)) {
    error = open();
    if (error != 0) {
        closeDescriptor();
    }
}

LocalListener::~LocalListener() {
    struct stat status {};
    if (file != 0 && lstat(path.c_str(), &status) == 0 && status.st_dev == device && status.st_ino == file) {
        unlink(path.c_str());
    }
    closeDescriptor();
}

int LocalListener::releaseDescriptor() noexcept {
    return std::exchange(descriptor, -1);
}

int LocalListener::open() {
    if (path.empty() || path.size() > zel::platform::longestSocketPath) {
        return ENAMETOOLONG;
    }
    if (const int failure = prepareFolder(FileUtils::getParentDirectory(path)); failure != 0) {
        return failure;
    }
    descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    // The mode of the open socket becomes that of its file, so the file never has another one.
    if (descriptor < 0 || fchmod(descriptor, S_IRUSR | S_IWUSR) != 0) {
        return errno;
    }
    int failure = bindTo(descriptor);
    if (failure == EADDRINUSE && isDeadSocket(path)) {
        unlink(path.c_str());
        failure = bindTo(descriptor);
    }
    if (failure != 0) {
        return failure;
    }
    remember();
    return listen(descriptor, waitingConnections) == 0 ? 0 : errno;
}

int LocalListener::bindTo(int socket) const {
    const auto address = zel::platform::makeSocketAddress(path);
    return bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 ? 0 : errno;
}

void LocalListener::remember() {
    struct stat status {};
    if (lstat(path.c_str(), &status) == 0) {
        device = status.st_dev;
        file = status.st_ino;
    }
}

void LocalListener::closeDescriptor() noexcept {
    if (descriptor >= 0) {
        close(std::exchange(descriptor, -1));
    }
}

} // namespace KyrCoreUtils
