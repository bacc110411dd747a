#include <kyr/EndSignals.h>

#include <io.h>
#include <signal.h>
#include <stdio.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <climits>
#include <thread>

namespace KyrCoreUtils {

namespace {

constexpr std::array endSignals{SIGINT, SIGTERM};

// Global because a signal handler can access nothing else.
std::atomic<int> received = 0;

extern "C" void onEndSignal(int number) {
    int none = 0;
    if (!received.compare_exchange_strong(none, number)) {
        signal(number, SIG_DFL);
        raise(number);
        return;
    }
    signal(number, &onEndSignal); // this platform restores the default action before the call
}

} // namespace

EndSignals::EndSignals() {
    for (const int number : endSignals) {
        if (signal(number, &onEndSignal) == SIG_IGN) {
            signal(number, SIG_IGN);
        }
    }
}

EndSignals::~EndSignals() {
    for (const int number : endSignals) {
        signal(number, SIG_DFL);
    }
    received = 0;
}

int EndSignals::getReceived() noexcept {
    return received;
}

std::size_t EndSignals::readInput(char* buffer, std::size_t room) noexcept {
    if (getReceived() != 0) {
        return 0;
    }
    const auto length = _read(_fileno(stdin), buffer, static_cast<unsigned>(std::min<std::size_t>(room, INT_MAX)));
    return length > 0 && getReceived() == 0 ? static_cast<std::size_t>(length) : 0;
}

bool EndSignals::waitFor(std::chrono::milliseconds time) noexcept {
    const auto end = std::chrono::steady_clock::now() + time;
    while (getReceived() == 0 && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20)); // the handler of a signal can wake nobody
    }
    return getReceived() != 0;
}

void EndSignals::wait() noexcept {
    while (!waitFor(std::chrono::seconds(1))) {
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
