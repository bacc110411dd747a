#include "InspectionServer.h"

#include <kyr/LocalSocket.h>
#include <zel/ZelLog.h>

#include <asio/post.hpp>
#include <chrono>
#include <exception>
#include <system_error>
#include <utility>

namespace inspection {

namespace {

ZelLogger& serverLogger = ZelLogger_getLogger("Inspection-Server");

/// The pause after a failure to accept, for example because the process has no descriptor left.
constexpr std::chrono::milliseconds acceptPause(100);

ChangeFeed::PostToSocket makePoster(const std::shared_ptr<asio::io_context>& context) {
    return [weak = std::weak_ptr(context)](std::function<void()> work) {
        if (const auto alive = weak.lock()) {
            asio::post(*alive, std::move(work));
        }
    };
}

} // namespace

InspectionServer::InspectionServer(const std::shared_ptr<ZelUnified::UnifiedFactory>& factory,
                                   const std::shared_ptr<const ConfigInspector>& inspector,
                                   const std::string& socketPath, const InspectionLimits& serverLimits)
    : limits(serverLimits),
      listener(socketPath),
      keepRunning(asio::make_work_guard(*context)),
      acceptor(*context),
      acceptTimer(*context),
      runner(std::make_shared<RequestRunner>(factory, inspector)),
      feed(std::make_shared<ChangeFeed>(factory, inspector, limits, makePoster(context))) {
    if (listener.getError() != 0) {
        return;
    }
    acceptor.assign(Protocol(), listener.releaseDescriptor());
    accept();
    thread = std::thread([this] { runThread(); });
}

InspectionServer::~InspectionServer() {
    if (!thread.joinable()) {
        return;
    }
    asio::post(*context, [this] { closeAll(); });
    keepRunning.reset();
    thread.join();
}

void InspectionServer::runThread() {
    for (;;) {
        try {
            context->run();
            return;
        } catch (const std::exception& failure) {
            // One failed handler, for example without memory, must not end the client.
            ZelLog(serverLogger, ZelLogLevel::Error, ZEL_HERE, std::string("A connection failed: ") + failure.what());
        }
    }
}

void InspectionServer::accept() {
    acceptor.async_accept([this](const std::error_code& error, Protocol::socket socket) {
        if (!acceptor.is_open()) {
            return;
        }
        if (error) {
            acceptLater();
            return;
        }
        onAccepted(std::move(socket));
        accept();
    });
}

void InspectionServer::acceptLater() {
    acceptTimer.expires_after(acceptPause);
    acceptTimer.async_wait([this](const std::error_code& cancelled) {
        if (!cancelled && acceptor.is_open()) {
            accept();
        }
    });
}

void InspectionServer::onAccepted(Protocol::socket socket) {
    const auto peer = KyrCoreUtils::LocalSocket::getPeer(socket.native_handle());
    if (!peer || !peer->isSameUser) {
        ZelLog(serverLogger, ZelLogLevel::Warning, ZEL_HERE,
               "Refused process " + std::to_string(peer ? peer->process : 0) + " of another user");
        return;
    }
    if (connections.size() >= limits.connections) {
        ZelLog(serverLogger, ZelLogLevel::Warning, ZEL_HERE,
               "Refused process " + std::to_string(peer->process) + ": too many connections");
        return;
    }
    const auto connection =
        std::make_shared<InspectionConnection>(std::move(socket), context, peer->process, limits, runner, feed,
                                               [this](const Connection& closed) { connections.erase(closed); });
    connections.insert(connection);
    connection->start();
}

void InspectionServer::closeAll() {
    std::error_code ignored;
    acceptor.close(ignored);
    acceptTimer.cancel();
    const auto closed = connections; // each connection removes itself
    for (const auto& connection : closed) {
        connection->close();
    }
}

} // namespace inspection
