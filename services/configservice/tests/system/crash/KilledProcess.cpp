#include "KilledProcess.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace crash_test {

namespace {

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

[[noreturn]] void runChild(const std::function<void(int)>& work, int end) {
    try {
        work(end);
    } catch (...) {
        _exit(EXIT_FAILURE);
    }
    _exit(EXIT_SUCCESS);
}

} // namespace

KilledProcess::KilledProcess(const std::function<void(int)>& work) {
    int ends[2];
    if (pipe(ends) != 0) {
        fail("pipe");
    }
    child = fork();
    if (child < 0) {
        fail("fork");
    }
    if (child == 0) {
        close(ends[0]);
        runChild(work, ends[1]);
    }
    close(ends[1]);
    pipeEnd = ends[0];
}

KilledProcess::~KilledProcess() {
    end();
    close(pipeEnd);
}

std::vector<Report> KilledProcess::killAfter(std::size_t reports, std::chrono::microseconds delay) {
    while (received.size() < reports && receive()) {
    }
    receiveUntil(std::chrono::steady_clock::now() + delay);
    end();
    while (receive()) {
    }
    return std::move(received);
}

/// Returns false at the end of the pipe.
bool KilledProcess::receive() {
    Report report;
    if (read(pipeEnd, &report, sizeof(report)) != static_cast<ssize_t>(sizeof(report))) {
        return false;
    }
    received.push_back(report);
    return true;
}

void KilledProcess::receiveUntil(std::chrono::steady_clock::time_point deadline) {
    for (;;) {
        const auto left = deadline - std::chrono::steady_clock::now();
        const auto nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(left).count();
        if (nanoseconds <= 0) {
            return;
        }
        pollfd waiting{pipeEnd, POLLIN, 0};
        const timespec timeout{0, static_cast<long>(nanoseconds)};
        if (ppoll(&waiting, 1, &timeout, nullptr) == 1 && !receive()) {
            return;
        }
    }
}

void KilledProcess::end() {
    if (child == -1) {
        return;
    }
    kill(child, SIGKILL);
    int status = 0;
    while (waitpid(child, &status, 0) == -1 && errno == EINTR) {
    }
    killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
    child = -1;
}

} // namespace crash_test
