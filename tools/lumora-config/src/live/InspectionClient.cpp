#include "InspectionClient.h"

#include "output/Failure.h"

#include <kyr/FileUtils.h>
#include <kyr/LocalSocket.h>

#include <chrono>
#include <nlohmann/json.hpp>
#include <vector>

namespace lumora_config {

using KyrCoreUtils::FileUtils;

namespace {

/// Long enough for a report of a busy client.
constexpr std::chrono::seconds replyTimeout(60);

std::vector<std::string> findSockets() {
    const auto directory = FileUtils::getConfigDirectory();
    return directory.empty() ? std::vector<std::string>()
                             : KyrCoreUtils::LocalSocket::getPathsFor(directory, FileUtils::getStateDirectory());
}

std::unique_ptr<KyrCoreUtils::LocalConnection> connect() {
    auto connection = std::make_unique<KyrCoreUtils::LocalConnection>(std::string());
    for (const auto& path : findSockets()) {
        if (connection->isOpen()) {
            break;
        }
        connection = std::make_unique<KyrCoreUtils::LocalConnection>(path);
    }
    return connection;
}

ExitCode toExitCode(int number) {
    switch (number) {
    case static_cast<int>(ExitCode::NotFound):
        return ExitCode::NotFound;
    case static_cast<int>(ExitCode::Usage):
        return ExitCode::Usage;
    default:
        return ExitCode::Environment;
    }
}

} // namespace

InspectionClient::InspectionClient() : connection(connect()) {}

InspectionClient::Json InspectionClient::ask(Json request) {
    request["id"] = ++lastId;
    const auto text = request.dump(-1, ' ', false, Json::error_handler_t::replace);
    std::string line;
    if (!connection->sendLine(text, replyTimeout) || connection->receiveLine(line, replyTimeout) != Received::Line) {
        ended = true;
        throw Failure(ExitCode::Environment, "the running client does not answer");
    }
    auto reply = Json::parse(line, nullptr, false);
    if (!reply.is_object() || reply.value("id", 0) != lastId) {
        throw Failure(ExitCode::Environment, "the running client sends an unknown answer");
    }
    if (reply.value("type", "") == "failure") {
        throw Failure(toExitCode(reply.value("exitCode", 0)), reply.value("message", "the running client refuses"));
    }
    return reply;
}

InspectionClient::Received InspectionClient::receiveEvent(Json& event) {
    std::string line;
    const auto received = connection->receiveLine(line, std::nullopt);
    if (received != Received::Line) {
        return received;
    }
    event = Json::parse(line, nullptr, false);
    return event.is_object() ? received : Received::End;
}

} // namespace lumora_config
