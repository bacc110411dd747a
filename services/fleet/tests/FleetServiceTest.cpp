#include "EtcdCluster.h"
#include "FleetHost.h"

#include <kyr/StringUtils.h>

#include <ConfigServiceIds.h>
#include <ConfigValueNotifiers.h>
#include <LogRecorder.h>
#include <TemporaryProfile.h>
#include <gtest/gtest.h>

namespace fleet_test {
namespace {

class FleetService : public testing::Test {
protected:
    void SetUp() override {
        if (const auto reason = EtcdCluster::whyUnavailable(); !reason.empty()) {
            GTEST_SKIP() << reason;
        }
    }

    void writeDefaults(const fleet::ClusterAccess& access) const {
        FleetHost::writeDefaults(profile.resources(), access);
    }

    const testing_host::TemporaryProfile profile;
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
    const FleetHost host;
    EXPECT_FALSE(host.getFleet().isFollowing());
    const auto setPolicy = [&](const std::string& lines) {
        testing_host::writeFile(profile.data() / "registry" / "policy.reg",
                                "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\Policies"
                                "\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC]\r\n" +
                                    lines);
        host.onServices([&] { host.getConfiguration().refreshConfigFeatureSet(); });
    };
    setPolicy("\"FleetEndpoints\"=\"" + cluster.getAccess().endpoints.front() +
              "\"\r\n\"FleetPlainHttpAllowed\"=\"true\"\r\n\"FleetPriority\"=\"47\"\r\n");
    EXPECT_TRUE(host.waitForValue(L"Theme", L"dark"));
    host.onServices(
        [&] { EXPECT_EQ(host.getConfiguration().getConfigStoreByName("FleetConfigStore")->getPriority(), 47); });
    setPolicy("");
    host.waitForReview();
    EXPECT_FALSE(host.getFleet().isFollowing());
    EXPECT_EQ(host.getValue(L"Theme"), L"default");
}

TEST_F(FleetService, UserCannotChooseTheCluster) {
    writeDefaults({});
    const FleetHost host;
    host.onServices([&] { host.getConfiguration().setConfig(L"FleetEndpoints", L"https://127.0.0.1:1"); });
    host.getFactory().flushBackgroundDispatcher(); // the refresh reads the user's file
    host.onServices([&] { host.getConfiguration().refreshConfigFeatureSet(); });
    host.waitForReview();
    EXPECT_EQ(host.getValue(L"FleetEndpoints"), L"https://127.0.0.1:1");
    EXPECT_FALSE(host.getFleet().isFollowing());
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
