#include "EndSignalPipe.h"
#include "LocalSocketAddress.h"

#include <kyr/EndSignals.h>
#include <kyr/LocalConnection.h>
#include <kyr/LocalSocket.h>

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace KyrCoreUtils {

namespace {

using Clock = std::chrono::steady_clock;

/// Returns the milliseconds until the deadline for poll(); -1 without a deadline.
int timeLeft(const std::optional<Clock::time_point>& deadline) {
    if (!deadline) {
        return -1;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - Clock::now()).count();
    return left < 0 ? 0 : static_cast<int>(left);
}

} // namespace

LocalConnection::LocalConnection(const std::string& path) : descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    if (descriptor < 0) {
        return;
    }
    const bool connected = zel::platform::connectTo(descriptor, path) == 0;
    const auto listener = connected ? LocalSocket::getPeer(descriptor) : std::nullopt;
    if (listener && listener->isSameUser) {
        peer = listener->process;
        return;
    }
    close(descriptor);
    descriptor = -1;
}

LocalConnection::~LocalConnection() {
    if (descriptor >= 0) {
        close(descriptor);
    }
}

bool LocalConnection::sendLine(std::string_view text, std::chrono::milliseconds timeout) {
    std::string bytes(text);
    bytes += '\n';
    auto deadline = Clock::now() + timeout;
    std::size_t sent = 0;
    while (descriptor >= 0 && sent < bytes.size()) {
        const auto length = send(descriptor, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (length > 0) {
            sent += static_cast<std::size_t>(length);
            deadline = Clock::now() + timeout;
            continue;
        }
        if (errno != EAGAIN && errno != EINTR) {
            return false;
        }
        pollfd target{descriptor, POLLOUT, 0};
        if (poll(&target, 1, timeLeft(deadline)) == 0) {
            return false;
        }
    }
    return descriptor >= 0;
}

LocalConnection::Received LocalConnection::receiveLine(std::string& line,
                                                       std::optional<std::chrono::milliseconds> timeout) {
    std::optional<Clock::time_point> deadline;
    if (timeout) {
        deadline = Clock::now() + *timeout;
    }
    while (descriptor >= 0) {
        if (extractLine(line)) {
            return Received::Line;
        }
        std::array<pollfd, 2> sources{pollfd{descriptor, POLLIN, 0},
                                      pollfd{zel::platform::getEndSignalPipe(), POLLIN, 0}};
        const int ready = poll(sources.data(), sources.size(), timeLeft(deadline));
        if (EndSignals::getReceived() != 0) {
            return Received::Signal;
        }
        if (ready == 0) {
            return Received::Timeout;
        }
        if (sources[0].revents == 0) {
            continue; // interrupted
        }
        std::array<char, 65536> bytes{};
        const auto length = read(descriptor, bytes.data(), bytes.size());
        if (length > 0) {
            buffered.append(bytes.data(), static_cast<std::size_t>(length));
        } else if (length == 0 || errno != EINTR) {
            return Received::End;
        }
    }
    return Received::End;
}

bool LocalConnection::awaitEnd(std::chrono::milliseconds timeout) const {
    const auto deadline = Clock::now() + timeout;
    pollfd source{descriptor, 0, 0}; // the end is always reported
    while (Clock::now() < deadline) {
        if (poll(&source, 1, timeLeft(deadline)) > 0) {
            return true;
        }
    }
    return false;
}

bool LocalConnection::extractLine(std::string& line) {
    const auto end = buffered.find('\n', searched);
    if (end == std::string::npos) {
        searched = buffered.size();
        return false;
    }
    line.assign(buffered, 0, end);
    buffered.erase(0, end + 1);
    searched = 0;
    return true;
}

} // namespace KyrCoreUtils
