#include "LocalSocketAddress.h"
#include "kyr/HexDigits.h"

#include <kyr/LocalSocket.h>

#include <openssl/sha.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

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

/// Half of the digest distinguishes the profiles of one user and keeps the path short.
constexpr std::size_t digestBytes = 16;

std::string settledPath(const std::string& directory) {
    std::error_code failure;
    auto path = std::filesystem::weakly_canonical(std::filesystem::absolute(directory, failure), failure);
    if (failure) {
        return directory;
    }
    return (path.has_filename() ? path : path.parent_path()).string();
}

std::string socketName(const std::string& directory) {
    const auto path = settledPath(directory);
    std::array<unsigned char, SHA256_DIGEST_LENGTH> digest{};
    SHA256(reinterpret_cast<const unsigned char*>(path.data()), path.size(), digest.data());
    std::string name;
    for (std::size_t i = 0; i < digestBytes; ++i) {
        KyrCoreUtils::appendHex(name, digest[i]);
    }
    return name + ".sock";
}

std::string runtimeDirectory() {
    const char* const value = std::getenv("XDG_RUNTIME_DIR"); // NOLINT(concurrency-mt-unsafe): nobody sets it
    return value != nullptr && *value == '/' ? std::string(value) : std::string();
}

} // namespace

bool LocalSocket::isSupported() noexcept {
    return true;
}

std::string LocalSocket::getPathFor(const std::string& directory, const std::string& stateDirectory) {
    const auto name = socketName(directory);
    for (const auto& parent : {runtimeDirectory(), stateDirectory}) {
        if (parent.empty()) {
            continue;
        }
        auto path = parent + "/lumora/" + name;
        if (path.size() <= zel::platform::longestSocketPath) {
            return path;
        }
    }
    return {};
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
