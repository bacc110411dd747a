#pragma once

#include "HttpTransfer.h"

#include <kyr/AnnotatedMutex.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <thread>
#include <vector>

namespace fleet {

/// A thread that runs requests, timers and posted tasks. Several users may share one. What a task, timer or handler
/// throws is logged, and the thread goes on. It loads libcurl for the first request.
class HttpThread {
public:
    using Clock = std::chrono::steady_clock;

    HttpThread();
    /// Calls end().
    ~HttpThread();
    HttpThread(const HttpThread&) = delete;
    HttpThread& operator=(const HttpThread&) = delete;

    /// Runs the task on the thread. Any thread. Drops it after end().
    void post(std::function<void()> task);
    /// Ends the thread without waiting for requests. No task, timer or handler runs after the call. Objects with
    /// transfers are destroyed after this call and before the HttpThread. Not on the thread itself.
    void end();

    // The following are called on the thread, or after end().

    /// Calls `task` once, after this time.
    std::uint64_t callAfter(std::chrono::milliseconds time, std::function<void()> task);
    /// Ignores a timer that has run.
    void cancel(std::uint64_t timer);
    /// Throws std::runtime_error if libcurl cannot be loaded.
    std::unique_ptr<HttpTransfer> start(const ZelUnified::FleetAccess& access, HttpRequest request,
                                        HttpHandler handler);

    // For HttpTransfer.

    void add(HttpTransfer& transfer);
    void remove(HttpTransfer& transfer);
    /// The transfer has data for its handler.
    void markReady(HttpTransfer& transfer) { ready.insert(&transfer); }

private:
    struct Timer {
        Clock::time_point due;
        std::function<void()> task;
    };
    struct MultiDeleter {
        void operator()(CURLM* multiHandle) const { curl().curl_multi_cleanup(multiHandle); }
    };
    using MultiHandle = std::unique_ptr<CURLM, MultiDeleter>;

    void run();
    void runOnce();
    /// Runs the requests, and waits for the network, a task, a timer or the end.
    void runTransfers();
    /// Waits for a task, a timer or the end. Only while there is no `multi`.
    void wait();
    /// Ends a wait. Any thread.
    void wake();
    void createMulti();
    /// Logs a failure of libcurl, and waits a moment.
    void check(CURLMcode code);
    void runTasks();
    void runTimers();
    void deliver();
    int getPollTime() const;

    KyrCoreUtils::AnnotatedMutex<> mutex;
    std::condition_variable woken; ///< Only while there is no `multi`.
    std::vector<std::function<void()>> tasks LUMORA_GUARDED_BY(mutex);
    /// Null until the first request. Written by the thread under the mutex; the thread reads it without, others with
    /// it.
    MultiHandle multi;
    std::atomic<bool> ending = false;
    std::map<std::uint64_t, Timer> timers; ///< A watch has three at most.
    std::uint64_t lastTimer = 0;
    CURLMcode lastCode = CURLM_OK;
    std::set<HttpTransfer*> ready; ///< Transfers that have something to deliver.
    std::thread thread;            ///< The last member, because it uses the others.
};

} // namespace fleet
