#pragma once

#include "ChangeFeed.h"
#include "InspectionConnection.h"
#include "InspectionLimits.h"
#include "RequestRunner.h"

#include <kyr/LocalListener.h>

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/steady_timer.hpp>
#include <memory>
#include <set>
#include <string>
#include <thread>

namespace inspection {

/// Listens on the socket, with a thread of its own that carries out all input and output and never waits for the
/// client. Construct and destroy it on one thread.
class InspectionServer {
public:
    /// Begins to listen; see getError().
    InspectionServer(const std::shared_ptr<ZelUnified::UnifiedFactory>& factory,
                     const std::shared_ptr<const ConfigInspector>& inspector, const std::string& socketPath,
                     const InspectionLimits& serverLimits);
    /// Closes all connections and waits for the thread. Replies that are not ready yet are dropped.
    ~InspectionServer();
    InspectionServer(const InspectionServer&) = delete;
    InspectionServer& operator=(const InspectionServer&) = delete;

    /// Returns 0, or the errno value that says why the server does not listen.
    int getError() const noexcept { return listener.getError(); }
    RequestRunner& getRunner() { return *runner; }

private:
    using Protocol = asio::local::stream_protocol;
    using Connection = std::shared_ptr<InspectionConnection>;

    void accept();
    void onAccepted(Protocol::socket socket);
    void acceptLater();
    void closeAll();
    void runThread();

    const InspectionLimits limits;
    KyrCoreUtils::LocalListener listener;
    /// Tasks of the dispatchers hold it weakly and post to it.
    const std::shared_ptr<asio::io_context> context = std::make_shared<asio::io_context>(1);
    asio::executor_work_guard<asio::io_context::executor_type> keepRunning;
    Protocol::acceptor acceptor;
    asio::steady_timer acceptTimer;
    const std::shared_ptr<RequestRunner> runner;
    const std::shared_ptr<ChangeFeed> feed;
    std::set<Connection> connections; ///< Socket's thread.
    std::thread thread;
};

} // namespace inspection
