#pragma once

#include "FleetSettings.h"
#include "FleetTable.h"
#include "HttpThread.h"

#include <ConfigMap.h>

#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <random>
#include <string>

namespace fleet {

/// The times of a watch.
struct FleetTimes {
    /// For a complete answer, and for the confirmation of a watch. For the answer with all settings, the longest
    /// silence.
    std::chrono::milliseconds answer{10000};
    std::chrono::milliseconds probe{30000};    ///< Between two questions whether the member still answers.
    std::chrono::milliseconds firstDelay{500}; ///< Before the first retry; doubled for each further one.
    std::chrono::milliseconds longestDelay{60000};
    std::chrono::milliseconds gathering{20};         ///< From a change until it is passed on, with those after it.
    std::chrono::milliseconds overfullDelay{600000}; ///< Before the next attempt if the settings exceed the limits.
};

/// Follows the settings of one client in a cluster: reads all of them at one revision, then watches from the next one.
/// After each failure it does both again, with another member, so it needs no rule for a compacted revision or for a
/// cluster that was restored.
///
/// Everything runs on the HttpThread's thread. End that thread before destroying the watch.
class FleetWatch {
public:
    /// Receives the settings, on the HttpThread's thread: after the first read and after each change.
    using Listener = std::function<void(ZelUnified::ConfigMap settings)>;

    /// Called on the HttpThread's thread before each attempt to connect and after each probe: regularly, whether or not
    /// the cluster answers.
    using AttemptListener = std::function<void()>;

    FleetWatch(HttpThread& httpThread, FleetSettings clientSettings, FleetTimes clientTimes, Listener settingsListener,
               AttemptListener listenerOfAttempts = {});
    ~FleetWatch();
    FleetWatch(const FleetWatch&) = delete;
    FleetWatch& operator=(const FleetWatch&) = delete;

    /// Starts to follow the cluster. Returns immediately. Any thread.
    void start();

private:
    /// The limits of one request; 0 for none.
    struct TimeLimits {
        std::chrono::milliseconds total{0};
        std::chrono::seconds silence{0};
    };

    /// What the step throws is a failure like one of the cluster.
    template <class Step>
    void attempt(const Step& step) {
        try {
            step();
        } catch (const std::exception& failure) {
            fail(failure.what());
        }
    }

    void connect();
    void authenticate();
    void read();
    void watch(std::int64_t revision);
    void receiveToken(const HttpResult& result);
    void receiveSnapshot(const HttpResult& result);
    void receiveEvents(std::string_view data);
    void receive(const etcd::WatchReply& reply);
    void probe();
    void planProbe();
    void publish();
    void planPublication();
    void fail(const std::string& reason);
    void failAndRetry(const std::string& reason, std::chrono::milliseconds delay);
    void failOverfull();
    /// Drops the requests and connects after this time.
    void restart(std::chrono::milliseconds delay);
    bool renewToken();
    void announceAttempt() const;
    void rejectAnswer(const HttpResult& result);
    void failFor(const HttpResult& result);
    void cancelTimers();
    std::unique_ptr<HttpTransfer> send(const char* path, ZelUnified::WipedText body, TimeLimits limits,
                                       HttpHandler handler);
    std::chrono::milliseconds withJitter(std::chrono::milliseconds time);

    HttpThread& thread;
    const FleetSettings settings;
    const FleetTimes times;
    const Listener listener;
    const AttemptListener attemptListener;
    FleetTable table;
    std::mt19937 random;
    std::size_t endpoint;
    std::string token;
    bool renewed = false;       ///< The token has been renewed since a member has answered for a while.
    bool tokenless = false;     ///< The cluster did not authenticate users when this client connected.
    bool tokenRequired = false; ///< It has begun to do so since a member has answered for a while.
    unsigned int failures = 0;  ///< Since a member has answered for a while.
    bool reported = false;      ///< The failures are in the log.
    bool overfullReported = false;
    std::size_t confirmed = 0; ///< The number of scopes whose watch exists.
    std::string line;          ///< The part of a message that has arrived.
    std::unique_ptr<HttpTransfer> request;
    std::unique_ptr<HttpTransfer> probeRequest;
    std::uint64_t retryTimer = 0;
    std::uint64_t publicationTimer = 0;
    std::uint64_t probeTimer = 0;
    std::uint64_t confirmationTimer = 0;
};

} // namespace fleet
