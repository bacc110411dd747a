#include "TestHost.h"

#include <kyr/LocalListener.h>

#include <LogRecorder.h>
#include <ProcessUsage.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <optional>

namespace inspection_test {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

TEST(InspectionConnections, SocketAndFolderBelongToTheUserOnly) {
    const TestHost host;
    const auto modeOf = [](const std::filesystem::path& path) { return std::filesystem::status(path).permissions(); };
    using std::filesystem::perms;
    EXPECT_EQ(modeOf(host.socketPath()), perms::owner_read | perms::owner_write);
    EXPECT_EQ(modeOf(std::filesystem::path(host.socketPath()).parent_path()), perms::owner_all);
}

TEST(InspectionConnections, EndingTheServerRemovesTheSocketAndClosesConnections) {
    TestHost host;
    Peer idle(host);
    Peer watching(host);
    ASSERT_EQ(watching.ask({{"verb", "watch"}})["type"], "done");
    host.endServer();
    EXPECT_TRUE(idle.isDropped());
    EXPECT_TRUE(watching.isDropped());
    EXPECT_FALSE(std::filesystem::exists(host.socketPath()));
    host.set(L"Theme", L"dark"); // the observer is removed, or its task would use the destroyed server
}

TEST(InspectionConnections, AnOversizedRequestIsRefusedAndDoesNotAffectOthers) {
    TestHost host;
    Peer greedy(host);
    Peer other(host);
    const std::string filler(1024 * 1024 + 1, 'x');
    greedy.sendText("{\"id\":1,\"verb\":\"get\",\"key\":\"" + filler + "\"}");
    auto reply = greedy.receive();
    EXPECT_EQ(reply["exitCode"], 2);
    EXPECT_THAT(reply["message"].get<std::string>(), HasSubstr("longer than 1048576 bytes"));
    EXPECT_EQ(other.ask({{"verb", "hello"}})["type"], "hello");
    EXPECT_EQ(greedy.ask({{"id", 2}, {"verb", "hello"}})["id"], 2) << "the rest of the long line is ignored";
}

TEST(InspectionConnections, AVeryLongRequestIsRefusedOnce) {
    inspection::InspectionLimits limits;
    limits.requestBytes = 100;
    TestHost host(limits);
    Peer peer(host);
    peer.sendText(std::string(200000, 'x'));
    EXPECT_EQ(peer.receive()["exitCode"], 2);
    EXPECT_EQ(peer.ask({{"verb", "hello"}})["type"], "hello");
}

TEST(InspectionConnections, AConnectionWithoutARequestIsDropped) {
    inspection::InspectionLimits limits;
    limits.requestTime = std::chrono::milliseconds(50);
    TestHost host(limits);
    Peer silent(host);
    EXPECT_TRUE(silent.isDropped());
}

TEST(InspectionConnections, AnIdleConnectionIsDroppedButAWatcherIsNot) {
    inspection::InspectionLimits limits;
    limits.idleTime = std::chrono::milliseconds(50);
    TestHost host(limits);
    Peer watching(host);
    ASSERT_EQ(watching.ask({{"verb", "watch"}})["type"], "done");
    Peer idle(host);
    ASSERT_EQ(idle.ask({{"verb", "hello"}})["type"], "hello");
    EXPECT_TRUE(idle.isDropped());
    host.set(L"Theme", L"dark");
    EXPECT_EQ(watching.receive()["type"], "notification");
}

TEST(InspectionConnections, APeerThatDoesNotReadItsReplyIsDropped) {
    inspection::InspectionLimits limits;
    limits.replyTime = std::chrono::milliseconds(50);
    ZelUnified::ConfigMap defaults;
    for (int i = 0; i < 5000; ++i) {
        defaults.emplace(L"Key" + std::to_wstring(i), std::wstring(200, L'v'));
    }
    TestHost host(limits, defaults);
    const testing_host::LogRecorder log;
    Peer slow(host);
    slow.sendText("{\"verb\":\"list\"}"); // the reply is longer than the buffers of the socket
    Peer other(host);
    ASSERT_EQ(other.ask({{"verb", "hello"}})["type"], "hello");
    EXPECT_TRUE(slow.isCutOff());
}

TEST(InspectionConnections, ConnectionsBeyondTheLimitAreRefused) {
    inspection::InspectionLimits limits;
    limits.connections = 2;
    TestHost host(limits);
    std::optional<Peer> first(host);
    Peer second(host);
    ASSERT_EQ(first->ask({{"verb", "hello"}})["type"], "hello");
    ASSERT_EQ(second.ask({{"verb", "hello"}})["type"], "hello");
    Peer third(host);
    EXPECT_TRUE(third.isDropped());
    first.reset();
    ASSERT_EQ(second.ask({{"verb", "hello"}})["type"], "hello");
    Peer fourth(host);
    EXPECT_EQ(fourth.ask({{"verb", "hello"}})["type"], "hello");
}

TEST(InspectionConnections, TenThousandConnectionsLeakNothing) {
    constexpr int connections = 10000;
    TestHost host;
    Peer lasting(host);
    const auto connect = [&](int count) {
        for (int i = 0; i < count; ++i) {
            Peer peer(host);
            ASSERT_EQ(peer.ask({{"verb", i % 10 == 0 ? "watch" : "hello"}}).count("type"), 1U);
        }
    };
    const auto descriptors = [] { return testing_host::ProcessUsage::measure().fileDescriptors; };
    // Asks until the server has noticed the end of the other connections.
    const auto settle = [&](std::size_t expected) {
        for (int i = 0; i < 10000 && descriptors() != expected; ++i) {
            lasting.ask({{"verb", "hello"}});
        }
        EXPECT_EQ(descriptors(), expected);
    };
    lasting.ask({{"verb", "hello"}});
    const auto open = descriptors();
    connect(connections / 10); // fills the caches of the allocator
    settle(open);
    const auto before = testing_host::ProcessUsage::measure();
    connect(connections);
    settle(open);
    const auto after = testing_host::ProcessUsage::measure();
    EXPECT_EQ(after.threads, before.threads);
    if (!testing_host::ProcessUsage::isInstrumented()) {
        EXPECT_LT(after.heapBytes, before.heapBytes + 200000) << "less than 20 bytes for each connection";
    }
}

/// Connects as another user and returns 0 if the server closes the connection without a word.
int connectAsNobody(const std::string& path) {
    constexpr uid_t nobody = 65534;
    const int child = fork();
    if (child == 0) {
        alarm(20); // bounds the wait for the server
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        path.copy(address.sun_path, sizeof(address.sun_path) - 1);
        const int descriptor = socket(AF_UNIX, SOCK_STREAM, 0);
        char byte = 0;
        if (setuid(nobody) != 0 ||
            connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
            _exit(2);
        }
        _exit(recv(descriptor, &byte, 1, 0) == 0 ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(InspectionConnections, AProcessOfAnotherUserIsRefusedEvenIfItReachesTheSocket) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    using std::filesystem::perms;
    const TestHost host;
    EXPECT_EQ(connectAsNobody(host.socketPath()), 2) << "the folder belongs to the user only";
    for (const auto& path : {host.getProfile().root(), std::filesystem::path(host.socketPath()).parent_path(),
                             std::filesystem::path(host.socketPath())}) {
        std::filesystem::permissions(path, perms::all);
    }
    const testing_host::LogRecorder log;
    EXPECT_EQ(connectAsNobody(host.socketPath()), 0);
    EXPECT_TRUE(log.mentions("of another user"));
}

TEST(InspectionConnections, APeerThatDisconnectsDoesNotAffectOthers) {
    TestHost host;
    for (int i = 0; i < 50; ++i) {
        Peer vanishing(host);
        vanishing.sendText("{\"verb\":\"list\"}\n{\"verb\":\"watch\"}\n{\"verb\":\"li");
    }
    Peer peer(host);
    EXPECT_EQ(peer.ask({{"verb", "hello"}})["type"], "hello");
}

TEST(InspectionConnections, AnUnusedSocketIsReplacedAndOneInUseIsNot) {
    const testing_host::TemporaryProfile profile;
    const auto path = (profile.root() / "run" / "s.sock").string();
    {
        KyrCoreUtils::LocalListener killed(path);
        ASSERT_EQ(killed.getError(), 0);
        const KyrCoreUtils::LocalListener second(path);
        EXPECT_EQ(second.getError(), EADDRINUSE);
        std::filesystem::rename(path, path + ".kept"); // as if the process had been killed before it removed the file
    }
    std::filesystem::rename(path + ".kept", path);
    const KyrCoreUtils::LocalListener next(path);
    EXPECT_EQ(next.getError(), 0);
}

TEST(InspectionConnections, AFileThatIsNotASocketIsNotReplaced) {
    const testing_host::TemporaryProfile profile;
    const auto path = profile.root() / "run" / "s.sock";
    testing_host::writeFile(path, "kept");
    const KyrCoreUtils::LocalListener listener(path.string());
    EXPECT_EQ(listener.getError(), EADDRINUSE);
    EXPECT_EQ(testing_host::readFile(path), "kept");
}

} // namespace
} // namespace inspection_test
