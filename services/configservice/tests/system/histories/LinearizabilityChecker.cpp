#include "LinearizabilityChecker.h"

#include "StartedState.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace config_model {

namespace {

// More than fifty times the longest of 10,000 searches.
constexpr std::size_t mostSteps = 5'000'000;
constexpr std::size_t mostStepsOfOneEvent = 100;

bool isPostedWithoutChainLock(const Event& event, const std::string& name) {
    return event.call.kind == Call::Kind::SetKeySensitive || name == "ConfigStoreManager::reset";
}

} // namespace

LinearizabilityChecker::LinearizabilityChecker(const History& observed)
    : history(observed), positionsOfEvents(observed.events.size()) {
    for (std::size_t position = 0; position < history.posted.size(); ++position) {
        const auto& [event, name] = history.posted[position];
        if (!event) {
            continue; // check() reports it
        }
        const bool isOfChain = !isPostedWithoutChainLock(history.events[*event], name);
        (isOfChain ? positionsOfChain : positionsOfEvents[*event]).push_back(position);
    }
}

std::string LinearizabilityChecker::check() {
    for (const auto* const queue : {&history.posted, &history.background}) {
        for (const auto& task : *queue) {
            if (!task.event) {
                return "No call posted the task " + task.name + ":\n" + describe(history);
            }
        }
    }
    Node first{makeStartedState(history.policy, history.before), std::vector<Progress>(history.events.size()), 0, 0};
    return search(first) ? "" : explain();
}

bool LinearizabilityChecker::search(Node& node) {
    while (triedSteps <= mostSteps) {
        const auto candidates = findNext(node);
        if (candidates.empty()) {
            return isObservedEnd(node);
        }
        noteFarthest(node);
        if (candidates.size() > 1 && !failed.insert(hashState(node)).second) {
            return false;
        }
        for (std::size_t i = 0; i + 1 < candidates.size(); ++i) {
            Node next = node;
            if (perform(next, candidates[i]) && search(next)) {
                return true;
            }
        }
        // The last choice needs no copy of the node.
        if (!perform(node, candidates.back())) {
            return false;
        }
    }
    return false;
}

bool LinearizabilityChecker::isObservedEnd(Node& node) const {
    return node.postedOfChain == positionsOfChain.size() && node.background == history.background.size() &&
           describeEnd(node.state) == history.end;
}

std::vector<std::size_t> LinearizabilityChecker::findNext(const Node& node) const {
    auto firstEnd = std::numeric_limits<std::size_t>::max();
    for (std::size_t i = 0; i < history.events.size(); ++i) {
        if (!node.progress[i].done) {
            firstEnd = std::min(firstEnd, history.events[i].end);
        }
    }
    std::vector<std::size_t> next;
    for (std::size_t i = 0; i < history.events.size(); ++i) {
        if (!node.progress[i].done && history.events[i].start < firstEnd) {
            next.push_back(i);
        }
    }
    // An event that ended first probably had its effect first. In this order, the searches take half as many steps.
    std::sort(next.begin(), next.end(), [&](auto a, auto b) { return history.events[a].end < history.events[b].end; });
    return next;
}

bool LinearizabilityChecker::perform(Node& node, std::size_t event) {
    ++triedSteps;
    auto& progress = node.progress[event];
    CallSteps steps(node.state, event, history.events[event].thread == 0, progress.results);
    if (!steps.runNext(history.events[event].call)) {
        return false;
    }
    progress.done = steps.isFinished();
    if (progress.done) {
        progress.results.clear();
    }
    return acceptPosted(node, event) && acceptFired(node, event) && acceptBackground(node, event) &&
           acceptEnd(node, event, steps);
}

bool LinearizabilityChecker::acceptPosted(Node& node, std::size_t event) {
    for (auto& task : node.state.takePosted()) {
        const auto& positions = task.isOfChain() ? positionsOfChain : positionsOfEvents[event];
        auto& next = task.isOfChain() ? node.postedOfChain : node.progress[event].posted;
        if (next == positions.size()) {
            return false;
        }
        const auto position = positions[next++];
        if (history.posted[position].event != event || history.posted[position].name != task.getName()) {
            return false;
        }
        node.state.data.queue.emplace(position, std::move(task));
    }
    return true;
}

bool LinearizabilityChecker::acceptFired(Node& node, std::size_t event) {
    const auto& observed = history.events[event].fired;
    auto& next = node.progress[event].fired;
    for (const auto& line : node.state.takeFired()) {
        if (next == observed.size() || observed[next] != line) {
            return false;
        }
        ++next;
    }
    return true;
}

bool LinearizabilityChecker::acceptBackground(Node& node, std::size_t event) const {
    const auto& tasks = node.state.data.chain.getTasks();
    const auto first = node.state.data.backgroundRun;
    for (auto& accepted = node.background; accepted < first + tasks.size(); ++accepted) {
        const auto& task = tasks[accepted - first];
        if (accepted == history.background.size() || history.background[accepted].event != event ||
            history.background[accepted].name != task.name) {
            return false;
        }
    }
    return true;
}

bool LinearizabilityChecker::acceptEnd(const Node& node, std::size_t event, const CallSteps& steps) const {
    const auto& observed = history.events[event];
    const auto& progress = node.progress[event];
    return !progress.done || (steps.getAnswer() == observed.answer && progress.fired == observed.fired.size() &&
                              progress.posted == positionsOfEvents[event].size());
}

std::uint64_t LinearizabilityChecker::hashState(const Node& node) {
    StateHash hash;
    node.state.addTo(hash);
    for (const auto& progress : node.progress) {
        hash.add(progress.done);
        if (progress.done) {
            continue;
        }
        hash.add(progress.results.size());
        for (const auto& result : progress.results) {
            hash.add(result.yes);
            hash.add(result.text);
            hash.add(result.pairs);
        }
        hash.add(progress.fired);
        hash.add(progress.posted);
    }
    hash.add(node.postedOfChain);
    hash.add(node.background);
    return hash.get();
}

void LinearizabilityChecker::noteFarthest(const Node& node) {
    std::size_t steps = 0;
    for (const auto& progress : node.progress) {
        steps += progress.done ? mostStepsOfOneEvent : progress.results.size();
    }
    if (steps < mostProgress) {
        return;
    }
    mostProgress = steps;
    farthest.clear();
    for (std::size_t event = 0; event < node.progress.size(); ++event) {
        if (!node.progress[event].done) {
            farthest.emplace_back(event, node.progress[event].results.size());
        }
    }
}

std::string LinearizabilityChecker::explain() const {
    const std::string outcome = triedSteps > mostSteps ? "The search was given up" : "No order explains the history";
    auto text = outcome + " after " + std::to_string(triedSteps) + " steps:\n" + describe(history) +
                "not done where the search came farthest:\n";
    for (const auto& [event, steps] : farthest) {
        text += "  event " + std::to_string(event) + " after " + std::to_string(steps) + " steps\n";
    }
    return text;
}

} // namespace config_model
