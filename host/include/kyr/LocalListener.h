#pragma once

#include <zel/HostExport.h>

#include <cstdint>
#include <string>

namespace KyrCoreUtils {

/// A listening local socket. Its folder has mode 0700 and the socket mode 0600. The destructor removes the socket. Any
/// thread.
class LUMORA_HOST_API LocalListener {
public:
    /// Creates the folder and the socket. A socket on which nobody listens is replaced, so the caller must hold the
    /// lock of the profile: two processes that replace one socket at the same time would disconnect each other. Fails
    /// if the folder belongs to another user, or if another process listens.
    explicit LocalListener(std::string socketPath);
    ~LocalListener();
    LocalListener(const LocalListener&) = delete;
    LocalListener& operator=(const LocalListener&) = delete;

    /// Returns 0, or the errno value of the failure.
    int getError() const noexcept { return error; }
    /// Returns the listening descriptor, which the caller owns from now on. Call it once, and only without an error.
    int releaseDescriptor() noexcept;

private:
    int open();
    int bindTo(int socket) const;
    void remember();
    void closeDescriptor() noexcept;

    const std::string path;
    int descriptor = -1;
    int error = 0;
    /// The identity of the created file: another process may have replaced it before this one removes it.
    std::uint64_t device = 0;
    std::uint64_t file = 0;
};

} // namespace KyrCoreUtils
