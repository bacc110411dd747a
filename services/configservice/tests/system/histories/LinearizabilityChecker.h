#pragma once

#include "CallSteps.h"
#include "History.h"
#include "HistoryState.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace config_model {

/// Decides whether the sequential model explains a history: whether the steps of its events have an order that respects
/// their times, in which each event returns its answer, posts its tasks and fires its properties, and which ends in the
/// same state. Wing and Gong's search: tries each event that may be next, goes back when none fits, and remembers the
/// states from which it has failed.
class LinearizabilityChecker {
public:
    explicit LinearizabilityChecker(const History& observed);

    /// Returns "" if there is such an order. Otherwise returns the history and the largest part of it that has one.
    std::string check();
    /// Returns the number of steps tried.
    std::size_t countSteps() const { return triedSteps; }

private:
    /// What an event has done so far.
    struct Progress {
        std::vector<StepResult> results;
        std::size_t fired = 0;
        std::size_t posted = 0; ///< Of the tasks whose position in the queue depends on no lock.
        bool done = false;
    };
    struct Node {
        HistoryState state;
        std::vector<Progress> progress;
        std::size_t postedOfChain = 0;
        std::size_t background = 0;
    };

    bool search(Node& node);
    bool isObservedEnd(Node& node) const;
    std::vector<std::size_t> findNext(const Node& node) const;
    /// Performs the next step of the event. Returns false if it cannot run, or does something that was not observed.
    bool perform(Node& node, std::size_t event);
    bool acceptPosted(Node& node, std::size_t event);
    bool acceptFired(Node& node, std::size_t event);
    bool acceptBackground(Node& node, std::size_t event) const;
    bool acceptEnd(const Node& node, std::size_t event, const CallSteps& steps) const;
    static std::uint64_t hashState(const Node& node);
    void noteFarthest(const Node& node);
    std::string explain() const;

    const History& history;
    /// The positions in the queue of the tasks that are posted with the chain locked, and of the others by event.
    std::vector<std::size_t> positionsOfChain;
    std::vector<std::vector<std::size_t>> positionsOfEvents;
    /// Hashes of states. A collision could make the search fail falsely, but never succeed falsely.
    std::unordered_set<std::uint64_t> failed;
    std::size_t triedSteps = 0;
    std::size_t mostProgress = 0;
    /// The events that were not done where the search came farthest, with the number of their steps.
    std::vector<std::pair<std::size_t, std::size_t>> farthest;
};

} // namespace config_model
