#pragma once

#include "FleetSettings.h"
#include "FleetTable.h"
#include "HttpThread.h"

#include <ConfigMap.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <string>

namespace fleet {

/// The times of a watch.
struct FleetTimes {
    std::chrono::milliseconds answer{10000};   ///< For a complete answer, and for the confirmation of a watch.
    std::chrono::milliseconds probe{30000};    ///< Between two questions whether the member still answers.
    std::chrono::milliseconds firstDelay{500}; ///< Before the first retry; doubled for each further one.
    std::chrono::milliseconds longestDelay{60000};
    std::chrono::milliseconds gathering{20}; ///< From a change until it is passed on, with those after it.
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

    FleetWatch(HttpThread& httpThread, FleetSettings clientSettings, FleetTimes clientTimes, Listener settingsListener);
    ~FleetWatch();
    FleetWatch(const FleetWatch&) = delete;
    FleetWatch& operator=(const FleetWatch&) = delete;

    /// Starts to follow the cluster. Returns immediately. Any thread.
    void start();

private:
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
    void pass();
    void planPass();
    void fail(const std::string& reason);
    void failOverfull();
    void failFor(const HttpResult& result);
    void dropToken() { token.clear(); }
    void cancelTimers();
    std::unique_ptr<HttpTransfer> send(const char* path, std::string body, std::chrono::milliseconds timeout,
                                       HttpHandler handler);
    std::chrono::milliseconds withJitter(std::chrono::milliseconds time);

    HttpThread& thread;
    const FleetSettings settings;
    const FleetTimes times;
    const Listener listener;
    FleetTable table;
    std::mt19937 random;
    std::size_t endpoint;
    std::string token;
    unsigned int failures = 0; ///< Since a member has answered for a while.
    bool reported = false;     ///< The failures are in the log.
    bool overfullReported = false;
    std::size_t confirmed = 0; ///< The number of scopes whose watch exists.
    std::string line;          ///< The part of a message that has arrived.
    std::unique_ptr<HttpTransfer> request;
    std::unique_ptr<HttpTransfer> probeRequest;
    std::uint64_t retryTimer = 0;
    std::uint64_t passTimer = 0;
    std::uint64_t probeTimer = 0;
    std::uint64_t confirmationTimer = 0;
};

} // namespace fleet
