#pragma once

#include "Call.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace config_model {

/// A call that was made, or a task that was run. Times are those of one counter that all threads increment.
struct Event {
    std::size_t thread = 0;
    Call call;
    std::size_t start = 0;
    std::size_t end = 0;
    std::string answer{};
    /// What the records fired during the event, in order. Only events of the services thread have any.
    std::vector<std::string> fired{};
};

/// A task that was posted to a dispatcher.
struct Posted {
    std::optional<std::size_t> event{}; ///< The event that posted it. Empty if no event did, which is a mistake.
    std::string name{};
};

/// What was observed of concurrent calls.
struct History {
    Pairs policy{};
    std::vector<Call> before{};
    std::vector<Event> events{};
    /// The queues of the dispatchers, in the order in which the tasks were posted.
    std::vector<Posted> posted{};
    std::vector<Posted> background{};
    /// The records and the lookup of each key, after all threads and tasks have ended.
    std::vector<std::string> end{};
};

std::string describe(const History& history);

} // namespace config_model
