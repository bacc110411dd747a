#include "History.h"

#include "ChainStep.h"

namespace config_model {

namespace {

std::string describeEvent(std::size_t number, const Event& event) {
    auto text = "  " + std::to_string(number) + " thread " + std::to_string(event.thread) + " [" +
                std::to_string(event.start) + ", " + std::to_string(event.end) + "] " + describe(event.call) + ": " +
                event.answer + "\n";
    for (const auto& line : event.fired) {
        text += "      fires " + line + "\n";
    }
    return text;
}

std::string describeQueue(const std::vector<Posted>& tasks) {
    std::string text;
    for (std::size_t i = 0; i < tasks.size(); ++i) {
        const auto poster = tasks[i].event ? "event " + std::to_string(*tasks[i].event) : "no event";
        text += "  " + std::to_string(i) + " by " + poster + ": " + tasks[i].name + "\n";
    }
    return text;
}

} // namespace

std::string describe(const History& history) {
    std::string text = "policy: " + describe(history.policy) + "\nbefore:\n";
    for (const auto& call : history.before) {
        text += "  " + describe(call) + "\n";
    }
    text += "events, with the times of their starts and ends:\n";
    for (std::size_t i = 0; i < history.events.size(); ++i) {
        text += describeEvent(i, history.events[i]);
    }
    text += "posted to the services dispatcher:\n" + describeQueue(history.posted);
    text += "posted to the background dispatcher:\n" + describeQueue(history.background) + "at the end:\n";
    for (const auto& line : history.end) {
        text += "  " + line + "\n";
    }
    return text;
}

} // namespace config_model
