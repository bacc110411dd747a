#include "EtcdSession.h"

#include "Base64.h"
#include "EtcdCluster.h"
#include "ScriptedMember.h"

#include <gtest/gtest.h>

namespace fleet_test {
namespace {

constexpr auto themeKey = "/lumora/fleet/all/Theme";

class FleetSession : public testing::Test {
protected:
    void SetUp() override {
        if (const auto reason = EtcdCluster::whyUnavailable(); !reason.empty()) {
            GTEST_SKIP() << reason;
        }
    }
};

TEST_F(FleetSession, RemovesWithTheNextMemberIfOneIsUnreachable) {
    EtcdCluster cluster({.authentication = true});
    cluster.put(themeKey, "light");
    auto access = cluster.getAdministratorAccess();
    access.endpoints.insert(access.endpoints.begin(), "http://127.0.0.1:1");
    fleet::EtcdSession session(access);
    EXPECT_TRUE(session.remove(themeKey));
    EXPECT_FALSE(session.remove(themeKey));
}

TEST_F(FleetSession, DoesNotRepeatARemovalWhoseAnswerWasLost) {
    EtcdCluster cluster;
    cluster.put(themeKey, "light");
    auto access = cluster.getAccess();
    access.endpoints.push_back(access.endpoints.front());
    cluster.suspend(0);
    try {
        fleet::EtcdSession(access, std::chrono::milliseconds(300)).remove(themeKey);
        ADD_FAILURE() << "a suspended member has answered";
    } catch (const fleet::EtcdError& error) {
        EXPECT_NE(std::string(error.what()).find("which may have been made"), std::string::npos) << error.what();
    }
    cluster.resume(0);
}

TEST_F(FleetSession, AuthenticatesAgainAfterTheTokensAreLost) {
    EtcdCluster cluster({.authentication = true});
    fleet::EtcdSession session(cluster.getAdministratorAccess());
    session.put(themeKey, "light");
    cluster.loseTokens();
    EXPECT_TRUE(session.remove(themeKey));
}

TEST_F(FleetSession, FindsTheLastSpellingOfAKey) {
    EtcdCluster cluster;
    const auto everybody = fleet::FleetScope::ofAll();
    fleet::EtcdSession session(cluster.getAccess());
    EXPECT_EQ(session.findKey(everybody, "Theme"), std::nullopt);
    cluster.put("/lumora/fleet/all/THEME", "1");
    cluster.put("/lumora/fleet/all/Theme", "2");
    cluster.put("/lumora/fleet/all/ThemeOther", "3");
    cluster.put("/lumora/fleet/users/ada/theme", "4");
    EXPECT_EQ(session.findKey(everybody, "theMe"), "Theme");
}

TEST(FleetSessionOfAMember, IgnoresKeysOutsideTheScope) {
    const auto everybody = fleet::FleetScope::ofAll();
    const auto makePair = [](const std::string& key) { return R"({"key":")" + fleet::encodeBase64(key) + R"("})"; };
    const ScriptedMember member([&](const std::string&) {
        // The last ones are found first. One is shorter than the prefix, the other one as long as a key.
        return ScriptedMember::Answer{200,
                                      R"({"header":{"revision":"7"},"kvs":[)" + makePair(themeKey) + ',' +
                                          makePair(std::string(everybody.prefix.size(), 'x') + "Theme") + ',' +
                                          makePair("Theme") + "]}",
                                      false};
    });
    ZelUnified::FleetAccess access;
    access.endpoints = {member.getEndpoint()};
    access.plainHttpAllowed = true;
    fleet::EtcdSession session(access);
    EXPECT_EQ(session.findKey(everybody, "theme"), "Theme");
    EXPECT_EQ(session.findKey(everybody, "Other"), std::nullopt);
}

TEST_F(FleetSession, GetsTheValueOfAnExactKey) {
    EtcdCluster cluster;
    const auto everybody = fleet::FleetScope::ofAll();
    fleet::EtcdSession session(cluster.getAccess());
    cluster.put(themeKey, "dark");
    EXPECT_EQ(session.get(everybody, "Theme"), "dark");
    EXPECT_EQ(session.get(everybody, "theme"), std::nullopt);
}

} // namespace
} // namespace fleet_test
