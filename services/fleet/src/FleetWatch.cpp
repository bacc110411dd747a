#include "FleetWatch.h"

#include "LoggedText.h"

#include <zel/ZelLog.h>

#include <algorithm>
#include <utility>

namespace fleet {

namespace {

ZelLogger& watchLogger = ZelLogger_getLogger("Fleet-Watch");

} // namespace

FleetWatch::FleetWatch(HttpThread& httpThread, FleetSettings clientSettings, FleetTimes clientTimes,
                       Listener settingsListener, AttemptListener listenerOfAttempts)
    : thread(httpThread),
      settings(std::move(clientSettings)),
      times(clientTimes),
      listener(std::move(settingsListener)),
      attemptListener(std::move(listenerOfAttempts)),
      table(settings.scopes),
      random(std::random_device()()),
      // Clients share the members evenly.
      endpoint(random() % std::max<std::size_t>(settings.access.endpoints.size(), 1)) {}

FleetWatch::~FleetWatch() = default;

void FleetWatch::start() {
    thread.post([this] { attempt([this] { connect(); }); });
}

void FleetWatch::connect() {
    if (settings.access.endpoints.empty()) {
        return;
    }
    announceAttempt();
    if (!settings.access.username.empty() && token.empty()) {
        authenticate();
    } else {
        read();
    }
}

std::unique_ptr<HttpTransfer> FleetWatch::send(const char* path, ZelUnified::WipedText body, TimeLimits limits,
                                               HttpHandler handler) {
    HttpHandler guarded;
    if (handler.onData) {
        guarded.onData = [this, onData = std::move(handler.onData)](std::string_view data) {
            attempt([&] { onData(data); });
        };
    }
    guarded.onEnd = [this, onEnd = std::move(handler.onEnd)](const HttpResult& result) {
        attempt([&] { onEnd(result); });
    };
    return thread.start(settings.access,
                        {settings.access.endpoints[endpoint] + path, etcd::makeHeaders(token), std::move(body),
                         limits.total, limits.silence},
                        std::move(guarded));
}

void FleetWatch::authenticate() {
    tokenless = false;
    request = send(etcd::authenticatePath, etcd::makeAuthenticate(settings.access.username, settings.access.password),
                   {.total = times.answer}, {nullptr, [this](const HttpResult& result) { receiveToken(result); }});
}

void FleetWatch::receiveToken(const HttpResult& result) {
    if (etcd::parseFailure(result.body) == etcd::authenticationDisabled) {
        tokenless = true; // a cluster may be set up before its users are
        read();
        return;
    }
    const auto received = result.isSuccess() ? etcd::parseToken(result.body) : std::nullopt;
    if (!received) {
        rejectAnswer(result);
        return;
    }
    token = *received;
    read();
}

void FleetWatch::read() {
    // Many pairs may take long on a slow network, so only silence ends the request. One pair more than the limit shows
    // that there are too many.
    request = send(etcd::transactionPath, etcd::makeSnapshot(settings.scopes, FleetTable::maxKeys + 1),
                   {.silence = std::chrono::ceil<std::chrono::seconds>(times.answer)},
                   {nullptr, [this](const HttpResult& result) { receiveSnapshot(result); }});
}

void FleetWatch::receiveSnapshot(const HttpResult& result) {
    if (result.tooLong) {
        failOverfull();
        return;
    }
    const auto snapshot = result.isSuccess() ? etcd::parseSnapshot(result.body) : std::nullopt;
    if (!snapshot) {
        rejectAnswer(result);
        return;
    }
    table.clear();
    for (const auto& pair : snapshot->pairs) {
        table.apply(pair);
    }
    if (snapshot->more || table.isOverfull()) {
        failOverfull();
        return;
    }
    publish();
    watch(snapshot->revision + 1);
}

void FleetWatch::watch(std::int64_t revision) {
    line.clear();
    confirmed = 0;
    request = send(etcd::watchPath, etcd::makeWatch(settings.scopes, revision), {},
                   {[this](std::string_view data) { receiveEvents(data); },
                    [this](const HttpResult& result) { failFor(result); }});
    confirmationTimer = thread.callAfter(times.answer, [this] { fail("it does not confirm the watch"); });
    planProbe();
}

void FleetWatch::receiveEvents(std::string_view data) {
    const auto searched = line.size();
    line += data;
    const auto* const current = request.get();
    std::size_t begin = 0;
    for (auto end = line.find('\n', searched); end != std::string::npos; end = line.find('\n', begin)) {
        const auto reply = etcd::parseWatchReply(std::string_view(line).substr(begin, end - begin));
        begin = end + 1;
        if (!reply) {
            fail("it sends an unknown answer");
        } else {
            receive(*reply);
        }
        if (request.get() != current) {
            return; // failed
        }
    }
    line.erase(0, begin);
    if (line.size() > HttpTransfer::bufferLimit) {
        fail("it sends an answer that is too long");
    }
}

void FleetWatch::receive(const etcd::WatchReply& reply) {
    if (reply.canceled) {
        if (etcd::isAboutToken(reply.reason) && renewToken()) {
            return;
        }
        token.clear(); // a reason without words may be about it too
        fail("it has ended the watch: " + toLoggedText(reply.reason));
        return;
    }
    if (reply.created && ++confirmed == settings.scopes.size()) {
        thread.cancel(confirmationTimer);
        overfullReported = false;
        if (std::exchange(reported, false)) {
            ZelLog(watchLogger, ZelLogLevel::Info, ZEL_HERE, "The cluster can be followed again");
        }
    }
    for (const auto& change : reply.changes) {
        table.apply(change);
    }
    if (table.isOverfull()) {
        failOverfull();
    } else if (!reply.changes.empty()) {
        planPublication();
    }
}

void FleetWatch::planPublication() {
    // Not postponed by further changes, so that a long series of them does not hold back the first one.
    if (publicationTimer == 0) {
        publicationTimer = thread.callAfter(times.gathering, [this] {
            publicationTimer = 0;
            attempt([this] { publish(); });
        });
    }
}

void FleetWatch::publish() {
    listener(table.merge());
}

void FleetWatch::announceAttempt() const {
    if (attemptListener) {
        attemptListener();
    }
}

void FleetWatch::planProbe() {
    probeTimer = thread.callAfter(withJitter(times.probe), [this] { attempt([this] { probe(); }); });
}

void FleetWatch::probe() {
    // A stopped member, or a cut network, leaves the connection of the watch open and silent.
    probeRequest = send(etcd::rangePath, etcd::makeProbe(settings.scopes.front()), {.total = times.answer},
                        {nullptr, [this](const HttpResult& result) {
                             announceAttempt();
                             if (!result.isSuccess()) {
                                 failFor(result);
                                 return;
                             }
                             failures = 0;
                             renewed = false;
                             tokenRequired = false;
                             probeRequest.reset();
                             planProbe();
                         }});
}

void FleetWatch::failFor(const HttpResult& result) {
    if (etcd::isAboutToken(result.status) && renewToken()) {
        return;
    }
    if (!result.error.empty()) {
        fail(result.error);
        return;
    }
    // The last message of a watch may lack the end of its line.
    auto reason = etcd::parseFailure(result.body.empty() ? line : result.body);
    if (reason.empty()) {
        reason = result.status == successStatus ? "it has ended the answer" : "it does not explain itself";
    }
    fail("status " + std::to_string(result.status) + ", " + toLoggedText(reason));
}

/// Connects again at once with a new token, without a log line: the end of a token is no outage, nor is a cluster that
/// has begun to authenticate users. Returns false if the token was not the reason: none could be requested, or a new
/// one has been refused as well. Drops the token in any case.
bool FleetWatch::renewToken() {
    const bool isExpired = !std::exchange(token, {}).empty() && !std::exchange(renewed, true);
    const bool isFirst = std::exchange(tokenless, false) && !std::exchange(tokenRequired, true);
    if (!isExpired && !isFirst) {
        return false;
    }
    restart(std::chrono::milliseconds(0));
    return true;
}

void FleetWatch::rejectAnswer(const HttpResult& result) {
    if (result.isSuccess()) {
        fail("it sends an unknown answer");
    } else {
        failFor(result);
    }
}

void FleetWatch::fail(const std::string& reason) {
    const auto doublings = std::min(failures++, 16U);
    failAndRetry(reason, std::min(times.longestDelay, times.firstDelay * (1U << doublings)));
}

void FleetWatch::failAndRetry(const std::string& reason, std::chrono::milliseconds delay) {
    if (!std::exchange(reported, true)) {
        ZelLog(watchLogger, ZelLogLevel::Warning, ZEL_HERE,
               "The cluster cannot be followed, and its last settings stay in force: " + reason);
    }
    endpoint = (endpoint + 1) % settings.access.endpoints.size();
    restart(withJitter(delay));
}

void FleetWatch::restart(std::chrono::milliseconds delay) {
    const bool isPublicationDue = publicationTimer != 0 && !table.isOverfull();
    cancelTimers();
    request.reset();
    probeRequest.reset();
    retryTimer = thread.callAfter(delay, [this] { attempt([this] { connect(); }); });
    if (isPublicationDue) {
        publish();
    }
}

void FleetWatch::failOverfull() {
    if (!std::exchange(overfullReported, true)) {
        reported = false; // a line of its own, even behind that of a lost connection
    }
    // Each attempt reads everything, and only an administrator can change it.
    failAndRetry("it holds more than 10,000 keys or 16 MiB for this client", times.overfullDelay);
}

void FleetWatch::cancelTimers() {
    for (auto* const timer : {&retryTimer, &publicationTimer, &probeTimer, &confirmationTimer}) {
        thread.cancel(std::exchange(*timer, 0));
    }
}

std::chrono::milliseconds FleetWatch::withJitter(std::chrono::milliseconds time) {
    std::uniform_int_distribution<std::int64_t> part(time.count() / 2, time.count());
    return std::chrono::milliseconds(part(random));
}

} // namespace fleet
