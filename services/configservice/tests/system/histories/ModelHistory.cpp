#include "ModelHistory.h"

#include "StartedState.h"

namespace config_model {

ModelHistory::ModelHistory(const std::vector<Call>& before) : state(makeStartedState({}, before)) {
    history.before = before;
}

std::size_t ModelHistory::begin(std::size_t thread, const Call& call) {
    history.events.push_back({.thread = thread, .call = call, .start = ++time});
    results.emplace_back();
    return history.events.size() - 1;
}

bool ModelHistory::step(std::size_t number) {
    auto& event = history.events[number];
    CallSteps steps(state, number, event.thread == 0, results[number]);
    steps.runNext(event.call);
    collect(number);
    event.end = ++time;
    event.answer = steps.getAnswer();
    return !steps.isFinished();
}

void ModelHistory::collect(std::size_t number) {
    for (const auto& line : state.takeFired()) {
        history.events[number].fired.push_back(line);
    }
    for (const auto& task : state.takePosted()) {
        state.data.queue.emplace(history.posted.size(), task);
        history.posted.push_back({number, task.getName()});
    }
    const auto& tasks = state.data.chain.getTasks();
    while (history.background.size() < state.data.backgroundRun + tasks.size()) {
        history.background.push_back({number, tasks[history.background.size() - state.data.backgroundRun].name});
    }
}

std::size_t ModelHistory::run(std::size_t thread, const Call& call) {
    const auto event = begin(thread, call);
    while (step(event)) {
    }
    return event;
}

History ModelHistory::finish() {
    while (!state.data.queue.empty()) {
        run(0, {.kind = Call::Kind::RunPosted, .position = state.data.queue.begin()->first});
    }
    history.end = describeEnd(state);
    return history;
}

} // namespace config_model
