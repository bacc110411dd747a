#include "DirectoryDigest.h"
#include "LocalSocketAddress.h"

#include <kyr/LocalSocket.h>

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

namespace zel::platform {

int connectTo(int descriptor, const std::string& path) {
    if (path.size() > longestSocketPath) {
        return ENAMETOOLONG;
    }
    const auto address = makeSocketAddress(path);
    int result = 0;
    do {
        result = ::connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
    } while (result != 0 && errno == EINTR);
    return result == 0 ? 0 : errno;
}

} // namespace zel::platform

namespace KyrCoreUtils {

namespace {

std::string runtimeDirectory() {
    const char* const value = std::getenv("XDG_RUNTIME_DIR"); // NOLINT(concurrency-mt-unsafe): nobody sets it
    return value != nullptr && *value == '/' ? std::string(value) : std::string();
}

} // namespace

bool LocalSocket::isSupported() noexcept {
    return true;
}

std::string LocalSocket::getPathFor(const std::string& directory, const std::string& stateDirectory) {
    auto paths = getPathsFor(directory, stateDirectory);
    return paths.empty() ? std::string() : std::move(paths.front());
}

std::vector<std::string> LocalSocket::getPathsFor(const std::string& directory, const std::string& stateDirectory) {
    const auto name = zel::platform::digestDirectory(directory) + ".sock";
    std::vector<std::string> paths;
    for (const auto& parent : {runtimeDirectory(), stateDirectory}) {
        auto path = parent + "/lumora/" + name;
        if (!parent.empty() && path.size() <= zel::platform::longestSocketPath) {
            paths.push_back(std::move(path));
        }
    }
    return paths;
}

std::optional<LocalSocket::Peer> LocalSocket::getPeer(int descriptor) noexcept {
    ucred credentials{};
    socklen_t length = sizeof(credentials);
    if (getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &credentials, &length) != 0) {
        return std::nullopt;
    }
    return Peer{credentials.pid, credentials.uid == geteuid()};
}

} // namespace KyrCoreUtils
