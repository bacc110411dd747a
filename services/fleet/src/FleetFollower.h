#pragma once

#include "FleetWatch.h"
#include "HttpThread.h"

#include <utility>

namespace fleet {

/// A watch with a thread of its own.
class FleetFollower {
public:
    FleetFollower(FleetSettings settings, FleetTimes times, FleetWatch::Listener listener,
                  FleetWatch::Ticker ticker = {})
        : watch(thread, std::move(settings), times, std::move(listener), std::move(ticker)) {
        watch.start();
    }
    /// Ends the thread without waiting for the cluster. The listener is not called afterwards. The listener must not
    /// destroy the object.
    ~FleetFollower() { thread.end(); }
    FleetFollower(const FleetFollower&) = delete;
    FleetFollower& operator=(const FleetFollower&) = delete;

private:
    HttpThread thread;
    FleetWatch watch;
};

} // namespace fleet
