#include <kyr/HiddenInput.h>

#include <termios.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstddef>

namespace KyrCoreUtils {

namespace {

constexpr std::array signals{SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP};

// Global because a signal handler can access nothing else.
std::atomic<bool> hidden = false;
termios usualMode{};
termios hiddenMode{};
std::array<struct sigaction, signals.size()> actionsBeforeHiding{};

extern "C" void onSignalWhileHidden(int number);

std::size_t indexOf(int number) noexcept {
    std::size_t index = 0;
    while (signals[index] != number) {
        ++index;
    }
    return index;
}

/// Handles the signal unless the process ignores it.
void handle(std::size_t index) noexcept {
    sigaction(signals[index], nullptr, &actionsBeforeHiding[index]);
    if (actionsBeforeHiding[index].sa_handler == SIG_IGN) {
        return;
    }
    struct sigaction action {};
    action.sa_handler = &onSignalWhileHidden;
    sigemptyset(&action.sa_mask);
    sigaction(signals[index], &action, nullptr);
}

void setMode(const termios& mode) noexcept {
    while (tcsetattr(STDIN_FILENO, TCSANOW, &mode) != 0 && errno == EINTR) {
    }
}

/// Lets the signal take the effect that it has without this handler.
void deliver(int number) noexcept {
    sigaction(number, &actionsBeforeHiding[indexOf(number)], nullptr);
    sigset_t delivered;
    sigemptyset(&delivered);
    sigaddset(&delivered, number);
    sigset_t before;
    raise(number);
    pthread_sigmask(SIG_UNBLOCK, &delivered, &before);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

/// Calls only async-signal-safe functions.
extern "C" void onSignalWhileHidden(int number) {
    const int error = errno;
    setMode(usualMode);
    deliver(number);
    if (number == SIGTSTP) { // the process has continued
        handle(indexOf(number));
        setMode(hiddenMode);
    }
    errno = error;
}

} // namespace

HiddenInput::HiddenInput() noexcept {
    if (tcgetattr(STDIN_FILENO, &usualMode) != 0) {
        return;
    }
    hiddenMode = usualMode;
    hiddenMode.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    hiddenMode.c_lflag |= ECHONL; // the line feed is shown
    hidden = true;
    for (std::size_t i = 0; i < signals.size(); ++i) {
        handle(i);
    }
    setMode(hiddenMode);
}

HiddenInput::~HiddenInput() {
    if (!hidden.exchange(false)) {
        return;
    }
    setMode(usualMode);
    for (std::size_t i = 0; i < signals.size(); ++i) {
        sigaction(signals[i], &actionsBeforeHiding[i], nullptr);
    }
}

} // namespace KyrCoreUtils
