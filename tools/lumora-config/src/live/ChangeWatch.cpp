#include "ChangeWatch.h"

#include "output/EscapedText.h"
#include "output/Failure.h"

#include <kyr/EndSignals.h>
#include <kyr/FileUtils.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <utility>

namespace lumora_config {

using Json = InspectionClient::Json;
using KyrCoreUtils::EndSignals;

namespace {

/// The pause before the next attempt to find a client.
constexpr std::chrono::milliseconds searchPause(100);

std::string text(const Json& event, const char* field) {
    return toOneLine(event.value(field, ""));
}

/// Returns the time of day of an event, in UTC.
std::string timeOfDay(const Json& event) {
    const auto time = text(event, "time");
    const auto date = time.find('T');
    return date == std::string::npos ? time : time.substr(date + 1);
}

} // namespace

ChangeWatch::ChangeWatch(Output& answers, Output& messages, Form outputForm, std::vector<std::string> watched,
                         bool secretsShown)
    : output(answers), diagnostics(messages), form(outputForm), keys(std::move(watched)), showSecrets(secretsShown) {}

void ChangeWatch::run() {
    InspectionClient client;
    if (!client.isConnected()) {
        throw Failure(ExitCode::Environment, "no running client that can be watched uses the profile " +
                                                 KyrCoreUtils::FileUtils::getConfigDirectory() +
                                                 "; --follow waits for one");
    }
    watch(client);
    EndSignals::acknowledge();
}

void ChangeWatch::runForEver() {
    bool goesOn = true;
    while (goesOn) {
        InspectionClient client;
        goesOn = client.isConnected() ? watch(client) : !EndSignals::waitFor(searchPause);
    }
    EndSignals::acknowledge();
}

bool ChangeWatch::watch(InspectionClient& client) {
    const auto process = "process " + std::to_string(client.getProcess());
    try {
        client.ask({{"verb", "watch"}, {"keys", keys}, {"showSecrets", showSecrets}});
    } catch (const Failure&) {
        // A client that is about to end may still accept a connection.
        if (!client.hasEnded()) {
            throw;
        }
        return EndSignals::getReceived() == 0;
    }
    diagnostics.writeMessage("lumora-config: watching " + process);
    Json event;
    for (;;) {
        switch (client.receiveEvent(event)) {
        case InspectionClient::Received::Line:
            show(event);
            if (output.getError() != 0) {
                return false;
            }
            break;
        case InspectionClient::Received::Signal:
            return false;
        case InspectionClient::Received::End:
        case InspectionClient::Received::Timeout:
            diagnostics.writeMessage("lumora-config: " + process + " has ended");
            return true;
        }
    }
}

void ChangeWatch::show(const Json& event) {
    if (form == Form::Json) {
        output.writeEscaped(event.dump(-1, ' ', output.getForm().terminal, Json::error_handler_t::replace) + '\n');
        return;
    }
    if (event.value("type", "") == "lost") {
        diagnostics.writeMessage("lumora-config: " + std::to_string(event.value("count", std::size_t{0})) +
                                 " changes lost, because they were not read in time");
        return;
    }
    output.writeEscaped(timeOfDay(event) + "  " + text(event, "key") + ": " + text(event, "property") + " \"" +
                        text(event, "old") + "\" -> \"" + text(event, "new") + "\"  (" + text(event, "store") + ")\n");
}

} // namespace lumora_config
