#pragma once

#include <zel/HostExport.h>

#include <optional>
#include <string>
#include <vector>

namespace KyrCoreUtils {

/// Stream sockets between processes of one user on one machine. Where the platform has none, every operation fails and
/// isSupported() returns false. Never throws except for a failed allocation. Any thread.
class LUMORA_HOST_API LocalSocket {
public:
    static bool isSupported() noexcept;

    /// Returns the path of the socket of a directory, or "" if there is no usable one. All processes of the user get
    /// the same path for all spellings of the directory. The socket is in the folder "lumora" of the runtime directory
    /// ($XDG_RUNTIME_DIR). Without a runtime directory, or if the path would be too long for a socket, it is in the
    /// folder "lumora" of `stateDirectory`. Creates nothing.
    static std::string getPathFor(const std::string& directory, const std::string& stateDirectory);

    /// Returns all paths that getPathFor() may return, its own one first. A process with another runtime directory, or
    /// without one, listens on another path than this process would.
    static std::vector<std::string> getPathsFor(const std::string& directory, const std::string& stateDirectory);

    /// The process at the other end of a connection, as the system reports it.
    struct Peer {
        long process = 0;
        bool isSameUser = false;
    };
    /// Returns nullopt if the descriptor is no connected local socket.
    static std::optional<Peer> getPeer(int descriptor) noexcept;
};

} // namespace KyrCoreUtils
