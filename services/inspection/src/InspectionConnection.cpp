#include "InspectionConnection.h"

#include <asio/post.hpp>
#include <asio/write.hpp>
#include <system_error>
#include <utility>

namespace inspection {

using Code = RequestError::Code;

InspectionConnection::InspectionConnection(Socket peerSocket, std::shared_ptr<asio::io_context> socketContext,
                                           long peer, const InspectionLimits& connectionLimits,
                                           std::shared_ptr<RequestRunner> requestRunner,
                                           std::shared_ptr<ChangeFeed> changeFeed, Ended endedCallback)
    : socket(std::move(peerSocket)),
      context(socketContext),
      process(peer),
      limits(connectionLimits),
      runner(std::move(requestRunner)),
      feed(std::move(changeFeed)),
      ended(std::move(endedCallback)),
      deadline(*socketContext),
      catchUp(*socketContext),
      staged(limits.stagedBytes) {}

void InspectionConnection::start() {
    enter(Phase::InRequest);
    read();
}

void InspectionConnection::close() {
    if (!socket.is_open()) {
        return;
    }
    if (std::exchange(isWatching, false)) {
        feed->remove(*this);
    }
    std::error_code ignored;
    deadline.cancel();
    catchUp.cancel();
    socket.close(ignored);
    std::exchange(ended, nullptr)(shared_from_this());
}

void InspectionConnection::read() {
    socket.async_read_some(asio::buffer(chunk),
                           [self = shared_from_this()](const std::error_code& error, std::size_t length) {
                               if (error || length == 0) {
                                   self->close();
                                   return;
                               }
                               self->onRead(length);
                           });
}

void InspectionConnection::onRead(std::size_t length) {
    received.append(chunk.data(), length);
    handleNextLine();
}

/// Handles the next line if it is complete, otherwise reads on. While a request is carried out nothing is read, so a
/// peer cannot queue more than one.
void InspectionConnection::handleNextLine() {
    if (!socket.is_open()) {
        return;
    }
    const auto end = received.find('\n', searched);
    if (end == std::string::npos) {
        searched = received.size();
        if (received.size() > limits.requestBytes) {
            skipOversizedLine();
            return;
        }
        enterWaiting();
        read();
        return;
    }
    const auto line = received.substr(0, end);
    received.erase(0, end + 1);
    searched = 0;
    if (std::exchange(skipsLine, false)) {
        handleNextLine();
        return;
    }
    enter(Phase::Executing);
    hasServed = true;
    handle(line);
}

void InspectionConnection::skipOversizedLine() {
    received.clear();
    searched = 0;
    if (std::exchange(skipsLine, true)) {
        enterWaiting();
        read();
        return;
    }
    enter(Phase::Executing);
    reply(makeFailure({}, Code::Usage, "the request is longer than " + std::to_string(limits.requestBytes) + " bytes"));
}

void InspectionConnection::handle(const std::string& line) {
    InspectionRequest request;
    if (line.size() > limits.requestBytes) {
        reply(makeFailure(request, Code::Usage,
                          "the request is longer than " + std::to_string(limits.requestBytes) + " bytes"));
        return;
    }
    try {
        request.parse(line);
    } catch (const RequestError& error) {
        reply(makeFailure(request, error.getCode(), error.what()));
        return;
    }
    if (request.verb == "watch") {
        watch(request);
    } else if (request.verb == "unwatch") {
        unwatch(request);
    } else if (request.verb == "load") {
        load(request);
    } else {
        runner->run(request, process, makeAnswer());
    }
}

void InspectionConnection::watch(const InspectionRequest& request) {
    if (request.showSecrets) {
        runner->logSecretRequest(request, process);
    }
    addPatterns(request.keys);
    setShowsSecrets(request.showSecrets);
    isWatching = true;
    const Json done{{"type", "done"}, {"command", request.verb}, {"message", "watching"}};
    feed->add(*this, [answer = makeAnswer(), object = makeReply(request.id, done)] { answer(object); });
}

void InspectionConnection::unwatch(const InspectionRequest& request) {
    if (std::exchange(isWatching, false)) {
        feed->remove(*this);
    }
    clearPatterns();
    reply(makeReply(request.id, {{"type", "done"}, {"command", request.verb}, {"message", "watching no longer"}}));
}

void InspectionConnection::load(InspectionRequest& request) {
    try {
        staged.add(request);
    } catch (const RequestError& error) {
        reply(makeFailure(request, error.getCode(), error.what()));
        return;
    }
    if (request.more) {
        reply(makeReply(request.id, {{"type", "done"}, {"command", request.verb}, {"message", "more values follow"}}));
        return;
    }
    request.values = staged.extract();
    runner->run(request, process, makeAnswer());
}

RequestRunner::Answer InspectionConnection::makeAnswer() {
    return [weak = weak_from_this(), target = context](Json object) {
        if (const auto alive = target.lock()) {
            asio::post(*alive, [weak, object = std::move(object)] {
                if (const auto self = weak.lock()) {
                    self->reply(object);
                }
            });
        }
    };
}

void InspectionConnection::reply(const Json& object) {
    if (!socket.is_open()) {
        return;
    }
    enter(Phase::Replying);
    send({std::make_shared<const std::string>(toLine(object)), 0});
}

bool InspectionConnection::fits(std::size_t bytes, std::size_t count) const {
    return events + count <= limits.queuedEvents && eventBytes + bytes <= limits.queuedBytes;
}

bool InspectionConnection::needsTime(std::size_t bytes, std::size_t count) {
    if (!socket.is_open() || isSlow || lost != 0 || events == 0 || fits(bytes, count) ||
        limits.catchUpTime == std::chrono::milliseconds::zero()) {
        return false;
    }
    if (std::exchange(isCatchingUp, true)) {
        return true;
    }
    catchUp.expires_after(limits.catchUpTime);
    catchUp.async_wait([self = shared_from_this()](const std::error_code& cancelled) {
        if (!cancelled && self->isCatchingUp && self->catchUp.expiry() <= asio::steady_timer::clock_type::now()) {
            self->isCatchingUp = false;
            self->isSlow = true;
            self->feed->resume();
        }
    });
    return true;
}

void InspectionConnection::sendEvents(const std::shared_ptr<const std::string>& lines, std::size_t count) {
    if (!socket.is_open()) {
        return;
    }
    if (lost != 0 || !fits(lines->size(), count)) {
        lost += count;
        return;
    }
    send({lines, count});
}

void InspectionConnection::addLost(std::size_t count) {
    lost += count;
    if (socket.is_open() && !isWriting) {
        writeNext();
    }
}

void InspectionConnection::send(Message message) {
    events += message.events;
    eventBytes += message.events == 0 ? 0 : message.text->size();
    outbox.push_back(std::move(message));
    if (!isWriting) {
        writeNext();
    }
}

/// Sends the next message. When all older events are sent, one event replaces the lost ones.
void InspectionConnection::writeNext() {
    isSlow = isSlow && !outbox.empty();
    if (outbox.empty() && lost != 0) {
        send({std::make_shared<const std::string>(makeLostLine(std::exchange(lost, 0))), 1});
        return;
    }
    if (outbox.empty() || !socket.is_open()) {
        return;
    }
    isWriting = true;
    const auto& text = outbox.front().text;
    asio::async_write(socket, asio::buffer(*text),
                      [self = shared_from_this(), text](const std::error_code& error, std::size_t /*length*/) {
                          if (error) {
                              self->close();
                              return;
                          }
                          self->onWritten();
                      });
}

void InspectionConnection::onWritten() {
    isWriting = false;
    const auto written = std::move(outbox.front());
    outbox.pop_front();
    events -= written.events;
    eventBytes -= written.events == 0 ? 0 : written.text->size();
    writeNext();
    if (written.events == 0) {
        handleNextLine();
    } else {
        onEventsWritten();
    }
}

void InspectionConnection::onEventsWritten() {
    if (!isCatchingUp || events > limits.queuedEvents / 2 || eventBytes > limits.queuedBytes / 2) {
        return;
    }
    isCatchingUp = false;
    catchUp.cancel();
    feed->resume();
}

void InspectionConnection::enterWaiting() {
    if (!received.empty() || skipsLine || !hasServed) {
        enter(Phase::InRequest);
    } else {
        enter(isWatching ? Phase::Watching : Phase::Idle);
    }
}

/// Begins a phase and its time limit. Data that arrive during the phase do not extend the limit, so a peer that sends
/// single bytes is dropped, too.
void InspectionConnection::enter(Phase next) {
    if (phase == next || !socket.is_open()) {
        return;
    }
    phase = next;
    const auto time = timeOf(next);
    if (time == std::chrono::milliseconds::zero()) {
        deadline.cancel();
        return;
    }
    deadline.expires_after(time);
    deadline.async_wait([self = shared_from_this()](const std::error_code& cancelled) {
        // Setting a new time does not cancel a handler that is already queued.
        if (!cancelled && self->deadline.expiry() <= asio::steady_timer::clock_type::now()) {
            self->close();
        }
    });
}

std::chrono::milliseconds InspectionConnection::timeOf(Phase asked) const {
    switch (asked) {
    case Phase::InRequest:
        return limits.requestTime;
    case Phase::Replying:
        return limits.replyTime;
    case Phase::Idle:
        return limits.idleTime;
    case Phase::Starting:
    case Phase::Executing:
    case Phase::Watching:
        break;
    }
    return std::chrono::milliseconds::zero();
}

} // namespace inspection
