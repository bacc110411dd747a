#include "EndSignalPipe.h"

#include <kyr/EndSignals.h>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>

namespace KyrCoreUtils {

namespace {

constexpr std::array endSignals{SIGINT, SIGTERM, SIGHUP};

// Global because a signal handler can access nothing else.
std::atomic<int> received = 0;
std::atomic<int> wakeWriter = -1;
std::atomic<int> wakeReader = -1;
std::array<struct sigaction, endSignals.size()> previousActions{};

void openWakePipe() noexcept {
    std::array<int, 2> ends{-1, -1};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) == 0) {
        wakeReader = ends[0];
        wakeWriter = ends[1];
    }
}

/// Calls only async-signal-safe functions.
extern "C" void onEndSignal(int number) {
    int none = 0;
    if (!received.compare_exchange_strong(none, number)) {
        signal(number, SIG_DFL);
        raise(number); // delivered when this function returns
        return;
    }
    const int error = errno;
    const char byte = 0;
    [[maybe_unused]] const auto written = write(wakeWriter, &byte, 1);
    errno = error;
}

} // namespace

EndSignals::EndSignals() {
    openWakePipe();
    struct sigaction action {};
    action.sa_handler = &onEndSignal;
    action.sa_flags = SA_RESTART; // restarts an interrupted write of a command's output
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < endSignals.size(); ++i) {
        sigaction(endSignals[i], nullptr, &previousActions[i]);
        if (previousActions[i].sa_handler != SIG_IGN) {
            sigaction(endSignals[i], &action, nullptr);
        }
    }
}

EndSignals::~EndSignals() {
    for (std::size_t i = 0; i < endSignals.size(); ++i) {
        sigaction(endSignals[i], &previousActions[i], nullptr);
    }
    close(wakeReader.exchange(-1));
    close(wakeWriter.exchange(-1));
    received = 0;
}

int EndSignals::getReceived() noexcept {
    return received;
}

std::size_t EndSignals::readInput(char* buffer, std::size_t room) noexcept {
    std::array<pollfd, 2> sources{pollfd{STDIN_FILENO, POLLIN, 0}, pollfd{wakeReader, POLLIN, 0}};
    while (getReceived() == 0) {
        if (poll(sources.data(), sources.size(), -1) < 0) {
            if (errno == EINTR) {
                continue;
            }
            return 0;
        }
        if (sources[0].revents == 0) {
            continue;
        }
        const auto length = read(STDIN_FILENO, buffer, room);
        if (length >= 0 || errno != EINTR) {
            return length > 0 ? static_cast<std::size_t>(length) : 0;
        }
    }
    return 0;
}

bool EndSignals::waitFor(std::chrono::milliseconds time) noexcept {
    pollfd source{wakeReader, POLLIN, 0};
    if (getReceived() == 0) {
        poll(&source, 1, static_cast<int>(time.count())); // an interruption is a signal, or the caller waits again
    }
    return getReceived() != 0;
}

void EndSignals::wait() noexcept {
    constexpr std::chrono::hours waitTime(1); // poll() is woken by the signal; the length does not matter
    while (!waitFor(waitTime)) {
    }
}

void EndSignals::acknowledge() noexcept {
    received = 0;
}

void EndSignals::endProcess() noexcept {
    if (const int number = getReceived(); number != 0) {
        signal(number, SIG_DFL);
        raise(number);
    }
}

} // namespace KyrCoreUtils

int zel::platform::getEndSignalPipe() noexcept {
    return KyrCoreUtils::wakeReader;
}
