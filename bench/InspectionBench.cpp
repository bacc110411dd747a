// Measures what the inspection service costs the client, and how soon another process sees a change.
#include "InspectedClient.h"
#include "RowSuite.h"

#include <kyr/LocalConnection.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <deque>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace std::chrono_literals;
using bench::InspectedClient;
using KyrCoreUtils::LocalConnection;
using Clock = std::chrono::steady_clock;
using Inspection = InspectedClient::Inspection;

constexpr std::size_t watcherCount = 100;
constexpr std::size_t changes = 200; // two seconds
constexpr auto changeInterval = 10ms;
constexpr std::size_t changesInCall = 2000;
constexpr int callsInRound = 20;
constexpr auto patience = 30s;

double secondsSince(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

/// Another process, as far as the client can tell.
class Peer {
public:
    explicit Peer(const InspectedClient& client) : connection(client.socketPath()) {}

    void send(const std::string& request) {
        bench::require(connection.sendLine(request, patience), "the request sent");
    }
    std::string receive() {
        std::string line;
        bench::require(connection.receiveLine(line, patience) == LocalConnection::Received::Line, "a line received");
        return line;
    }
    void watch() {
        send(R"({"verb":"watch","keys":["BenchKey"]})");
        bench::require(receive().find("\"done\"") != std::string::npos, "the watch accepted");
    }
    /// Waits for the event of a change of the value. None may be lost.
    void awaitEvent() {
        const auto isValue = [](const std::string& line) {
            bench::require(line.find("\"notification\"") != std::string::npos, "every event received");
            return line.find("\"Value\"") != std::string::npos;
        };
        while (!isValue(receive())) {
        }
    }

private:
    LocalConnection connection;
};

/// Changes a key a hundred times a second, with a task of the client behind each change. Returns the time that the task
/// waited, at the 99th percentile.
double measureDelay(std::size_t watchers) {
    const InspectedClient client(Inspection::With);
    client.run([&] { client.set(L"BenchKey", L"begin"); });
    std::deque<Peer> peers;
    for (std::size_t i = 0; i < watchers; ++i) {
        peers.emplace_back(client).watch();
    }
    std::thread reader([&] {
        for (std::size_t i = 0; i < changes; ++i) {
            std::ranges::for_each(peers, &Peer::awaitEvent);
        }
    });
    std::vector<double> delays;
    auto next = Clock::now();
    for (std::size_t i = 0; i < changes; ++i) {
        client.post([&client, value = std::to_wstring(i)] { client.set(L"BenchKey", value); });
        client.post([&delays, posted = Clock::now()] { delays.push_back(secondsSince(posted)); });
        next += changeInterval;
        std::this_thread::sleep_until(next); // the rate is what is measured
    }
    client.run([] {});
    reader.join();
    std::ranges::sort(delays);
    return delays[delays.size() * 99 / 100];
}

/// Changes a key many times without watchers.
double measureChanges(Inspection inspected) {
    const InspectedClient client(inspected);
    double seconds = 0;
    client.run([&] {
        client.set(L"BenchKey", L"begin");
        const auto begin = Clock::now();
        for (std::size_t i = 0; i < changesInCall; ++i) {
            client.set(L"BenchKey", std::to_wstring(i));
        }
        seconds = secondsSince(begin);
    });
    return seconds;
}

/// Returns the longest time that a task of the client waits while the client answers one request.
double measureAnswer(const std::string& verb) {
    const InspectedClient client(Inspection::With);
    Peer peer(client);
    std::atomic<bool> isAnswered = false;
    peer.send("{\"verb\":\"" + verb + "\"}");
    std::thread reader([&] {
        bench::require(peer.receive().find('"' + verb + '"') != std::string::npos, "the answer of the verb");
        isAnswered = true;
    });
    double longest = 0;
    while (!isAnswered) {
        const auto posted = Clock::now();
        client.run([] {});
        longest = std::max(longest, secondsSince(posted));
    }
    reader.join();
    return longest;
}

/// Returns the time from a request of one process to the event that another one receives.
double measureEvent(const InspectedClient& client, const std::string& request) {
    Peer watcher(client);
    Peer changer(client);
    watcher.watch();
    const auto begin = Clock::now();
    changer.send(request);
    watcher.awaitEvent();
    const double seconds = secondsSince(begin);
    bench::require(changer.receive().find("\"done\"") != std::string::npos, "the change made");
    return seconds;
}

double measureSet() {
    return measureEvent(InspectedClient(Inspection::With), R"({"verb":"set","key":"BenchKey","value":"new"})");
}

double measurePolicy() {
    const InspectedClient client(Inspection::With);
    client.writePolicy("BenchKey", "new");
    return measureEvent(client, R"({"verb":"refresh"})");
}

double measureDocument() {
    return measureEvent(InspectedClient(Inspection::With),
                        R"({"verb":"mdm","document":"<Config><Group><BenchKey>1</BenchKey></Group></Config>"})");
}

} // namespace

int main(int argc, char** argv) {
    bench::RowSuite suite(argc, argv);
    const std::string delayed = "I1 wait of a task, 99th percentile, 100 changes a second";
    suite.addTimed(delayed, "100 watchers", 1, [] { return measureDelay(watcherCount); });
    suite.addTimed(delayed, "without watchers", 1, [] { return measureDelay(0); });
    const std::string changed = "I2 change without watchers";
    suite.addTimed(changed, "inspection service", callsInRound, [] { return measureChanges(Inspection::With); });
    suite.addTimed(changed, "bare client", callsInRound, [] { return measureChanges(Inspection::Without); });
    const std::string answered = "I3 longest wait of a task during an answer";
    for (const std::string verb : {"report", "log", "list", "explanations"}) {
        suite.addTimed(answered, verb, 1, [verb] { return measureAnswer(verb); });
    }
    const std::string seen = "I4 time until a watcher has the event";
    suite.addTimed(seen, "set", 1, measureSet);
    suite.addTimed(seen, "policy and refresh", 1, measurePolicy);
    suite.addTimed(seen, "document", 1, measureDocument);
    return suite.main();
}
