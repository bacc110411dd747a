#include "EtcdMessages.h"

#include "Base64.h"
#include "EndpointProblem.h"
#include "FleetKeys.h"

#include <kyr/StringUtils.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace fleet_test {
namespace {

using fleet::decodeBase64;
using fleet::encodeBase64;
using fleet::findEndpointProblem;
namespace etcd = fleet::etcd;

TEST(FleetBase64, EncodesAndDecodesEachLength) {
    const std::string bytes("\x00\xFF"
                            "fleet",
                            7);
    const std::vector<std::string> encoded{"",         "AA==",     "AP8=",     "AP9m",
                                           "AP9mbA==", "AP9mbGU=", "AP9mbGVl", "AP9mbGVldA=="};
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
        EXPECT_EQ(encodeBase64(bytes.substr(0, length)), encoded[length]);
        EXPECT_EQ(decodeBase64(encoded[length]), bytes.substr(0, length));
    }
}

TEST(FleetBase64, RefusesOtherText) {
    for (const auto* text : {"A", "AA", "AA=", "====", "A===", "AA=A", "A!==", "AAAA\n"}) {
        EXPECT_EQ(decodeBase64(text), std::nullopt) << text;
    }
}

TEST(FleetMessages, SnapshotIsParsed) {
    const auto snapshot = etcd::parseSnapshot(
        R"({"header":{"revision":"9007199254740993"},"responses":[{"response_range":{"kvs":[)"
        R"({"key":"YQ==","value":"Yg=="},{"key":"Yw=="}],"more":true}},{"response_range":{"header":{}}}]})");
    ASSERT_TRUE(snapshot);
    EXPECT_EQ(snapshot->revision, 9007199254740993);
    EXPECT_TRUE(snapshot->more);
    ASSERT_EQ(snapshot->pairs.size(), 2U);
    EXPECT_EQ(snapshot->pairs[0].value, "b");
    EXPECT_EQ(snapshot->pairs[1].key, "c");
    EXPECT_EQ(snapshot->pairs[1].value, "");
}

TEST(FleetMessages, RangeIsParsed) {
    const auto range = etcd::parseRange(R"({"header":{"revision":"7"},"kvs":[{"key":"YQ=="},{"key":"Yw=="}]})");
    ASSERT_TRUE(range);
    EXPECT_EQ(range->revision, 7);
    EXPECT_FALSE(range->more);
    ASSERT_EQ(range->pairs.size(), 2U);
    EXPECT_EQ(range->pairs[1].key, "c");
    const auto empty = etcd::parseRange(R"({"header":{"revision":"7"}})");
    ASSERT_TRUE(empty);
    EXPECT_TRUE(empty->pairs.empty());
    for (const auto* text :
         {"", "[]", "{}", R"({"header":{}})", R"({"header":{"revision":"7"},"kvs":[{"key":"!"}]})"}) {
        EXPECT_FALSE(etcd::parseRange(text)) << text;
    }
}

TEST(FleetMessages, WatchReplyIsParsed) {
    const auto changes = etcd::parseWatchReply(
        R"({"result":{"watch_id":"1","events":[{"kv":{"key":"YQ==","value":"Yg=="}},{"type":"DELETE","kv":{"key":"Yw=="}}]}})");
    ASSERT_TRUE(changes);
    ASSERT_EQ(changes->changes.size(), 2U);
    EXPECT_FALSE(changes->changes[0].deleted);
    EXPECT_TRUE(changes->changes[1].deleted);
    const auto compacted = etcd::parseWatchReply(R"({"result":{"canceled":true,"compact_revision":"5"}})");
    ASSERT_TRUE(compacted);
    EXPECT_TRUE(compacted->canceled);
    EXPECT_EQ(compacted->reason, "the revision has been compacted");
    const auto error = etcd::parseWatchReply(R"({"error":{"grpc_code":14,"message":"no leader"}})");
    ASSERT_TRUE(error);
    EXPECT_TRUE(error->canceled);
    EXPECT_EQ(error->reason, "no leader");
    const auto text = etcd::parseWatchReply(R"({"error":"no leader","code":14})");
    ASSERT_TRUE(text);
    EXPECT_TRUE(text->canceled);
    EXPECT_EQ(text->reason, "no leader");
}

TEST(FleetMessages, RejectsTextThatIsNotAReply) {
    for (const auto* text :
         {"", "{", "[]", "null", R"({"header":{}})", R"({"header":{"revision":7},"responses":[]})",
          R"({"header":{"revision":"7x"},"responses":[]})", R"({"header":{"revision":"7"},"responses":{"a":1}})",
          R"({"header":{"revision":"7"},"responses":[{"response_range":{"kvs":[{"key":"!"}]}}]})"}) {
        EXPECT_FALSE(etcd::parseSnapshot(text)) << text;
        EXPECT_FALSE(etcd::parseWatchReply(text)) << text;
        EXPECT_FALSE(etcd::parseToken(text)) << text;
    }
}

TEST(FleetMessages, TokenThatWouldChangeTheHeadersIsRejected) {
    EXPECT_EQ(etcd::parseToken(R"({"token":"abc.12"})"), "abc.12");
    EXPECT_EQ(etcd::parseToken(R"({"token":"abc\r\nX-Other: 1"})"), std::nullopt);
    EXPECT_EQ(etcd::parseToken(R"({"token":""})"), std::nullopt);
}

TEST(FleetMessages, ReasonIsAboutTheTokenIfAnotherOneMayHelp) {
    for (const auto* reason : {"etcdserver: invalid auth token", "etcdserver: revision of auth store is old",
                               "auth: revision in header is old", "etcdserver: user name is empty"}) {
        EXPECT_TRUE(etcd::isAboutToken(std::string(reason))) << reason;
    }
    EXPECT_FALSE(etcd::isAboutToken(std::string("etcdserver: permission denied")));
}

TEST(FleetMessages, RangeEndsBehindTheLastKeyOfTheScope) {
    const auto scope = fleet::FleetScope::ofUser("ada");
    EXPECT_EQ(scope.prefix, "/lumora/fleet/users/ada/");
    EXPECT_EQ(scope.getEnd(), "/lumora/fleet/users/ada0");
}

TEST(FleetEndpointProblem, AcceptsPlainHttpOnlyIfAllowed) {
    ZelUnified::FleetAccess access;
    EXPECT_EQ(findEndpointProblem(access, "https://etcd.example:2379"), "");
    EXPECT_EQ(findEndpointProblem(access, "https://[::1]:2379"), "");
    EXPECT_NE(findEndpointProblem(access, "http://etcd.example:2379"), "");
    access.plainHttpAllowed = true;
    EXPECT_EQ(findEndpointProblem(access, "http://etcd.example:2379"), "");
    for (const auto* endpoint : {"", "etcd.example:2379", "https://", "file:///etc/passwd", "https://a/b",
                                 "https://user@etcd.example", "https://a b", "https://a\r\nb"}) {
        EXPECT_NE(findEndpointProblem(access, endpoint), "") << endpoint;
    }
}

TEST(FleetDocumentation, NamesEachKeyOfTheService) {
    std::ifstream file(DOCUMENTATION);
    const std::string page((std::istreambuf_iterator<char>(file)), {});
    const auto expectNamed = [&](std::wstring_view key) {
        const auto name = '`' + KyrCoreUtils::toString(key) + '`';
        EXPECT_NE(page.find(name), std::string::npos) << name;
    };
    std::ranges::for_each(fleet::FleetKeys::administratorsKeys, expectNamed);
    std::ranges::for_each(fleet::FleetKeys::credentialKeys, expectNamed);
}

} // namespace
} // namespace fleet_test
