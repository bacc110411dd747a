#pragma once

#include "ChangeFeed.h"
#include "InspectionLimits.h"
#include "RequestRunner.h"
#include "StagedValues.h"
#include "Watcher.h"

#include <array>
#include <asio/io_context.hpp>
#include <asio/local/stream_protocol.hpp>
#include <asio/steady_timer.hpp>
#include <deque>
#include <functional>
#include <memory>
#include <string>

namespace inspection {

/// One connection: reads requests one after the other, sends their replies, and the events of a watcher. Drops a peer
/// that is slow, half-open or gone. Socket's thread, except postReply(); pending operations keep it alive.
class InspectionConnection final : public Watcher, public std::enable_shared_from_this<InspectionConnection> {
public:
    using Socket = asio::local::stream_protocol::socket;
    /// Called once when the connection has ended.
    using Ended = std::function<void(const std::shared_ptr<InspectionConnection>&)>;

    /// `context` is that of the socket. `peer` is the process at the other end.
    InspectionConnection(Socket peerSocket, std::shared_ptr<asio::io_context> socketContext, long peer,
                         const InspectionLimits& connectionLimits, std::shared_ptr<RequestRunner> requestRunner,
                         std::shared_ptr<ChangeFeed> changeFeed, Ended endedCallback);

    void start();
    void close();

    bool needsTime(std::size_t bytes, std::size_t count) override;
    void sendEvents(const std::shared_ptr<const std::string>& lines, std::size_t count) override;
    void addLost(std::size_t count) override;

private:
    /// The current activity, which determines the time limit.
    enum class Phase { Starting, InRequest, Executing, Replying, Idle, Watching };

    /// A reply, or the events of a change.
    struct Message {
        std::shared_ptr<const std::string> text;
        std::size_t events = 0; ///< Zero for a reply.
    };

    void read();
    void onRead(std::size_t length);
    void handleNextLine();
    void handle(const std::string& line);
    void watch(const InspectionRequest& request);
    void unwatch(const InspectionRequest& request);
    /// Keeps the values of a `load` until the last request, which carries out the load.
    void load(InspectionRequest& request);
    void skipOversizedLine();

    /// Returns a function that sends a reply from any thread; it holds the connection weakly.
    RequestRunner::Answer makeAnswer();
    void reply(const Json& object);
    void send(Message message);
    bool fits(std::size_t bytes, std::size_t count) const;
    /// Lets the feed continue once the queue of events is half empty.
    void onEventsWritten();
    void writeNext();
    void onWritten();

    void enter(Phase next);
    void enterWaiting();
    std::chrono::milliseconds timeOf(Phase asked) const;

    Socket socket;
    const std::weak_ptr<asio::io_context> context;
    const long process;
    const InspectionLimits limits;
    const std::shared_ptr<RequestRunner> runner;
    const std::shared_ptr<ChangeFeed> feed;
    Ended ended;
    asio::steady_timer deadline;
    asio::steady_timer catchUp; ///< Runs while the feed waits for the peer.
    Phase phase = Phase::Starting;
    std::array<char, 16384> chunk{};
    std::string received;     ///< Bytes of requests that were not handled yet.
    std::size_t searched = 0; ///< Bytes of `received` without a line feed.
    bool skipsLine = false;   ///< The rest of an oversized line is ignored.
    StagedValues staged;
    bool isWatching = false;
    bool isWriting = false;
    bool hasServed = false;
    std::deque<Message> outbox;
    std::size_t eventBytes = 0; ///< Bytes of the queued events.
    std::size_t events = 0;
    std::size_t lost = 0; ///< Events that were lost since the queue was full.
    bool isCatchingUp = false;
    bool isSlow = false; ///< The feed does not wait for this watcher until it has read everything.
};

} // namespace inspection
