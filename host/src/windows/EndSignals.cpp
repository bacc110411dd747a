#include "SystemHandle.h"

#include <kyr/EndSignals.h>

#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <limits>

namespace KyrCoreUtils {

namespace {

using zel::platform::SystemHandle;

constexpr std::array endSignals{SIGINT, SIGTERM};

/// The system ends the process after this time in any case when its console closes.
constexpr DWORD timeToEnd = 5000;

// Global because a handler of the console can access nothing else.
std::atomic<int> received = 0;
std::atomic<HANDLE> arrived = nullptr;
std::atomic<HANDLE> ended = nullptr;
std::atomic<HANDLE> mainThread = nullptr;

/// Returns false if another signal arrived before.
bool record(int number) noexcept {
    int none = 0;
    if (!received.compare_exchange_strong(none, number)) {
        return false;
    }
    ::SetEvent(arrived);
    ::CancelSynchronousIo(mainThread); // wakes the thread that reads the input
    return true;
}

/// Runs on a thread that the system creates. Without an answer the system ends the process.
BOOL WINAPI onConsoleEvent(DWORD event) {
    const bool isInterrupt = event == CTRL_C_EVENT;
    if (!record(isInterrupt ? SIGINT : SIGTERM)) {
        return FALSE;
    }
    if (!isInterrupt && event != CTRL_BREAK_EVENT) {
        // The system ends the process as soon as this function returns.
        ::WaitForSingleObject(ended, timeToEnd);
    }
    return TRUE;
}

extern "C" void onEndSignal(int number) {
    if (!record(number)) {
        std::signal(number, SIG_DFL);
        std::raise(number);
        return;
    }
    std::signal(number, &onEndSignal); // this platform restores the default action before the call
}

void closeLater(std::atomic<HANDLE>& handle) noexcept {
    const SystemHandle closing(handle.exchange(nullptr));
}

} // namespace

EndSignals::EndSignals() {
    arrived = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    ended = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    HANDLE thread = nullptr;
    ::DuplicateHandle(::GetCurrentProcess(), ::GetCurrentThread(), ::GetCurrentProcess(), &thread, 0, FALSE,
                      DUPLICATE_SAME_ACCESS);
    mainThread = thread;
    ::SetConsoleCtrlHandler(&onConsoleEvent, TRUE);
    for (const int number : endSignals) {
        if (std::signal(number, &onEndSignal) == SIG_IGN) {
            std::signal(number, SIG_IGN);
        }
    }
}

EndSignals::~EndSignals() {
    for (const int number : endSignals) {
        std::signal(number, SIG_DFL);
    }
    ::SetConsoleCtrlHandler(&onConsoleEvent, FALSE);
    ::SetEvent(ended);
    closeLater(mainThread);
    closeLater(arrived);
    closeLater(ended);
    received = 0;
}

int EndSignals::getReceived() noexcept {
    return received;
}

std::size_t EndSignals::readInput(char* buffer, std::size_t room) noexcept {
    if (getReceived() != 0) {
        return 0;
    }
    DWORD length = 0;
    const auto most = static_cast<DWORD>(std::min<std::size_t>(room, std::numeric_limits<DWORD>::max()));
    const bool isRead = ::ReadFile(::GetStdHandle(STD_INPUT_HANDLE), buffer, most, &length, nullptr) != FALSE;
    return isRead && getReceived() == 0 ? length : 0;
}

bool EndSignals::waitFor(std::chrono::milliseconds time) noexcept {
    ::WaitForSingleObject(arrived, static_cast<DWORD>(time.count()));
    return getReceived() != 0;
}

void EndSignals::wait() noexcept {
    ::WaitForSingleObject(arrived, INFINITE);
}

void EndSignals::acknowledge() noexcept {
    received = 0;
}

void EndSignals::endProcess() noexcept {
    const int number = getReceived();
    if (number == 0) {
        return;
    }
    ::SetEvent(ended);
    // The status with which the system itself ends an interrupted process.
    ::ExitProcess(number == SIGINT ? STATUS_CONTROL_C_EXIT : static_cast<UINT>(number));
}

} // namespace KyrCoreUtils
