#include "FleetWatch.h"

#include "LoggedText.h"

#include <zel/ZelLog.h>

#include <algorithm>
#include <utility>

namespace fleet {

namespace {

ZelLogger& watchLogger = ZelLogger_getLogger("Fleet-Watch");

/// Returns true if another token may help: one that has expired, or whose user's rights have changed.
bool isAboutToken(int status) {
    return status == 400 || status == 401 || status == 403;
}

bool isPrintable(const std::string& text) {
    return std::ranges::all_of(text, [](char character) { return character > ' ' && character <= '~'; });
}

} // namespace

FleetWatch::FleetWatch(HttpThread& httpThread, FleetSettings clientSettings, FleetTimes clientTimes,
                       Listener settingsListener)
    : thread(httpThread),
      settings(std::move(clientSettings)),
      times(clientTimes),
      listener(std::move(settingsListener)),
      table(settings.scopes),
      random(std::random_device()()),
      // Clients share the members evenly.
      endpoint(random() % std::max<std::size_t>(settings.access.endpoints.size(), 1)) {}

FleetWatch::~FleetWatch() = default;

void FleetWatch::start() {
    thread.post([this] { connect(); });
}

void FleetWatch::connect() {
    if (settings.access.endpoints.empty()) {
        return;
    }
    if (!settings.access.username.empty() && token.empty()) {
        authenticate();
    } else {
        read();
    }
}

std::unique_ptr<HttpTransfer> FleetWatch::send(const char* path, std::string body, std::chrono::milliseconds timeout,
                                               HttpHandler handler) {
    // The last header makes a member end a watch when it has lost the leader.
    std::vector<std::string> headers{"Content-Type: application/json", "Expect:", "Grpc-Metadata-hasleader: true"};
    if (!token.empty()) {
        headers.push_back("Authorization: " + token);
    }
    return thread.start(settings.access,
                        {settings.access.endpoints[endpoint] + path, std::move(headers), std::move(body), timeout},
                        std::move(handler));
}

void FleetWatch::authenticate() {
    request = send(etcd::authenticatePath, etcd::makeAuthenticate(settings.access.username, settings.access.password),
                   times.answer, {nullptr, [this](const HttpResult& result) { receiveToken(result); }});
}

void FleetWatch::receiveToken(const HttpResult& result) {
    if (etcd::parseFailure(result.body) == etcd::authenticationDisabled) {
        read(); // a cluster may be set up before its users are
        return;
    }
    const auto received = result.isSuccess() ? etcd::parseToken(result.body) : std::nullopt;
    if (!received || !isPrintable(*received)) {
        failFor(result);
        return;
    }
    token = *received;
    read();
}

void FleetWatch::read() {
    // One pair more than the limit shows that there are too many.
    request = send(etcd::transactionPath, etcd::makeSnapshot(settings.scopes, FleetTable::maxKeys + 1), times.answer,
                   {nullptr, [this](const HttpResult& result) { receiveSnapshot(result); }});
}

void FleetWatch::receiveSnapshot(const HttpResult& result) {
    const auto snapshot = result.isSuccess() ? etcd::parseSnapshot(result.body) : std::nullopt;
    if (!snapshot) {
        failFor(result);
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
    pass();
    watch(snapshot->revision + 1);
}

void FleetWatch::watch(std::int64_t revision) {
    line.clear();
    confirmed = 0;
    request = send(etcd::watchPath, etcd::makeWatch(settings.scopes, revision), std::chrono::milliseconds(0),
                   {[this](std::string_view data) { receiveEvents(data); },
                    [this](const HttpResult& result) { failFor(result); }});
    confirmationTimer = thread.callAfter(times.answer, [this] { fail("it does not confirm the watch"); });
    planProbe();
}

void FleetWatch::receiveEvents(std::string_view data) {
    line += data;
    const auto* const current = request.get();
    for (auto end = line.find('\n'); end != std::string::npos; end = line.find('\n')) {
        const auto reply = etcd::parseWatchReply(std::string_view(line).substr(0, end));
        line.erase(0, end + 1);
        if (!reply) {
            fail("it sends an unknown answer");
        } else {
            receive(*reply);
        }
        if (request.get() != current) {
            return; // failed
        }
    }
    if (line.size() > HttpTransfer::bufferLimit) {
        fail("it sends an answer that is too long");
    }
}

void FleetWatch::receive(const etcd::WatchReply& reply) {
    if (reply.canceled) {
        // The reason may be a token that has expired.
        dropToken();
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
        planPass();
    }
}

void FleetWatch::planPass() {
    // Not postponed by further changes, so that a long series of them does not hold back the first one.
    if (passTimer == 0) {
        passTimer = thread.callAfter(times.gathering, [this] {
            passTimer = 0;
            pass();
        });
    }
}

void FleetWatch::pass() {
    listener(table.merge());
}

void FleetWatch::planProbe() {
    probeTimer = thread.callAfter(withJitter(times.probe), [this] { probe(); });
}

void FleetWatch::probe() {
    // A stopped member, or a cut network, leaves the connection of the watch open and silent.
    probeRequest = send(etcd::rangePath, etcd::makeProbe(settings.scopes.front()), times.answer,
                        {nullptr, [this](const HttpResult& result) {
                             if (!result.isSuccess()) {
                                 failFor(result);
                                 return;
                             }
                             failures = 0;
                             probeRequest.reset();
                             planProbe();
                         }});
}

void FleetWatch::failFor(const HttpResult& result) {
    if (isAboutToken(result.status)) {
        dropToken();
    }
    if (!result.error.empty()) {
        fail(result.error);
        return;
    }
    auto reason = etcd::parseFailure(result.body);
    if (reason.empty()) {
        reason = result.status == 200 ? "it has ended the answer" : "it does not explain itself";
    }
    fail("status " + std::to_string(result.status) + ", " + toLoggedText(reason));
}

void FleetWatch::fail(const std::string& reason) {
    if (passTimer != 0 && !table.isOverfull()) {
        pass();
    }
    cancelTimers();
    request.reset();
    probeRequest.reset();
    if (!std::exchange(reported, true)) {
        ZelLog(watchLogger, ZelLogLevel::Warning, ZEL_HERE,
               "The cluster cannot be followed, and its last settings stay in force: " + reason);
    }
    endpoint = (endpoint + 1) % settings.access.endpoints.size();
    const auto doublings = std::min(failures++, 16U);
    const auto delay = std::min(times.longestDelay, times.firstDelay * (1U << doublings));
    retryTimer = thread.callAfter(withJitter(delay), [this] { connect(); });
}

void FleetWatch::failOverfull() {
    if (!std::exchange(overfullReported, true)) {
        reported = false; // a line of its own, even behind that of a lost connection
    }
    fail("it holds more than 10,000 keys or 16 MiB for this client");
}

void FleetWatch::cancelTimers() {
    for (auto* const timer : {&retryTimer, &passTimer, &probeTimer, &confirmationTimer}) {
        thread.cancel(std::exchange(*timer, 0));
    }
}

std::chrono::milliseconds FleetWatch::withJitter(std::chrono::milliseconds time) {
    std::uniform_int_distribution<std::int64_t> part(time.count() / 2, time.count());
    return std::chrono::milliseconds(part(random));
}

} // namespace fleet
