// Three members with certificates and authentication. Not part of the suite, because it takes minutes: ./test fleet.
#include "FleetTable.h"
#include "FollowedCluster.h"

#include <zel/LogSink.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>

namespace fleet_test {
namespace {

using namespace std::chrono_literals;
using ZelUnified::ConfigMap;

constexpr std::size_t clientCount = 10;
constexpr auto patience = 120s;

/// Counts the clients that cannot follow their cluster: each logs a line when it begins, and one when it is over.
class LostClients final : public zel::logging::LogSink {
public:
    void write(const zel::logging::LogRecord& record) override {
        if (record.logger != "Fleet-Watch") {
            return;
        }
        const std::lock_guard lock(mutex);
        lost += record.level == ZelLogLevel::Warning ? 1 : -1;
        changed.notify_all();
    }

    /// Returns false on timeout.
    bool waitFor(std::size_t count) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, patience, [&] { return lost == static_cast<std::ptrdiff_t>(count); });
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    std::ptrdiff_t lost = 0;
};

class FleetCluster : public testing::Test {
protected:
    void SetUp() override {
        zel::logging::addSink(lostClients);
        if (const auto reason = EtcdCluster::whyUnavailable(); !reason.empty()) {
            GTEST_SKIP() << reason;
        }
        cluster = std::make_unique<EtcdCluster>(ClusterOptions{.members = 3, .tls = true, .authentication = true});
        for (std::size_t count = 0; count < clientCount; ++count) {
            clients.push_back(std::make_unique<Client>(cluster->getAccess()));
        }
    }

    void TearDown() override {
        clients.clear();
        zel::logging::removeSink(lostClients);
    }

    /// Writes the value. A member may be gone and no leader elected, so it tries again for a while.
    void put(const std::string& key, const std::string& value) const {
        const auto end = std::chrono::steady_clock::now() + patience;
        for (;;) {
            try {
                cluster->put(fleet::FleetScope::ofAll().prefix + key, value);
                return;
            } catch (const fleet::EtcdError&) {
                if (std::chrono::steady_clock::now() > end) {
                    throw;
                }
            }
        }
    }

    bool allReach(const ConfigMap& expected) const {
        return std::ranges::all_of(clients, [&](const auto& client) {
            return client->observer.waitFor([&](const auto& settings) { return settings == expected; });
        });
    }

    const std::shared_ptr<LostClients> lostClients = std::make_shared<LostClients>();
    std::unique_ptr<EtcdCluster> cluster;
    std::vector<std::unique_ptr<Client>> clients;
};

TEST_F(FleetCluster, EveryClientHasTheLastValuesAfterALeaderWasKilledDuringTenThousandChanges) {
    constexpr std::size_t changes = 10000;
    constexpr std::size_t keys = 100;
    ConfigMap expected;
    std::size_t killed = 0;
    for (std::size_t change = 0; change < changes; ++change) {
        if (change == changes / 3) {
            killed = cluster->findLeader();
            cluster->kill(killed);
        } else if (change == changes * 2 / 3) {
            cluster->restart(killed);
        }
        const auto key = "Key" + std::to_string(change % keys);
        put(key, std::to_string(change));
        expected[KyrCoreUtils::toWideString(key)] = std::to_wstring(change);
    }
    EXPECT_TRUE(allReach(expected));
    std::size_t calls = 0;
    for (const auto& client : clients) {
        calls = std::max(calls, client->observer.countCalls());
    }
    EXPECT_LT(calls, changes) << "changes that arrive together are one update";
}

TEST_F(FleetCluster, ClientsLeaveAMemberThatNoLongerAnswers) {
    put("Key", "before");
    EXPECT_TRUE(allReach({{L"Key", L"before"}}));
    for (std::size_t member = 0; member < cluster->size(); ++member) {
        cluster->suspend(member);
        const auto value = "without member " + std::to_string(member);
        put("Key", value);
        EXPECT_TRUE(allReach({{L"Key", KyrCoreUtils::toWideString(value)}}));
        cluster->resume(member);
    }
}

TEST_F(FleetCluster, ClientsKeepTheirSettingsWhileTheClusterHasNoMajority) {
    put("Key", "before");
    EXPECT_TRUE(allReach({{L"Key", L"before"}}));
    cluster->kill(0);
    cluster->kill(1);
    EXPECT_TRUE(lostClients->waitFor(clientCount));
    for (const auto& client : clients) {
        EXPECT_EQ(client->observer.getLatest(), (ConfigMap{{L"Key", L"before"}}));
    }
    cluster->restartTogether({0, 1});
    put("Key", "after");
    EXPECT_TRUE(allReach({{L"Key", L"after"}}));
}

TEST_F(FleetCluster, ClientReadsAsMuchAsTheLimitsAllow) {
    clients.clear();
    ConfigMap expected;
    std::size_t bytes = 0;
    for (std::size_t number = 0; number < fleet::FleetTable::maxKeys; ++number) {
        const auto key = "Key" + std::to_string(10000 + number);
        const std::string value(fleet::FleetTable::maxBytes / fleet::FleetTable::maxKeys - key.size(), 'x');
        put(key, value);
        bytes += key.size() + value.size();
        expected[KyrCoreUtils::toWideString(key)] = KyrCoreUtils::toWideString(value);
    }
    EXPECT_GT(bytes, fleet::FleetTable::maxBytes - 16384);
    clients.push_back(std::make_unique<Client>(cluster->getAccess()));
    EXPECT_TRUE(allReach(expected));
}

TEST_F(FleetCluster, WipedMemberServesTheClientsAgain) {
    put("Key", "before");
    EXPECT_TRUE(allReach({{L"Key", L"before"}}));
    const auto leader = cluster->findLeader();
    cluster->wipe(leader);
    put("Key", "after");
    EXPECT_TRUE(allReach({{L"Key", L"after"}}));
    // Only the restored member and one other are left.
    cluster->kill((leader + 1) % cluster->size());
    put("Key", "last");
    EXPECT_TRUE(allReach({{L"Key", L"last"}}));
}

} // namespace
} // namespace fleet_test
