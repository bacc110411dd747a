#include <kyr/StandardStreams.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace KyrCoreUtils {

namespace {

int descriptorOf(StandardStreams::Stream stream) {
    return stream == StandardStreams::Stream::Output ? STDOUT_FILENO : STDERR_FILENO;
}

bool isClosed(int descriptor) {
    return ::fcntl(descriptor, F_GETFD) < 0 && errno == EBADF;
}

/// Opens a closed standard stream. A new file gets the lowest free number, so this one gets `descriptor` if the streams
/// are handled in order.
void occupyIfClosed(int descriptor, int access) {
    if (isClosed(descriptor)) {
        [[maybe_unused]] const int opened = ::open("/dev/null", access);
    }
}

/// Needed because another program that shares the terminal or the pipe may have made it non-blocking.
void waitUntilWritable(int descriptor) {
    pollfd event{descriptor, POLLOUT, 0};
    ::poll(&event, 1, -1);
}

} // namespace

void StandardStreams::prepare() noexcept {
    std::signal(SIGPIPE, SIG_IGN);
    occupyIfClosed(STDIN_FILENO, O_RDONLY);
    occupyIfClosed(STDOUT_FILENO, O_RDONLY); // read-only, so that writes fail
    occupyIfClosed(STDERR_FILENO, O_WRONLY);
}

int StandardStreams::write(Stream stream, std::string_view text) noexcept {
    const int descriptor = descriptorOf(stream);
    while (!text.empty()) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            waitUntilWritable(descriptor);
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

int StandardStreams::flush(Stream stream) noexcept {
    const int copy = ::fcntl(descriptorOf(stream), F_DUPFD_CLOEXEC, 0);
    return copy < 0 || (::close(copy) < 0 && errno != EINTR) ? errno : 0;
}

bool StandardStreams::isTerminal(Stream stream) noexcept {
    return ::isatty(descriptorOf(stream)) != 0;
}

bool StandardStreams::isPrivateFile(Stream stream) noexcept {
    struct stat status {};
    return ::fstat(descriptorOf(stream), &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid() &&
           (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

std::size_t StandardStreams::getColumns(Stream stream) noexcept {
    winsize size{};
    return ::ioctl(descriptorOf(stream), TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

} // namespace KyrCoreUtils
