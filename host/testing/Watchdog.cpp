#include "Watchdog.h"

#include <execinfo.h>
#include <semaphore.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>

namespace testing_host {

namespace {

constexpr int stackSignal = SIGUSR2;
constexpr int mostFrames = 64;
constexpr int secondsForOneStack = 2;

sem_t stackWritten;

/// The first call of backtrace() loads a library, which a signal handler must not do and a hang could prevent.
void prepareStacks() {
    void* frame = nullptr;
    backtrace(&frame, 1);
}

void writeStack(int) {
    std::array<void*, mostFrames> frames{};
    const int count = backtrace(frames.data(), mostFrames);
    backtrace_symbols_fd(frames.data(), count, STDERR_FILENO);
    // Separates the threads; a failure cannot be handled.
    [[maybe_unused]] const auto written = write(STDERR_FILENO, "\n", 1);
    sem_post(&stackWritten);
}

void writeAllStacks() {
    sem_init(&stackWritten, 0, 0);
    std::signal(stackSignal, writeStack);
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        const auto id = std::stol(task.path().filename().string());
        std::fprintf(stderr, "thread %ld:\n", id);
        syscall(SYS_tgkill, getpid(), id, stackSignal);
        // One thread at a time; skips a thread that does not respond.
        timespec deadline{};
        clock_gettime(CLOCK_REALTIME, &deadline);
        deadline.tv_sec += secondsForOneStack;
        sem_timedwait(&stackWritten, &deadline);
    }
}

} // namespace

Watchdog::Watchdog(std::chrono::seconds limit)
    : thread([this, limit] {
          prepareStacks();
          if (!done.waitFor(limit)) {
              std::fputs("The test hangs. The stacks of its threads:\n", stderr);
              writeAllStacks();
              std::abort();
          }
      }) {}

Watchdog::~Watchdog() {
    done.set();
    thread.join();
}

} // namespace testing_host
