#include "Program.h"

#include <gmock/gmock.h>

namespace program_test {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

/// Returns the keys that `list` prints with these arguments.
std::vector<std::string> listKeys(const Profile& profile, Arguments arguments) {
    arguments.insert(arguments.begin(), {"--json", "list"});
    std::vector<std::string> keys;
    const auto answers = profile.run(arguments).lines();
    for (const auto& value : answers.at(0).at("values")) {
        keys.push_back(value.at("key"));
    }
    return keys;
}

} // namespace

TEST(Search, MatchesKeysByPrefixWildcardsAndExpression) {
    const Profile profile;
    profile.writePolicy("PolicyNote", "x");
    EXPECT_THAT(listKeys(profile, {"policyn"}), ElementsAre("PolicyNote"));
    EXPECT_THAT(listKeys(profile, {"*cyno?e"}), ElementsAre("PolicyNote"));
    EXPECT_THAT(listKeys(profile, {"--regexp", "^pol.*note$"}), ElementsAre("PolicyNote"));
    EXPECT_EQ(profile.run({"list", "olicyNote"}).exitCode, 1);
    EXPECT_EQ(profile.run({"list", "--regexp", "("}).exitCode, 2);
}

TEST(Search, MatchesValues) {
    const Profile profile;
    profile.writePolicy("PolicyNote", "Some value");
    EXPECT_THAT(listKeys(profile, {"--value", "ME VAL"}), ElementsAre("PolicyNote"));
    EXPECT_THAT(listKeys(profile, {"--value", "some*"}), ElementsAre("PolicyNote"));
    EXPECT_THAT(listKeys(profile, {"--value", "--regexp", "^some\\b"}), ElementsAre("PolicyNote"));
}

TEST(Search, RevealsNoSecretWhenItSearchesValues) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "connectionpassword", "planted-secret"}).exitCode, 0);
    EXPECT_EQ(profile.run({"list", "--value", "planted"}).exitCode, 1);
    EXPECT_THAT(profile.run({"--show-secrets", "list", "--value", "planted"}).out, HasSubstr("planted-secret"));
}

TEST(Search, SelectsAStoreOverriddenAndSensitiveKeys) {
    const Profile profile;
    profile.writePolicy("Note", "policy");
    ASSERT_EQ(profile.run({"set", "Note", "mine"}).exitCode, 0);
    ASSERT_EQ(profile.run({"set", "connectionpassword", "x"}).exitCode, 0);
    const auto values = profile.run({"--json", "list", "--store", "registryconfigstore"}).lines().at(0).at("values");
    ASSERT_EQ(values.size(), 1U);
    EXPECT_EQ(values[0].at("value"), "policy");
    EXPECT_EQ(values[0].at("store"), "RegistryConfigStore");
    EXPECT_EQ(listKeys(profile, {"--overridden"}).size(), 2U);
    EXPECT_THAT(listKeys(profile, {"--sensitive"}), ElementsAre("connectionpassword"));
    EXPECT_EQ(profile.run({"list", "--store", "Nope"}).error, "lumora-config: there is no store 'Nope'\n");
}

TEST(Get, PrintsTheDefaultIfThereIsNoValue) {
    const Profile profile;
    EXPECT_EQ(profile.run({"get", "Nope", "--default", "x"}).out, "x\n");
    EXPECT_EQ(profile.run({"get", "Nope", "--default", ""}).out, "\n");
    EXPECT_EQ(profile.run({"get", "Nope", "--default", "x"}).exitCode, 0);
    EXPECT_EQ(profile.run({"get", "Theme", "--default", "x"}).out, "system\n");
    EXPECT_EQ(profile.run({"--json", "get", "Nope", "--default", "x"}).out,
              "{\"type\":\"value\",\"key\":\"Nope\",\"found\":false,\"default\":\"x\"}\n");
}

} // namespace program_test
