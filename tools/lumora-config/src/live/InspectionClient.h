#pragma once

#include <kyr/LocalConnection.h>

#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace lumora_config {

/// A connection to the running client that uses the profile. Main thread.
class InspectionClient {
public:
    using Json = nlohmann::ordered_json;
    using Received = KyrCoreUtils::LocalConnection::Received;

    /// Connects to the client of the profile whose directories the host uses; see isConnected().
    InspectionClient();

    bool isConnected() const noexcept { return connection->isOpen(); }
    /// Returns true once the client has closed the connection or has not answered in time.
    bool hasEnded() const noexcept { return ended; }
    /// Returns the id of the client's process.
    long getProcess() const noexcept { return connection->getPeer(); }

    /// Sends the request and returns its reply. Throws Failure with the exit code and the message of a reply that
    /// reports one, and Failure (Environment) if the client does not answer.
    Json ask(Json request);
    /// Waits for the next event of a watch. Sets `event` if it returns Line.
    Received receiveEvent(Json& event);

private:
    const std::unique_ptr<KyrCoreUtils::LocalConnection> connection;
    int lastId = 0;
    bool ended = false;
};

} // namespace lumora_config
