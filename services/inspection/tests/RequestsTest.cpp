#include "TestHost.h"

#include <ConfigCatalogue.h>
#include <LogRecorder.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <map>

namespace inspection_test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

struct InspectionRequests : testing::Test {
    TestHost host{{}, {{L"Theme", L"system"}, {L"TftpServer1", L"old.example"}, {L"Volume", L"5"}}};
    Peer peer{host};
};

TEST_F(InspectionRequests, GreetingNamesTheProfile) {
    auto reply = peer.ask({{"id", 1}, {"verb", "hello"}});
    EXPECT_EQ(reply["id"], 1);
    EXPECT_EQ(reply["type"], "hello");
    EXPECT_EQ(reply["protocol"], 1);
    EXPECT_EQ(reply["profile"], host.getProfile().config().string());
    EXPECT_EQ(reply["changesAllowed"], true);
}

TEST_F(InspectionRequests, GetReturnsTheValueAndItsStore) {
    auto reply = peer.ask({{"id", "a"}, {"verb", "get"}, {"key", "theme"}});
    EXPECT_EQ(reply, (Json{{"id", "a"},
                           {"type", "value"},
                           {"key", "theme"},
                           {"found", true},
                           {"value", "system"},
                           {"store", "lumora-config-defaults.xml"},
                           {"underOldName", false}}));
}

TEST_F(InspectionRequests, GetOfAnUnknownKeyFindsNothingAndCreatesNoRecord) {
    const auto before = host.countRecords();
    for (const auto* verb : {"get", "explain"}) {
        auto reply = peer.ask({{"verb", verb}, {"key", "Unknown"}});
        EXPECT_EQ(reply["found"], false);
        EXPECT_EQ(reply["id"], nullptr);
    }
    peer.ask({{"verb", "list"}, {"prefix", "Unknown"}});
    EXPECT_EQ(host.countRecords(), before);
}

TEST_F(InspectionRequests, GetReadsTheAdministratorsValueAndThatOfOneStore) {
    host.set(L"Theme", L"dark");
    EXPECT_EQ(peer.ask({{"verb", "get"}, {"key", "Theme"}})["value"], "dark");
    EXPECT_EQ(peer.ask({{"verb", "get"}, {"key", "Theme"}, {"admin", true}})["value"], "system");
    auto ofStore = peer.ask({{"verb", "get"}, {"key", "Theme"}, {"store", "LUMORA-config-defaults.xml"}});
    EXPECT_EQ(ofStore["value"], "system");
    auto ofNone = peer.ask({{"verb", "get"}, {"key", "Theme"}, {"store", "None"}});
    EXPECT_EQ(ofNone["type"], "failure");
    EXPECT_EQ(ofNone["exitCode"], 1);
}

TEST_F(InspectionRequests, ExplainListsEveryStoreInChainOrderAndMarksTheWinner) {
    host.set(L"Theme", L"dark");
    auto reply = peer.ask({{"verb", "explain"}, {"key", "Theme"}});
    EXPECT_EQ(reply["type"], "explanation");
    EXPECT_EQ(reply["value"], "dark");
    EXPECT_EQ(reply["administrator"]["value"], "system");
    EXPECT_EQ(reply["overridden"], true);
    std::vector<int> priorities;
    std::vector<std::string> winners;
    for (auto& store : reply["stores"]) {
        priorities.push_back(store["priority"]);
        if (store["wins"]) {
            winners.push_back(store["name"]);
        }
    }
    EXPECT_TRUE(std::ranges::is_sorted(priorities));
    EXPECT_THAT(winners, ElementsAre("LocalFileConfigStore"));
}

TEST_F(InspectionRequests, ExplainReturnsTheOldAndTheNewName) {
    auto reply = peer.ask({{"verb", "explain"}, {"key", "tftpserver1"}});
    EXPECT_EQ(reply["newName"], "TFTPPrimaryServer");
    EXPECT_EQ(reply["oldName"], "TftpServer1");
    EXPECT_EQ(reply["value"], "old.example");
    EXPECT_EQ(reply["underOldName"], true);
}

TEST_F(InspectionRequests, ListReturnsTheDefinedKeysOfAPrefixOrAPattern) {
    const auto keysOf = [&](const Json& request) {
        std::vector<std::string> keys;
        auto reply = peer.ask(request);
        for (const auto& value : reply["values"]) {
            keys.push_back(value["key"]);
        }
        return keys;
    };
    EXPECT_THAT(keysOf({{"verb", "list"}, {"prefix", "th"}}), ElementsAre("theme"));
    EXPECT_THAT(keysOf({{"verb", "list"}, {"pattern", "*L?me"}}), ElementsAre("volume"));
    EXPECT_THAT(keysOf({{"verb", "list"}}), Contains("theme"));
}

TEST_F(InspectionRequests, ListReturnsTheKeysOfOneStore) {
    host.set(L"theme", L"dark");
    auto reply = peer.ask({{"verb", "list"}, {"store", "localfileconfigstore"}});
    EXPECT_EQ(
        reply["values"],
        Json::array({{{"key", "theme"}, {"value", "dark"}, {"store", "LocalFileConfigStore"}, {"overridden", true}}}));
    EXPECT_EQ(peer.ask({{"verb", "list"}, {"store", "lumora-config-defaults.xml"}})["values"].size(), 3U);
    EXPECT_EQ(
        peer.ask({{"verb", "list"}, {"store", "lumora-config-defaults.xml"}, {"pattern", "vol*"}})["values"].size(),
        1U);
    EXPECT_EQ(peer.ask({{"verb", "list"}, {"store", "None"}})["message"], "there is no store 'None'");
}

TEST_F(InspectionRequests, ListReturnsSensitiveKeysOnly) {
    host.onServices([&] { host.service().setKeySensitive(L"Volume"); });
    for (const auto* store : {"", "lumora-config-defaults.xml"}) {
        auto reply = peer.ask({{"verb", "list"}, {"sensitive", true}, {"store", store}});
        ASSERT_EQ(reply["values"].size(), 1U) << store;
        EXPECT_EQ(reply["values"].front()["value"], "VALUE_HIDDEN") << store;
    }
}

TEST_F(InspectionRequests, KeysReturnsTheCatalogue) {
    auto all = peer.ask({{"verb", "keys"}});
    EXPECT_EQ(all["keys"].size(), ZelUnified::ConfigKeys::keys.size());
    auto renamed = peer.ask({{"verb", "keys"}, {"pattern", "tftpserver1"}});
    ASSERT_EQ(renamed["keys"].size(), 1U);
    EXPECT_EQ(renamed["keys"].front()["key"], "TFTPPrimaryServer");
    EXPECT_EQ(renamed["keys"].front()["oldName"], "TftpServer1");
    const auto sensitive =
        std::ranges::count_if(ZelUnified::ConfigKeys::keys, &ZelUnified::ConfigKeys::KeyRow::isSensitive);
    EXPECT_EQ(peer.ask({{"verb", "keys"}, {"sensitive", true}})["keys"].size(), static_cast<std::size_t>(sensitive));
}

TEST_F(InspectionRequests, DescribeReturnsTheFactsAndTheValue) {
    auto known = peer.ask({{"verb", "describe"}, {"key", "tftpserver1"}});
    EXPECT_EQ(known["type"], "description");
    EXPECT_EQ(known["key"], "TFTPPrimaryServer");
    EXPECT_EQ(known["known"], true);
    EXPECT_EQ(known["value"], "old.example");
    host.onServices([&] { host.service().setKeySensitive(L"Theme"); });
    auto ordinary = peer.ask({{"verb", "describe"}, {"key", "Theme"}});
    EXPECT_EQ(ordinary["known"], false);
    EXPECT_EQ(ordinary["sensitive"], true);
    EXPECT_EQ(ordinary["value"], "VALUE_HIDDEN");
    EXPECT_EQ(peer.ask({{"verb", "describe"}, {"key", "Unknown"}})["exitCode"], 1);
}

TEST_F(InspectionRequests, ExplanationsContainEachKeyOfAnyStoreOnce) {
    host.set(L"theme", L"dark");
    host.set(L"TFTPPrimaryServer", L"new.example");
    const auto before = host.countRecords();
    auto reply = peer.ask({{"verb", "explanations"}});
    EXPECT_EQ(reply["stores"].front()["name"], "LocalFileConfigStore");
    EXPECT_EQ(reply["stores"].size(), peer.ask({{"verb", "stores"}})["stores"].size());
    std::map<std::string, Json> keys;
    for (auto& key : reply["keys"]) {
        EXPECT_TRUE(keys.emplace(key["key"], key).second) << key["key"];
    }
    ASSERT_EQ(keys.count("theme"), 1U);
    EXPECT_EQ(keys["theme"]["value"], "dark");
    EXPECT_EQ(keys["theme"]["stores"].size(), 2U) << "only stores that hold the key";
    EXPECT_EQ(keys["theme"]["sensitive"], false);
    ASSERT_EQ(keys.count("TFTPPrimaryServer"), 1U);
    EXPECT_EQ(keys["TFTPPrimaryServer"]["stores"].back()["holds"].front()["name"], "TftpServer1");
    EXPECT_EQ(host.countRecords(), before);
}

TEST_F(InspectionRequests, StoresAreListedInChainOrder) {
    auto reply = peer.ask({{"verb", "stores"}});
    ASSERT_FALSE(reply["stores"].empty());
    EXPECT_EQ(reply["stores"].front()["name"], "LocalFileConfigStore");
    EXPECT_EQ(reply["stores"].back()["name"], "lumora-config-defaults.xml");
    EXPECT_EQ(reply["stores"].back()["keys"], 3);
}

TEST_F(InspectionRequests, ReportAndLogReturnTheTextsOfTheClient) {
    EXPECT_THAT(peer.ask({{"verb", "report"}})["text"].get<std::string>(), HasSubstr("<AllConfigs>"));
    EXPECT_THAT(peer.ask({{"verb", "log"}})["text"].get<std::string>(), HasSubstr("Key: theme"));
}

TEST_F(InspectionRequests, HealthNamesTheUsersFile) {
    peer.ask({{"verb", "set"}, {"key", "Theme"}, {"value", "dark"}});
    auto reply = peer.ask({{"verb", "health"}});
    EXPECT_EQ(reply["attention"], false);
    EXPECT_THAT(reply["items"].dump(), HasSubstr("lumoraLocalConfig.dat"));
}

TEST_F(InspectionRequests, SetIsOnTheDiskBeforeTheReply) {
    auto reply = peer.ask({{"verb", "set"}, {"key", "Theme"}, {"value", "dark"}});
    EXPECT_EQ(reply["type"], "done");
    EXPECT_EQ(reply["message"], "Theme set; in force: \"dark\" from LocalFileConfigStore");
    EXPECT_TRUE(std::filesystem::exists(host.getProfile().config() / "lumoraLocalConfig.dat"));
}

TEST_F(InspectionRequests, SetRefusesValuesThatXmlCannotRepresentOrTheKindOfTheKeyExcludes) {
    for (const auto& request : {Json{{"verb", "set"}, {"key", "a key"}, {"value", "v"}},
                                Json{{"verb", "set"}, {"key", "a\u00D7b"}, {"value", "v"}},
                                Json{{"verb", "set"}, {"key", ""}, {"value", "v"}},
                                Json{{"verb", "set"}, {"key", "Theme"}, {"value", std::string("\x01")}},
                                Json{{"verb", "set"}, {"key", "Telephony_Enabled"}, {"value", "perhaps"}}}) {
        EXPECT_EQ(peer.ask(request)["exitCode"], 1) << request;
    }
    EXPECT_EQ(peer.ask({{"verb", "get"}, {"key", "Theme"}})["value"], "system");
}

TEST_F(InspectionRequests, ResetRemovesTheUsersLastValue) {
    peer.ask({{"verb", "set"}, {"key", "Theme"}, {"value", "dark"}});
    EXPECT_EQ(peer.ask({{"verb", "reset"}, {"key", "Theme"}})["message"],
              "Theme reset; in force: \"system\" from lumora-config-defaults.xml");
    EXPECT_EQ(peer.ask({{"verb", "reset"}, {"key", "Theme"}})["exitCode"], 1);
}

TEST_F(InspectionRequests, ProvisioningSucceedsOnceUntilItIsReset) {
    const Json provision{{"verb", "provision"}, {"url", "lumora://provision?ServicesDomain=example.org"}};
    EXPECT_EQ(peer.ask(provision)["type"], "done");
    EXPECT_EQ(peer.ask(provision)["exitCode"], 1);
    EXPECT_EQ(peer.ask({{"verb", "reset-provisioning"}})["type"], "done");
    EXPECT_EQ(peer.ask(provision)["type"], "done");
}

TEST_F(InspectionRequests, RemovingAStoreTwiceFails) {
    peer.ask({{"verb", "provision"}, {"url", "lumora://provision?ServicesDomain=example.org"}});
    const Json removal{{"verb", "remove-store"}, {"store", "UrlProvisioningConfigStore"}};
    EXPECT_EQ(peer.ask(removal)["type"], "done");
    EXPECT_EQ(peer.ask(removal)["exitCode"], 1);
}

TEST_F(InspectionRequests, ChangesAreRefusedIfTheHostDisablesThem) {
    host.server().getRunner().setChangesAllowed(false);
    for (const auto* verb :
         {"set", "memory", "mdm", "reset", "provision", "reset-provisioning", "remove-store", "refresh"}) {
        auto reply = peer.ask({{"verb", verb},
                               {"key", "Theme"},
                               {"value", "dark"},
                               {"document", "<a/>"},
                               {"url", "lumora://provision"},
                               {"store", "MdmConfigStore"}});
        EXPECT_EQ(reply["exitCode"], 1) << verb;
        EXPECT_THAT(reply["message"].get<std::string>(), HasSubstr("does not allow")) << verb;
    }
    EXPECT_EQ(peer.ask({{"verb", "get"}, {"key", "Theme"}})["value"], "system");
    EXPECT_EQ(peer.ask({{"verb", "hello"}})["changesAllowed"], false);
}

TEST_F(InspectionRequests, ChangesAreRefusedIfTheAdministratorDisablesThem) {
    host.setPolicy("InspectionAllowsChanges", "false");
    auto reply = peer.ask({{"verb", "set"}, {"key", "Theme"}, {"value", "dark"}});
    EXPECT_EQ(reply["exitCode"], 1);
    EXPECT_THAT(reply["message"].get<std::string>(), HasSubstr("administrator"));
}

TEST_F(InspectionRequests, TheUserCannotAllowWhatTheAdministratorDisables) {
    EXPECT_NE(ZelUnified::ConfigKeys::findKey(L"inspectionallowschanges"), nullptr)
        << "the catalogue describes the key";
    host.setPolicy("InspectionAllowsChanges", "false");
    host.set(L"InspectionAllowsChanges", L"true");
    EXPECT_EQ(peer.ask({{"verb", "set"}, {"key", "Theme"}, {"value", "dark"}})["exitCode"], 1);
}

TEST_F(InspectionRequests, SecretsAreMaskedUnlessRequestedAndTheRequestIsLogged) {
    host.set(L"Secret", L"hunter2");
    host.onServices([&] { host.service().setKeySensitive(L"Secret"); });
    for (const auto* verb : {"get", "explain", "explanations", "describe", "list", "report", "log", "health"}) {
        EXPECT_THAT(peer.ask({{"verb", verb}, {"key", "Secret"}}).dump(), Not(HasSubstr("hunter2"))) << verb;
    }
    const testing_host::LogRecorder log;
    auto reply = peer.ask({{"verb", "get"}, {"key", "Secret"}, {"showSecrets", true}});
    EXPECT_EQ(reply["value"], "hunter2");
    EXPECT_TRUE(log.mentions("asks for sensitive values: \"get\" [\"Secret\"]"));
    EXPECT_FALSE(log.mentions("hunter2"));
}

TEST_F(InspectionRequests, MalformedRequestsAreAnsweredAndTheConnectionStaysOpen) {
    for (const auto* line :
         {"", "no JSON", "[]", "7", "{\"verb\":\"get\"", "{}", "{\"verb\":7}", "{\"verb\":\"dance\"}",
          "{\"verb\":\"get\",\"key\":1}", "{\"verb\":\"watch\",\"keys\":[1]}", "{\"id\":{},\"verb\":\"get\"}",
          "{\"verb\":\"get\",\"key\":\"\xFF\"}"}) {
        peer.sendText(line);
        auto reply = peer.receive();
        EXPECT_EQ(reply["type"], "failure") << line;
        EXPECT_EQ(reply["exitCode"], 2) << line;
    }
    EXPECT_EQ(peer.ask({{"verb", "get"}, {"key", "Theme"}})["value"], "system");
}

TEST_F(InspectionRequests, ARequestWithoutAFieldThatItNeedsIsRefusedAndChangesNothing) {
    ASSERT_EQ(peer.ask({{"verb", "set"}, {"key", "Theme"}, {"value", "dark"}})["type"], "done");
    const Json document{{"verb", "mdm"}, {"document", "<Config><Group><Managed>1</Managed></Group></Config>"}};
    ASSERT_EQ(peer.ask(document)["type"], "done");
    const std::vector<std::pair<Json, std::string>> incomplete{{{{"verb", "get"}}, "key"},
                                                               {{{"verb", "explain"}}, "key"},
                                                               {{{"verb", "describe"}}, "key"},
                                                               {{{"verb", "reset"}}, "key"},
                                                               {{{"verb", "set"}, {"value", "x"}}, "key"},
                                                               {{{"verb", "set"}, {"key", "Theme"}}, "value"},
                                                               {{{"verb", "memory"}, {"value", "x"}}, "key"},
                                                               {{{"verb", "memory"}, {"key", "Theme"}}, "value"},
                                                               {{{"verb", "mdm"}}, "document"},
                                                               {{{"verb", "provision"}}, "url"},
                                                               {{{"verb", "remove-store"}}, "store"},
                                                               {{{"verb", "load"}}, "values"}};
    for (const auto& [request, field] : incomplete) {
        auto reply = peer.ask(request);
        EXPECT_EQ(reply["type"], "failure") << request;
        EXPECT_EQ(reply.value("exitCode", 0), 2) << request;
        EXPECT_THAT(reply.value("message", ""), HasSubstr("\"" + field + "\"")) << request;
    }
    EXPECT_EQ(peer.ask({{"verb", "get"}, {"key", "Theme"}})["value"], "dark");
    EXPECT_EQ(peer.ask({{"verb", "get"}, {"key", "Managed"}})["value"], "1");
}

TEST_F(InspectionRequests, GetOfOneStoreExcludesTheAdministratorsValue) {
    Json request{{"verb", "get"}, {"key", "Theme"}, {"admin", true}, {"store", "lumora-config-defaults.xml"}};
    EXPECT_EQ(peer.ask(request)["exitCode"], 2);
    request["admin"] = false;
    EXPECT_EQ(peer.ask(request)["value"], "system");
}

TEST_F(InspectionRequests, RequestsThatArriveTogetherAreAnsweredInOrder) {
    peer.sendText("{\"id\":1,\"verb\":\"list\"}\n{\"id\":2,\"verb\":\"dance\"}\n{\"id\":3,\"verb\":\"stores\"}");
    for (const int id : {1, 2, 3}) {
        EXPECT_EQ(peer.receive()["id"], id);
    }
}

TEST(InspectionList, ALongListIsCompleteAlthoughTheClientWritesMeanwhile) {
    ZelUnified::ConfigMap defaults;
    for (int i = 0; i < 5000; ++i) {
        defaults.emplace(L"Key" + std::to_wstring(i), L"v");
    }
    TestHost host({}, defaults);
    Peer peer(host);
    peer.sendText("{\"verb\":\"list\",\"prefix\":\"Key\"}");
    for (int i = 0; i < 50; ++i) {
        host.set(L"Added" + std::to_wstring(i), L"v");
    }
    EXPECT_EQ(peer.receive()["values"].size(), 5000U);
}

TEST(InspectionList, TheClientsTasksRunBetweenTheSlices) {
    const TestHost host;
    std::string order;
    host.onServices([&] {
        const inspection::ServicesTasks tasks(host.getFactory());
        tasks.runSlices("slices", [&, left = 3]() mutable {
            order += 's';
            return --left > 0;
        });
        for (int i = 0; i < 2; ++i) {
            tasks.run("client", [&] { order += 'c'; });
        }
    });
    for (int i = 0; i < 4; ++i) {
        host.onServices([] {}); // each waits for one slice more
    }
    EXPECT_EQ(order, "sccss");
}

} // namespace
} // namespace inspection_test
