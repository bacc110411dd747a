#include "TestHost.h"

#include <ConfigCatalogue.h>
#include <gmock/gmock.h>

namespace inspection_test {
namespace {

using testing::HasSubstr;

Json makeValues(const std::vector<std::pair<std::string, std::string>>& values) {
    auto list = Json::array();
    for (const auto& [key, value] : values) {
        list.push_back({{"key", key}, {"value", value}});
    }
    return list;
}

struct InspectionSettings : testing::Test {
    /// Returns "KEY=VALUE" for each value of a dump, or the message of a failure.
    std::vector<std::string> dump(Json request) {
        request["verb"] = "dump";
        auto reply = peer.ask(request);
        if (reply["type"] == "failure") {
            return {reply["message"]};
        }
        std::vector<std::string> values;
        for (auto& value : reply["values"]) {
            values.push_back(value["key"].get<std::string>() + '=' +
                             (value["hidden"] ? "hidden" : value["value"].get<std::string>()));
        }
        return values;
    }

    Json load(const Json& values, const Json& fields = Json::object()) {
        Json request{{"verb", "load"}, {"values", values}};
        request.update(fields);
        return peer.ask(request);
    }

    TestHost host{{}, {{L"Theme", L"system"}, {L"Volume", L"5"}}};
    Peer peer{host};
};

using testing::ElementsAre;

TEST_F(InspectionSettings, DumpReadsTheValuesOfEachSource) {
    host.set(L"Theme", L"dark");
    EXPECT_THAT(dump({{"source", "user"}}), ElementsAre("Theme=dark"));
    EXPECT_THAT(dump({{"source", "effective"}}), testing::IsSupersetOf({"theme=dark", "volume=5"}));
    EXPECT_THAT(dump({{"source", "administrator"}}), testing::IsSupersetOf({"theme=system", "volume=5"}));
    EXPECT_THAT(dump({{"store", "lumora-config-defaults.xml"}}), ElementsAre("theme=system", "volume=5"));
    EXPECT_THAT(dump({{"store", "None"}}), ElementsAre("there is no store 'None'"));
    for (const auto& request : {Json{{"source", "all"}}, Json::object(), Json{{"source", "user"}, {"store", "A"}}}) {
        EXPECT_THAT(dump(request), ElementsAre(HasSubstr("a dump needs the field \"store\"")));
    }
}

TEST_F(InspectionSettings, DumpReadsMoreValuesThanOneSliceHolds) {
    ZelUnified::ConfigMap values;
    for (int i = 0; i < 200; ++i) {
        values.emplace(L"Key" + std::to_wstring(i), L"x");
    }
    host.onServices([&] { host.featureSet().setConfig(values); });
    EXPECT_EQ(dump({{"source", "user"}}).size(), 200U);
    EXPECT_GE(dump({{"source", "effective"}}).size(), 202U);
}

TEST_F(InspectionSettings, DumpHidesSecretsUnlessTheyAreRequested) {
    host.set(L"connectionpassword", L"planted");
    EXPECT_THAT(dump({{"source", "user"}}), ElementsAre("connectionpassword=hidden"));
    EXPECT_THAT(dump({{"source", "user"}, {"showSecrets", true}}), ElementsAre("connectionpassword=planted"));
}

TEST_F(InspectionSettings, TheValuesOfAFleetAreHiddenAlthoughItsPlugInIsNotInstalled) {
    for (const auto& row : ZelUnified::ConfigKeys::keys) {
        if (row.markedByService) {
            host.set(std::wstring(row.name), L"planted");
        }
    }
    EXPECT_EQ(peer.ask({{"verb", "get"}, {"key", "FleetConnectionPassword"}})["value"], "VALUE_HIDDEN");
    EXPECT_THAT(dump({{"source", "user"}}), testing::SizeIs(testing::Ge(2U)));
    EXPECT_THAT(dump({{"source", "user"}}), testing::Each(testing::EndsWith("=hidden")));
}

TEST(InspectionPolicies, AreHiddenFromTheStartIfTheyLookLikePasswords) {
    const TestHost host({}, {}, {"MyConnectionPasswordOld", "planted"});
    Peer peer(host);
    EXPECT_EQ(peer.ask({{"verb", "get"}, {"key", "MyConnectionPasswordOld"}})["value"], "VALUE_HIDDEN");
    EXPECT_THAT(peer.ask({{"verb", "report"}}).dump(), testing::Not(HasSubstr("planted")));
}

TEST_F(InspectionSettings, LoadSetsAllValuesAndCountsThem) {
    host.set(L"Theme", L"dark");
    host.set(L"Note", L"same");
    const auto values = makeValues({{"Theme", "light"}, {"Note", "same"}, {"New", "x"}});
    auto reply = load(values, {{"dryRun", true}});
    EXPECT_EQ(reply["dryRun"], true);
    EXPECT_EQ(reply["set"], 3);
    EXPECT_THAT(dump({{"source", "user"}}), ElementsAre("Note=same", "Theme=dark"));
    reply = load(values);
    EXPECT_EQ(reply["type"], "load");
    EXPECT_EQ(reply["added"], 1);
    EXPECT_EQ(reply["changed"], 1);
    EXPECT_EQ(reply["unchanged"], 1);
    EXPECT_THAT(dump({{"source", "user"}}), ElementsAre("New=x", "Note=same", "Theme=light"));
}

TEST_F(InspectionSettings, LoadSetsNothingBeforeItsLastRequest) {
    EXPECT_EQ(load(makeValues({{"A", "1"}}), {{"more", true}})["type"], "done");
    EXPECT_THAT(dump({{"source", "user"}}), ElementsAre());
    EXPECT_EQ(load(makeValues({{"B", "2"}}))["set"], 2);
    EXPECT_THAT(dump({{"source", "user"}}), ElementsAre("A=1", "B=2"));
    EXPECT_EQ(load(makeValues({}))["set"], 0);
}

TEST_F(InspectionSettings, LoadSetsNothingIfOneValueIsRefused) {
    for (const auto& bad : {std::pair<std::string, std::string>{"1key", "x"},
                            {"Bad", "\x01"},
                            {"AllowUrlProvisioning", "0"},
                            {"", "x"},
                            {"good", "y"}}) {
        load(makeValues({{"Good", "x"}}), {{"more", true}});
        EXPECT_EQ(load(makeValues({bad}))["exitCode"], 1) << bad.first;
        EXPECT_THAT(dump({{"source", "user"}}), ElementsAre()) << bad.first;
    }
    EXPECT_EQ(load(makeValues({{"AllowUrlProvisioning", "0"}}), {{"force", true}})["set"], 1);
    for (const auto& wrong : {Json("x"), Json{{{"key", "A"}}}, Json{"x"}}) {
        EXPECT_EQ(load(wrong)["exitCode"], 2);
    }
}

TEST_F(InspectionSettings, LoadIsRefusedIfChangesAreNotAllowed) {
    host.setPolicy("InspectionAllowsChanges", "false");
    EXPECT_EQ(load(makeValues({{"A", "1"}}), {{"dryRun", true}})["set"], 1);
    EXPECT_THAT(load(makeValues({{"A", "1"}}))["message"].get<std::string>(), HasSubstr("InspectionAllowsChanges"));
    EXPECT_THAT(dump({{"source", "user"}}), ElementsAre());
}

TEST(InspectionLoad, DropsAllValuesIfTheyExceedTheLimit) {
    inspection::InspectionLimits limits;
    limits.stagedBytes = 100;
    TestHost host(limits);
    Peer peer(host);
    const Json part{{"verb", "load"}, {"more", true}, {"values", makeValues({{"A", std::string(15, 'x')}})}};
    EXPECT_EQ(peer.ask(part)["type"], "done");
    EXPECT_THAT(peer.ask(part)["message"].get<std::string>(), HasSubstr("take more than 100 bytes"));
    EXPECT_EQ(peer.ask({{"verb", "load"}, {"values", Json::array()}})["set"], 0);
}

} // namespace
} // namespace inspection_test
