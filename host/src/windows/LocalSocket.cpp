// This platform has no local sockets in the host yet. Services that need them are left out of the build.
#include <kyr/LocalConnection.h>
#include <kyr/LocalListener.h>
#include <kyr/LocalSocket.h>

#include <cerrno>
#include <utility>

namespace KyrCoreUtils {

bool LocalSocket::isSupported() noexcept {
    return false;
}

std::string LocalSocket::getPathFor(const std::string& /*directory*/, const std::string& /*stateDirectory*/) {
    return {};
}

std::vector<std::string> LocalSocket::getPathsFor(const std::string& /*directory*/,
                                                  const std::string& /*stateDirectory*/) {
    return {};
}

std::optional<LocalSocket::Peer> LocalSocket::getPeer(int /*descriptor*/) noexcept {
    return std::nullopt;
}

LocalListener::LocalListener(std::string socketPath) : path(std::move(socketPath)), error(ENOTSUP) {}

LocalListener::~LocalListener() = default;

int LocalListener::releaseDescriptor() noexcept {
    return -1;
}

LocalConnection::LocalConnection(const std::string& /*path*/) {}

LocalConnection::~LocalConnection() = default;

bool LocalConnection::sendLine(std::string_view /*text*/, std::chrono::milliseconds /*timeout*/) {
    return false;
}

LocalConnection::Received LocalConnection::receiveLine(std::string& /*line*/,
                                                       std::optional<std::chrono::milliseconds> /*timeout*/) {
    return Received::End;
}

bool LocalConnection::awaitEnd(std::chrono::milliseconds /*timeout*/) const {
    return true;
}

} // namespace KyrCoreUtils
