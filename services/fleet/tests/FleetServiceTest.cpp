#include "EtcdCluster.h"
#include "FleetHost.h"
#include "FollowedCluster.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>

#include <BootstrapStoreFactory.h>
#include <ConfigServiceIds.h>
#include <ConfigValueNotifiers.h>
#include <LogRecorder.h>
#include <ManualClock.h>
#include <TemporaryProfile.h>
#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <utility>

namespace fleet_test {
namespace {

class FleetService : public testing::Test {
protected:
    void SetUp() override {
        if (const auto reason = EtcdCluster::whyUnavailable(); !reason.empty()) {
            GTEST_SKIP() << reason;
        }
    }

    void writeDefaults(const ZelUnified::FleetAccess& access, const FleetHost::Rows& others = {}) const {
        FleetHost::writeDefaults(profile.resources(), access, others);
    }

    /// Writes the policy of the administrator, or of the user.
    static void writePolicy(const std::filesystem::path& folder, const FleetHost::Rows& rows) {
        std::string text = "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\Policies"
                           "\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC]\r\n";
        for (const auto& [key, value] : rows) {
            text += '"' + key + "\"=\"" + value + "\"\r\n";
        }
        testing_host::writeFile(folder / "policy.reg", text);
    }
    /// Also refreshes the configuration.
    static void setPolicy(const FleetHost& host, const std::filesystem::path& folder, const FleetHost::Rows& rows) {
        writePolicy(folder, rows);
        host.onServices([&] { host.getConfiguration().refreshConfigFeatureSet(); });
        host.waitForReview();
    }
    void setPolicy(const FleetHost& host, const FleetHost::Rows& rows) const {
        setPolicy(host, administrator / "HKEY_CURRENT_USER", rows);
    }
    static FleetHost::Rows makePolicy(const ZelUnified::FleetAccess& access) {
        return {{"FleetEndpoints", access.endpoints.front()},
                {"FleetPlainHttpAllowed", "true"},
                {"FleetConnectionUsername", access.username},
                {"FleetConnectionPassword", access.password.view()}};
    }
    /// Leaves the cached copy of a client whose endpoints are removed while it does not run.
    void leaveCopy() const {
        EtcdCluster cluster;
        cluster.put("/lumora/fleet/all/Theme", "dark");
        writeDefaults(cluster.getAccess());
        {
            const FleetHost host;
            ASSERT_TRUE(host.waitForValue(L"Theme", L"dark"));
        }
        writeDefaults({});
    }
    static std::filesystem::path getCachedCopy() {
        return KyrCoreUtils::FileUtils::getConfigDirectory() + "/Cache/cachedFleetConfigStore.dat";
    }

    void addBootstrapFile(const FleetHost& host, const ZelUnified::FleetAccess& access) const {
        const auto file = profile.root() / "installer.properties";
        testing_host::writeFile(file, "FleetEndpoints: " + access.endpoints.front() +
                                          "\nFleetPlainHttpAllowed: true\nFleetUser: ada\n");
        host.onServices([&] {
            auto* const maker = dynamic_cast<ZelUnified::BootstrapStoreFactory*>(&host.getConfiguration());
            ASSERT_NE(maker, nullptr);
            host.getConfiguration().addConfigStore(maker->createBootstrapStore(file.string(), 100));
        });
    }

    const testing_host::TemporaryProfile profile;
    const std::filesystem::path administrator = profile.root() / "etc";
};

/// A store of another service, with a cached copy. Its name is that of an administrator's store.
class DisguisedStore final : public ZelUnified::ConfigStore {
public:
    DisguisedStore(std::string storeName, int storePriority) : name(std::move(storeName)), priority(storePriority) {}

    bool getValue(const std::wstring& key, std::wstring& value) override {
        const auto found = values.find(key);
        value = found == values.end() ? std::wstring() : found->second;
        return found != values.end();
    }
    bool storeValue(const std::wstring& /*key*/, const std::wstring& /*value*/) override { return false; }
    std::vector<std::wstring> getKeys() override { return {L"FleetEndpoints"}; }
    bool removeValue(const std::wstring& /*key*/) override { return false; }
    void removeAllValues() override {}
    bool isReadOnly() override { return true; }
    std::string getName() override { return name; }
    int getPriority() override { return priority; }
    void persistValues() override {}
    void destroy() override {}
    bool isLocal() override { return true; }
    bool waitForStoreReady() override { return true; }
    bool shouldCacheConfigStore() override { return true; }

private:
    const std::string name;
    const int priority;
    const ZelUnified::ConfigMap values{{L"FleetEndpoints", L"https://127.0.0.1:1"}};
};

TEST_F(FleetService, ChangeInTheClusterReachesTheRecord) {
    EtcdCluster cluster;
    writeDefaults(cluster.getAccess());
    const FleetHost host;
    cluster.put("/lumora/fleet/groups/night shift/Theme", "dark");
    EXPECT_TRUE(host.waitForValue(L"Theme", L"dark"));
    EXPECT_EQ(host.getStoreOf(L"Theme"), L"FleetConfigStore");
    host.onServices([&] { host.getConfiguration().setConfig(L"Theme", L"mine"); });
    EXPECT_TRUE(host.waitForValue(L"Theme", L"mine"));
    host.onServices([&] { host.getConfiguration().resetConfig(L"Theme"); });
    cluster.remove("/lumora/fleet/groups/night shift/Theme");
    EXPECT_TRUE(host.waitForValue(L"Theme", L"default"));
}

TEST_F(FleetService, ObserverIsCalledOncePerChange) {
    EtcdCluster cluster;
    cluster.put("/lumora/fleet/all/Theme", "first");
    writeDefaults(cluster.getAccess());
    std::vector<std::wstring> seen; // the end of the host changes the value once more
    const FleetHost host;
    ASSERT_TRUE(host.waitForValue(L"Theme", L"first"));
    host.onServices([&] {
        const auto record = host.getRecords().getConfig(L"Theme");
        record->getConfigValueNotifiers()->getValueNotifier()->connect(
            [&seen, &host] { seen.push_back(host.getRecords().getConfig(L"Theme")->getValue()); });
    });
    cluster.put("/lumora/fleet/all/Other", "1");
    ASSERT_TRUE(host.waitForValue(L"Other", L"1"));
    cluster.put("/lumora/fleet/users/ada/Theme", "second");
    ASSERT_TRUE(host.waitForValue(L"Theme", L"second"));
    cluster.put("/lumora/fleet/all/Last", "1");
    ASSERT_TRUE(host.waitForValue(L"Last", L"1"));
    EXPECT_EQ(seen, std::vector<std::wstring>{L"second"});
}

TEST_F(FleetService, StartWithoutTheClusterHasTheLastValues) {
    EtcdCluster cluster;
    writeDefaults(cluster.getAccess());
    {
        const FleetHost host;
        cluster.put("/lumora/fleet/all/Theme", "dark");
        ASSERT_TRUE(host.waitForValue(L"Theme", L"dark"));
    }
    cluster.kill(0);
    const FleetHost host;
    EXPECT_EQ(host.getValue(L"Theme"), L"dark");
    EXPECT_TRUE(host.getFleet().isFollowing());
    cluster.restart(0);
    cluster.put("/lumora/fleet/all/Theme", "light");
    EXPECT_TRUE(host.waitForValue(L"Theme", L"light"));
}

TEST_F(FleetService, FollowsTheClusterInATaskAfterItsStart) {
    EtcdCluster cluster;
    cluster.put("/lumora/fleet/all/Theme", "dark");
    writeDefaults(cluster.getAccess());
    const FleetHost host;
    host.getFactory().StopFeatureSet(ZelUnified::FleetService::fleetServiceId, nullptr);
    host.onServices([&] {
        host.getFactory().StartFeatureSet(ZelUnified::FleetService::fleetServiceId, nullptr);
        EXPECT_FALSE(host.getFleet().isFollowing());
    });
    host.onServices([&] { EXPECT_TRUE(host.getFleet().isFollowing()); });
    EXPECT_TRUE(host.waitForValue(L"Theme", L"dark"));
}

TEST_F(FleetService, StoreReturnsAfterAStopARefreshAndAReset) {
    EtcdCluster cluster;
    cluster.put("/lumora/fleet/all/Theme", "dark");
    writeDefaults(cluster.getAccess());
    const FleetHost host;
    ASSERT_TRUE(host.waitForValue(L"Theme", L"dark"));
    auto& factory = host.getFactory();
    factory.StopFeatureSet(ZelUnified::configServiceId, nullptr);
    EXPECT_EQ(host.getValue(L"Theme"), L"default");
    factory.StartFeatureSet(ZelUnified::configServiceId, nullptr);
    EXPECT_TRUE(host.waitForValue(L"Theme", L"dark"));
    // The cached copy keeps the value during a refresh, so the store is what is looked at.
    host.onServices([&] { host.getConfiguration().refreshConfigFeatureSet(); });
    host.waitForReview();
    host.onServices([&] {
        const auto store = host.getConfiguration().getConfigStoreByName("FleetConfigStore");
        EXPECT_NE(std::dynamic_pointer_cast<fleet::FleetConfigStore>(store), nullptr);
    });
    factory.invokeResetData(ZelUnified::ResetDataOptionEnum::ResetAll);
    EXPECT_TRUE(host.waitForValue(L"Theme", L"dark"));
    cluster.put("/lumora/fleet/all/Theme", "light");
    EXPECT_TRUE(host.waitForValue(L"Theme", L"light"));
}

TEST_F(FleetService, StoreReplacesAnotherOneOfItsName) {
    EtcdCluster cluster;
    cluster.put("/lumora/fleet/all/Theme", "dark");
    writeDefaults(cluster.getAccess());
    const FleetHost host(administrator, [](auto factory, auto registry) {
        auto times = shortTimes();
        times.probe = std::chrono::hours(1); // each probe looks after the store too
        return std::make_shared<fleet::FleetServiceImpl>(std::move(factory), times, std::move(registry));
    });
    ASSERT_TRUE(host.waitForValue(L"Theme", L"dark"));
    host.onServices([&] {
        host.getConfiguration().removeConfigStore("FleetConfigStore");
        host.getConfiguration().addConfigStore(std::make_shared<DisguisedStore>("FleetConfigStore", 45));
    });
    host.waitForReview();
    EXPECT_EQ(host.getValue(L"Theme"), L"dark");
    EXPECT_EQ(host.getValue(L"FleetEndpoints"), KyrCoreUtils::toWideString(cluster.getAccess().endpoints.front()));
}

TEST_F(FleetService, ChangeWhileTheConfigurationIsStoppedIsAddedAfterItsStart) {
    EtcdCluster cluster;
    cluster.put("/lumora/fleet/all/Theme", "dark");
    writeDefaults(cluster.getAccess());
    const FleetHost host;
    ASSERT_TRUE(host.waitForValue(L"Theme", L"dark"));
    host.getFactory().StopFeatureSet(ZelUnified::configServiceId, nullptr);
    cluster.put("/lumora/fleet/all/Theme", "light");
    host.getFactory().StartFeatureSet(ZelUnified::configServiceId, nullptr);
    EXPECT_TRUE(host.waitForValue(L"Theme", L"light"));
}

TEST_F(FleetService, PolicyStartsAndEndsTheWatch) {
    EtcdCluster cluster;
    cluster.put("/lumora/fleet/all/Theme", "dark");
    writeDefaults({});
    const FleetHost host(administrator);
    EXPECT_FALSE(host.getFleet().isFollowing());
    auto policy = makePolicy(cluster.getAccess());
    policy["FleetPriority"] = "47";
    setPolicy(host, policy);
    EXPECT_TRUE(host.waitForValue(L"Theme", L"dark"));
    host.onServices(
        [&] { EXPECT_EQ(host.getConfiguration().getConfigStoreByName("FleetConfigStore")->getPriority(), 47); });
    EXPECT_TRUE(std::filesystem::exists(getCachedCopy()));
    setPolicy(host, {});
    EXPECT_FALSE(host.getFleet().isFollowing());
    EXPECT_EQ(host.getValue(L"Theme"), L"default");
    EXPECT_FALSE(std::filesystem::exists(getCachedCopy()));
}

TEST_F(FleetService, EndOfTheWatchRemovesTheCopyOfAnEarlierRun) {
    EtcdCluster cluster;
    cluster.put("/lumora/fleet/all/Theme", "dark");
    writeDefaults({});
    writePolicy(administrator / "HKEY_CURRENT_USER", makePolicy(cluster.getAccess()));
    {
        const FleetHost host(administrator);
        ASSERT_TRUE(host.waitForValue(L"Theme", L"dark"));
    }
    cluster.kill(0);
    const FleetHost host(administrator);
    ASSERT_EQ(host.getValue(L"Theme"), L"dark");
    setPolicy(host, {});
    EXPECT_EQ(host.getValue(L"Theme"), L"default");
    EXPECT_FALSE(std::filesystem::exists(getCachedCopy()));
}

TEST_F(FleetService, CopyIsRemovedIfTheEndpointsWereRemovedWhileTheClientWasNotRunning) {
    leaveCopy();
    testing_host::ManualClock clock;
    const FleetHost host;
    host.waitForReview();
    EXPECT_EQ(host.getValue(L"Theme"), L"dark") << "the client may add a bootstrap file with endpoints";
    clock.advance(fleet::FleetServiceImpl::reviewDelay);
    host.waitForReview();
    EXPECT_EQ(host.getValue(L"Theme"), L"default");
    EXPECT_FALSE(std::filesystem::exists(getCachedCopy()));
}

TEST_F(FleetService, FrequentReviewsDoNotPostponeTheRemovalOfTheCopy) {
    leaveCopy();
    testing_host::ManualClock clock;
    const FleetHost host;
    host.waitForReview();
    clock.advance(fleet::FleetServiceImpl::reviewDelay - 1);
    host.onServices([&] { host.getFleet().OnConfigStoreAdded("any"); });
    host.waitForReview();
    EXPECT_TRUE(std::filesystem::exists(getCachedCopy()));
    clock.advance(1);
    host.waitForReview();
    EXPECT_EQ(host.getValue(L"Theme"), L"default");
    EXPECT_FALSE(std::filesystem::exists(getCachedCopy()));
}

TEST_F(FleetService, CopyIsRemovedAfterAStopDuringTheDelay) {
    leaveCopy();
    testing_host::ManualClock clock;
    const FleetHost host;
    host.waitForReview();
    host.getFactory().StopFeatureSet(ZelUnified::FleetService::fleetServiceId, nullptr);
    clock.advance(fleet::FleetServiceImpl::reviewDelay);
    host.waitForReview();
    host.getFactory().StartFeatureSet(ZelUnified::FleetService::fleetServiceId, nullptr);
    host.waitForReview();
    EXPECT_TRUE(std::filesystem::exists(getCachedCopy())) << "the delay begins again";
    clock.advance(fleet::FleetServiceImpl::reviewDelay);
    host.waitForReview();
    EXPECT_EQ(host.getValue(L"Theme"), L"default");
    EXPECT_FALSE(std::filesystem::exists(getCachedCopy()));
}

TEST_F(FleetService, CopyStaysIfTheClientAddsItsBootstrapFileAfterTheStart) {
    EtcdCluster cluster;
    cluster.put("/lumora/fleet/all/Theme", "dark");
    writeDefaults(cluster.getAccess());
    {
        const FleetHost host;
        ASSERT_TRUE(host.waitForValue(L"Theme", L"dark"));
    }
    cluster.kill(0);
    writeDefaults({});
    testing_host::ManualClock clock;
    const FleetHost host;
    addBootstrapFile(host, cluster.getAccess());
    host.waitForReview();
    clock.advance(fleet::FleetServiceImpl::reviewDelay);
    host.waitForReview();
    EXPECT_TRUE(host.getFleet().isFollowing());
    EXPECT_EQ(host.getValue(L"Theme"), L"dark");
    EXPECT_TRUE(std::filesystem::exists(getCachedCopy()));
}

TEST_F(FleetService, PolicyStaysInForceAfterAStopOfTheConfiguration) {
    EtcdCluster cluster({.authentication = true});
    cluster.put("/lumora/fleet/all/Theme", "dark");
    writeDefaults({});
    const FleetHost host(administrator);
    setPolicy(host, makePolicy(cluster.getAccess()));
    ASSERT_TRUE(host.waitForValue(L"Theme", L"dark"));
    host.getFactory().StopFeatureSet(ZelUnified::configServiceId, nullptr);
    host.getFactory().StartFeatureSet(ZelUnified::configServiceId, nullptr);
    host.waitForReview();
    EXPECT_TRUE(host.getFleet().isFollowing());
    EXPECT_TRUE(host.waitForValue(L"Theme", L"dark"));
    cluster.put("/lumora/fleet/all/Theme", "light");
    EXPECT_TRUE(host.waitForValue(L"Theme", L"light"));
}

TEST_F(FleetService, LastSettingsReturnAfterAStopOfBothServicesWithoutTheCluster) {
    EtcdCluster cluster;
    cluster.put("/lumora/fleet/all/Theme", "dark");
    writeDefaults(cluster.getAccess());
    const FleetHost host;
    ASSERT_TRUE(host.waitForValue(L"Theme", L"dark"));
    cluster.kill(0);
    for (const auto id : {ZelUnified::FleetService::fleetServiceId, unsigned{ZelUnified::configServiceId}}) {
        host.getFactory().StopFeatureSet(id, nullptr);
    }
    EXPECT_EQ(host.getValue(L"Theme"), L"default");
    for (const auto id : {unsigned{ZelUnified::configServiceId}, ZelUnified::FleetService::fleetServiceId}) {
        host.getFactory().StartFeatureSet(id, nullptr);
    }
    EXPECT_TRUE(host.waitForValue(L"Theme", L"dark"));
}

TEST_F(FleetService, StoreReturnsAlthoughTheStartOfTheConfigurationAddsNoStore) {
    EtcdCluster cluster;
    cluster.put("/lumora/fleet/all/Theme", "dark");
    // The user's settings are in memory then, and no stop drops them.
    writeDefaults(cluster.getAccess(), {{"Lumora_SDK_Mode", "true"}});
    const FleetHost host;
    ASSERT_TRUE(host.waitForValue(L"Theme", L"dark"));
    host.getFactory().StopFeatureSet(ZelUnified::configServiceId, nullptr);
    EXPECT_EQ(host.getValue(L"Theme"), L"default");
    host.getFactory().StartFeatureSet(ZelUnified::configServiceId, nullptr);
    EXPECT_TRUE(host.waitForValue(L"Theme", L"dark"));
    host.getFactory().StopFeatureSet(ZelUnified::configServiceId, nullptr);
    cluster.kill(0);
    host.getFactory().StartFeatureSet(ZelUnified::configServiceId, nullptr);
    EXPECT_TRUE(host.waitForValue(L"Theme", L"dark")) << "also while the cluster cannot be reached";
}

TEST_F(FleetService, FollowsAfterAStartOfTheConfigurationThatAnnouncesNoStore) {
    EtcdCluster cluster;
    cluster.put("/lumora/fleet/all/Theme", "dark");
    writeDefaults(cluster.getAccess(), {{"Lumora_SDK_Mode", "true"}});
    testing_host::ManualClock clock;
    const FleetHost host;
    for (const auto id : {ZelUnified::FleetService::fleetServiceId, unsigned{ZelUnified::configServiceId}}) {
        host.getFactory().StopFeatureSet(id, nullptr);
    }
    host.onServices([&] { host.getFleet().StartFeatureSet(ZelUnified::FleetService::fleetServiceId, nullptr); });
    EXPECT_FALSE(host.getFleet().isFollowing());
    host.getFactory().StartFeatureSet(ZelUnified::configServiceId, nullptr);
    clock.advance(fleet::FleetServiceImpl::reviewDelay);
    host.waitForReview();
    EXPECT_TRUE(host.getFleet().isFollowing());
    EXPECT_TRUE(host.waitForValue(L"Theme", L"dark"));
}

TEST_F(FleetService, ValuesAreTheSameBeforeAndAfterARestart) {
    EtcdCluster cluster;
    const std::map<std::wstring, std::string> pairs{
        {L"Trailing", "dark \t"},         {L"Leading", "\n dark"},
        {L"Lines", "one\r\ntwo\n three"}, {L"Blank", " \t "},
        {L"Marked", "<a b=\"c\">&amp;"},  {L"Face", "\xF0\x9F\x99\x82 e\u0301"},
        {L"Space", "\u00A0wide\u2003"}};
    for (const auto& [key, value] : pairs) {
        cluster.put("/lumora/fleet/all/" + KyrCoreUtils::toString(key), value);
    }
    cluster.put("/lumora/fleet/all/Theme", "dark");
    writeDefaults(cluster.getAccess());
    std::map<std::wstring, std::wstring> before;
    {
        const FleetHost host;
        ASSERT_TRUE(host.waitForValue(L"Theme", L"dark"));
        for (const auto& [key, value] : pairs) {
            before[key] = host.getValue(key);
        }
    }
    EXPECT_EQ(before[L"Trailing"], L"dark");
    EXPECT_EQ(before[L"Lines"], L"one\r\ntwo\n three");
    cluster.kill(0);
    const FleetHost host;
    for (const auto& [key, value] : before) {
        EXPECT_EQ(host.getValue(key), value) << KyrCoreUtils::toString(key);
    }
}

TEST_F(FleetService, ClientOfTooManyGroupsUsesTheFirstOnes) {
    EtcdCluster cluster;
    std::string groups;
    for (int number = 0; number < 130; ++number) {
        groups += "g" + std::to_string(number) + ",";
    }
    cluster.put("/lumora/fleet/groups/g0/First", "1");
    cluster.put("/lumora/fleet/groups/g125/Last", "1");
    cluster.put("/lumora/fleet/groups/g126/Beyond", "1");
    writeDefaults(cluster.getAccess(), {{"FleetGroups", groups}});
    const testing_host::LogRecorder log;
    const FleetHost host;
    EXPECT_TRUE(host.waitForValue(L"First", L"1"));
    EXPECT_EQ(host.getValue(L"Last"), L"1");
    EXPECT_EQ(host.getValue(L"Beyond"), L"");
    EXPECT_TRUE(log.mentions("The client has 130 groups; only the first 126 are used"));
    cluster.put("/lumora/fleet/users/ada/Theme", "dark");
    EXPECT_TRUE(host.waitForValue(L"Theme", L"dark"));
}

TEST_F(FleetService, UserCannotChooseTheCluster) {
    writeDefaults({});
    const FleetHost host(administrator);
    host.onServices([&] { host.getConfiguration().setConfig(L"FleetEndpoints", L"https://127.0.0.1:1"); });
    host.getFactory().flushBackgroundDispatcher(); // the refresh reads the user's file
    host.onServices([&] { host.getConfiguration().refreshConfigFeatureSet(); });
    host.waitForReview();
    EXPECT_EQ(host.getValue(L"FleetEndpoints"), L"https://127.0.0.1:1");
    EXPECT_FALSE(host.getFleet().isFollowing());
}

TEST_F(FleetService, PolicyFileOfTheUserCannotChooseTheCluster) {
    writeDefaults({});
    const FleetHost host(administrator);
    setPolicy(host, profile.data() / "registry", {{"FleetEndpoints", "https://127.0.0.1:1"}});
    EXPECT_EQ(host.getValue(L"FleetEndpoints"), L"https://127.0.0.1:1");
    EXPECT_FALSE(host.getFleet().isFollowing());
}

TEST_F(FleetService, PolicyFileOfTheUserCannotReplaceTheAdministrators) {
    EtcdCluster cluster;
    cluster.put("/lumora/fleet/all/Theme", "dark");
    writeDefaults({});
    const FleetHost host(administrator);
    setPolicy(host, makePolicy(cluster.getAccess()));
    ASSERT_TRUE(host.waitForValue(L"Theme", L"dark"));
    setPolicy(host, profile.data() / "registry", {{"FleetEndpoints", ""}});
    EXPECT_EQ(host.getValue(L"FleetEndpoints"), L"");
    EXPECT_TRUE(host.getFleet().isFollowing());
}

TEST_F(FleetService, CachedCopyCannotChooseTheCluster) {
    writeDefaults({});
    {
        const FleetHost host;
        host.onServices([&] {
            host.getConfiguration().addConfigStore(std::make_shared<DisguisedStore>("BootstrapConfigStore", 30));
        });
        host.waitForReview();
        EXPECT_FALSE(host.getFleet().isFollowing());
    }
    const FleetHost host;
    EXPECT_EQ(host.getStoreOf(L"FleetEndpoints"), L"BootstrapConfigStore");
    EXPECT_FALSE(host.getFleet().isFollowing());
}

TEST_F(FleetService, CachedCopyCannotHideThePolicy) {
    EtcdCluster cluster;
    cluster.put("/lumora/fleet/all/Theme", "dark");
    writeDefaults({});
    {
        const FleetHost host;
        host.onServices([&] {
            host.getConfiguration().addConfigStore(std::make_shared<DisguisedStore>("RegistryConfigStore", 33));
        });
        host.waitForReview();
    }
    writePolicy(administrator / "HKEY_CURRENT_USER", makePolicy(cluster.getAccess()));
    const FleetHost host(administrator);
    EXPECT_EQ(host.getValue(L"FleetEndpoints"), L"https://127.0.0.1:1") << "the copy is in force";
    EXPECT_TRUE(host.waitForValue(L"Theme", L"dark"));
}

TEST_F(FleetService, BootstrapFileChoosesTheCluster) {
    EtcdCluster cluster;
    cluster.put("/lumora/fleet/all/Theme", "dark");
    writeDefaults({});
    const FleetHost host;
    addBootstrapFile(host, cluster.getAccess());
    EXPECT_TRUE(host.waitForValue(L"Theme", L"dark"));
}

TEST_F(FleetService, FollowsAWhileAfterAFailureToBegin) {
    EtcdCluster cluster;
    cluster.put("/lumora/fleet/all/Theme", "dark");
    writeDefaults(cluster.getAccess());
    const testing_host::LogRecorder log;
    testing_host::ManualClock clock;
    const FleetHost host(administrator, [](auto factory, auto registry) {
        const auto failOnce = [hasFailed = false](auto current, auto times, auto listener,
                                                  auto attemptListener) mutable {
            if (!std::exchange(hasFailed, true)) {
                throw std::runtime_error("no thread");
            }
            return std::make_unique<fleet::FleetFollower>(std::move(current), times, std::move(listener),
                                                          std::move(attemptListener));
        };
        return std::make_shared<fleet::FleetServiceImpl>(std::move(factory), shortTimes(), std::move(registry),
                                                         failOnce);
    });
    EXPECT_FALSE(host.getFleet().isFollowing());
    EXPECT_TRUE(log.mentions("The fleet's settings cannot be followed: no thread"));
    clock.advance(fleet::FleetServiceImpl::reviewDelay);
    EXPECT_TRUE(host.waitForValue(L"Theme", L"dark"));
}

TEST_F(FleetService, PlainHttpIsRefusedUnlessItIsAllowed) {
    EtcdCluster cluster;
    auto access = cluster.getAccess();
    access.plainHttpAllowed = false;
    writeDefaults(access);
    const testing_host::LogRecorder log;
    const FleetHost host;
    EXPECT_FALSE(host.getFleet().isFollowing());
    EXPECT_TRUE(log.mentions("An endpoint is not used: it begins with http://, which is not allowed"));
}

TEST_F(FleetService, PasswordIsSensitiveAndInNoLog) {
    EtcdCluster cluster({.authentication = true});
    cluster.put("/lumora/fleet/all/Theme", "dark");
    writeDefaults(cluster.getAccess());
    // Without debug lines: the chain writes some while it is built, before any service can mark a key.
    const testing_host::LogRecorder log;
    const FleetHost host;
    ASSERT_TRUE(host.waitForValue(L"Theme", L"dark"));
    host.onServices([&] {
        EXPECT_TRUE(host.getConfiguration().isKeySensitive(L"FleetConnectionPassword"));
        EXPECT_TRUE(host.getConfiguration().isKeySensitive(L"FleetConnectionUsername"));
        host.getRecords().logConfig();
    });
    cluster.restart(0);
    cluster.put("/lumora/fleet/all/Theme", "light");
    ASSERT_TRUE(host.waitForValue(L"Theme", L"light"));
    for (const auto& record : log.getRecords()) {
        EXPECT_EQ(record.text.find(EtcdCluster::password), std::string::npos) << record.function << ": " << record.text;
    }
}

} // namespace
} // namespace fleet_test
