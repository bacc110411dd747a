#include "HttpThread.h"

#include <kyr/LockGuard.h>
#include <kyr/WaitLock.h>
#include <zel/ZelLog.h>

#include <algorithm>
#include <exception>
#include <new>
#include <utility>

namespace fleet {

namespace {

ZelLogger& threadLogger = ZelLogger_getLogger("Fleet-Thread");

/// One user's failure must not end the thread for the others.
template <class Step>
void runGuarded(const Step& step) {
    try {
        step();
    } catch (const std::exception& failure) {
        ZelLog(threadLogger, ZelLogLevel::Error, ZEL_HERE, std::string("A step has failed: ") + failure.what());
    }
}

} // namespace

HttpThread::HttpThread() : thread([this] { run(); }) {}

HttpThread::~HttpThread() {
    end();
}

void HttpThread::post(std::function<void()> task) {
    {
        const KyrCoreUtils::LockGuard lock(mutex);
        tasks.push_back(std::move(task));
    }
    wake();
}

void HttpThread::end() {
    ending = true;
    wake();
    if (thread.joinable()) {
        thread.join();
    }
}

std::uint64_t HttpThread::callAfter(std::chrono::milliseconds time, std::function<void()> task) {
    timers.emplace(++lastTimer, Timer{Clock::now() + time, std::move(task)});
    return lastTimer;
}

void HttpThread::cancel(std::uint64_t timer) {
    timers.erase(timer);
}

std::unique_ptr<HttpTransfer> HttpThread::start(const ZelUnified::FleetAccess& access, HttpRequest request,
                                                HttpHandler handler) {
    return std::make_unique<HttpTransfer>(*this, access, std::move(request), std::move(handler));
}

void HttpThread::add(HttpTransfer& transfer) {
    if (!multi) {
        createMulti();
    }
    if (curl().curl_multi_add_handle(multi.get(), transfer.getHandle()) != CURLM_OK) {
        throw std::bad_alloc();
    }
}

void HttpThread::createMulti() {
    MultiHandle created(curl().curl_multi_init());
    if (!created) {
        throw std::bad_alloc();
    }
    // A task posted before this has notified the condition variable only, so the first poll must return at once.
    curl().curl_multi_wakeup(created.get());
    const KyrCoreUtils::LockGuard lock(mutex);
    multi = std::move(created);
}

void HttpThread::remove(HttpTransfer& transfer) {
    ready.erase(&transfer);
    curl().curl_multi_remove_handle(multi.get(), transfer.getHandle());
}

void HttpThread::run() {
    while (!ending) {
        runGuarded([this] { runOnce(); });
    }
}

void HttpThread::runOnce() {
    runTasks();
    runTimers();
    if (multi) {
        runTransfers();
    } else {
        wait();
    }
}

void HttpThread::runTransfers() {
    int running = 0;
    auto code = curl().curl_multi_perform(multi.get(), &running);
    deliver();
    if (code == CURLM_OK && !ending) {
        code = curl().curl_multi_poll(multi.get(), nullptr, 0, getPollTime(), nullptr);
    }
    check(code);
}

void HttpThread::wait() {
    KyrCoreUtils::WaitLock lock(mutex);
    woken.wait_for(lock.get(), std::chrono::milliseconds(getPollTime()),
                   [this]() LUMORA_REQUIRES(mutex) { return ending || !tasks.empty(); });
}

void HttpThread::wake() {
    const KyrCoreUtils::LockGuard lock(mutex);
    if (multi) {
        curl().curl_multi_wakeup(multi.get());
    } else {
        woken.notify_one();
    }
}

void HttpThread::check(CURLMcode code) {
    if (code != CURLM_OK) {
        if (code != lastCode) {
            ZelLog(threadLogger, ZelLogLevel::Error, ZEL_HERE,
                   std::string("libcurl has failed: ") + curl().curl_multi_strerror(code));
        }
        // The cause may pass; until then the loop must not occupy a processor.
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    lastCode = code;
}

void HttpThread::runTasks() {
    std::vector<std::function<void()>> posted;
    {
        const KyrCoreUtils::LockGuard lock(mutex);
        posted.swap(tasks);
    }
    for (const auto& task : posted) {
        runGuarded(task);
    }
}

void HttpThread::runTimers() {
    const auto now = Clock::now();
    std::vector<std::uint64_t> due;
    for (const auto& [number, timer] : timers) {
        if (timer.due <= now) {
            due.push_back(number);
        }
    }
    for (const auto number : due) {
        // An earlier task may have cancelled this timer.
        if (const auto timer = timers.extract(number)) {
            runGuarded(timer.mapped().task);
        }
    }
}

void HttpThread::deliver() {
    int left = 0;
    while (const auto* message = curl().curl_multi_info_read(multi.get(), &left)) {
        void* self = nullptr;
        curl().curl_easy_getinfo(message->easy_handle, CURLINFO_PRIVATE, &self);
        auto& transfer = *static_cast<HttpTransfer*>(self);
        transfer.setEnded(message->data.result);
        markReady(transfer);
    }
    // A handler may remove transfers, so each step takes the first one that is left. New ones deliver later.
    auto batch = ready;
    for (auto* const transfer : batch) {
        if (ready.erase(transfer) > 0) {
            runGuarded([transfer] { transfer->deliver(); });
        }
    }
}

int HttpThread::getPollTime() const {
    using std::chrono::milliseconds;
    if (!ready.empty()) {
        return 0;
    }
    auto time = milliseconds(60000);
    for (const auto& [number, timer] : timers) {
        time = std::min(time, std::chrono::ceil<milliseconds>(timer.due - Clock::now()));
    }
    return static_cast<int>(std::max(time, milliseconds(0)).count());
}

} // namespace fleet
