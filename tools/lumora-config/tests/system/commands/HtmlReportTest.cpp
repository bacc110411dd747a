#include "Program.h"

#include <PrivateFiles.h>
#include <TemporaryProfile.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>

namespace program_test {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::Pair;

namespace {

/// Returns the data in the page.
nlohmann::json readData(const std::string& page) {
    const std::string_view start = "<script type=\"application/json\" id=\"data\">";
    const auto begin = page.find(start) + start.size();
    return nlohmann::json::parse(page.substr(begin, page.find("</script>", begin) - begin));
}

/// Returns the row of the data about one key; null if there is none.
nlohmann::json readRow(const std::string& page, const std::string& key) {
    const auto data = readData(page);
    for (const auto& row : data.at("keys")) {
        if (row.at(0) == key) {
            return row;
        }
    }
    return nullptr;
}

/// Returns the value and the store to which a row refers at `place`.
std::pair<std::string, std::string> readReading(const std::string& page, const nlohmann::json& row, std::size_t place) {
    const auto& holding = row.at(1).at(row.at(place).get<std::size_t>());
    return {holding.at(1), readData(page).at("stores").at(holding.at(0).get<std::size_t>()).at("name")};
}

constexpr std::size_t inForce = 2;
constexpr std::size_t administrators = 3;
constexpr std::size_t flags = 4;
constexpr std::size_t oldName = 5;

std::string makePage(const Profile& profile, const Arguments& options = {}) {
    const auto file = (profile.root() / "page.html").string();
    auto arguments = options;
    arguments.insert(arguments.end(), {"report", "--html", file});
    const auto outcome = profile.run(arguments);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_EQ(outcome.out, "");
    return testing_host::readFile(file);
}

} // namespace

TEST(HtmlReport, ContainsTheUsersValueTheAdministratorsAndTheirStores) {
    const Profile profile;
    profile.writePolicy("ShowContactPictures", "policy-value");
    ASSERT_EQ(profile.run({"set", "ShowContactPictures", "users-value"}).exitCode, 0);
    const auto page = makePage(profile);
    const auto row = readRow(page, "ShowContactPictures");
    EXPECT_THAT(readReading(page, row, inForce), Pair("users-value", "LocalFileConfigStore"));
    EXPECT_THAT(readReading(page, row, administrators), Pair("policy-value", "RegistryConfigStore"));
    EXPECT_EQ(row.at(flags), 1);
    EXPECT_EQ(row.at(oldName), "contactListView");
}

TEST(HtmlReport, ContainsTheFileAndTheLineOfEachValue) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", "<FromServer>x</FromServer>");
    const auto page = makePage(profile, {"--store", file + ":Foreign:40"});
    const auto row = readRow(page, "FromServer");
    const auto origin = row.at(1).at(0).at(3);
    EXPECT_EQ(readData(page).at("files").at(origin.at(0).get<std::size_t>()), file);
    EXPECT_GT(origin.at(1), 0);
}

TEST(HtmlReport, KeyHeldUnderItsOldNameOnlyIsListedUnderTheNewOne) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", "<TftpServer1>tftp.example.net</TftpServer1>");
    const auto page = makePage(profile, {"--store", file + ":TFTPConfigStore:40"});
    const auto row = readRow(page, "TFTPPrimaryServer");
    EXPECT_THAT(readReading(page, row, inForce), Pair("tftp.example.net", "TFTPConfigStore"));
    EXPECT_EQ(row.at(oldName), "TftpServer1");
    EXPECT_TRUE(readRow(page, "TftpServer1").is_null());
}

TEST(HtmlReport, SecretIsNotInThePageUnlessRequested) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "connectionpassword", "planted-secret"}).exitCode, 0);
    const auto page = makePage(profile);
    EXPECT_THAT(page, Not(HasSubstr("planted-secret")));
    EXPECT_EQ(readReading(page, readRow(page, "connectionpassword"), inForce).first, "VALUE_HIDDEN");
    EXPECT_THAT(makePage(profile, {"--show-secrets"}),
                AllOf(HasSubstr("planted-secret"), HasSubstr("shows secrets in clear")));
}

TEST(HtmlReport, NamesTheProfileTheMachineAndRejectedPolicyLinesButNotTheOwners) {
    const Profile profile;
    profile.writePolicy("Theme", "dark");
    const auto folder = profile.root() / "data" / "registry";
    std::ofstream(folder / "bad.reg") << "Windows Registry Editor Version 5.00\n\nnot a line\n";
    const auto data = readData(makePage(profile));
    EXPECT_EQ(data.at("profile"), (profile.root() / "config").string());
    EXPECT_FALSE(data.at("host").get<std::string>().empty());
    const auto& items = data.at("health");
    const auto policy = std::ranges::find_if(
        items, [](const auto& item) { return item.at("path").template get<std::string>().ends_with("bad.reg"); });
    ASSERT_NE(policy, items.end());
    EXPECT_THAT(policy->at("state").get<std::string>(), AllOf(HasSubstr("line 3: refused"), HasSubstr("owner <user>")));
    EXPECT_TRUE(policy->at("attention"));
}

TEST(HtmlReport, PageWithSecretsIsAccessibleToItsOwnerOnly) {
    const Profile profile;
    makePage(profile, {"--show-secrets"});
    EXPECT_TRUE(testing_host::isPrivate(profile.root() / "page.html"));
}

TEST(HtmlReport, ContainsAStoreOfAnotherService) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", "<FromServer>x</FromServer>");
    const auto stores = readData(makePage(profile, {"--store", file + ":Foreign:40"})).at("stores");
    const auto found = std::ranges::find_if(stores, [](const auto& store) { return store.at("name") == "Foreign"; });
    ASSERT_NE(found, stores.end());
    EXPECT_EQ(found->at("priority"), 40);
    EXPECT_EQ(found->at("holds"), "added by another service");
    EXPECT_EQ(found->at("keys"), 1);
}

TEST(HtmlReport, RefusesThePageAndTheDocumentTogether) {
    const Profile profile;
    EXPECT_EQ(profile.run({"report", "--html", "a", "-o", "b"}).exitCode, 2);
}

TEST(HtmlReport, FileThatCannotBeWrittenIsNamed) {
    const Profile profile;
    const auto file = (profile.root() / "absent" / "page.html").string();
    const auto outcome = profile.run({"report", "--html", file});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.error, HasSubstr(file + ": cannot be written"));
}

} // namespace program_test
