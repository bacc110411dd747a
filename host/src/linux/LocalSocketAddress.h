#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <cstring>
#include <string>

namespace zel::platform {

/// The longest path that a socket address holds, without its terminator.
inline constexpr std::size_t longestSocketPath = sizeof(sockaddr_un::sun_path) - 1;

/// Returns the address of the path, which must not be longer than `longestSocketPath`.
inline sockaddr_un makeSocketAddress(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return address;
}

/// Connects the socket to the path. Returns 0 or an errno value.
int connectTo(int descriptor, const std::string& path);

} // namespace zel::platform
