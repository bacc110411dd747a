#include "Program.h"

#include <TemporaryProfile.h>
#include <gmock/gmock.h>

namespace program_test {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

/// Returns the section of the page about one key.
std::string sectionOf(const std::string& page, const std::string& key) {
    const auto name = page.find("<span class=\"name\">" + key + "</span>");
    if (name == std::string::npos) {
        return "no key " + key;
    }
    const auto begin = page.rfind("<tbody class=\"key\"", name);
    return page.substr(begin, page.find("<tbody class=\"key\"", name) - begin);
}

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

TEST(HtmlReport, TellsTheUsersValueTheAdministratorsAndWhoHoldsTheKey) {
    const Profile profile;
    profile.writePolicy("ShowContactPictures", "policy-value");
    ASSERT_EQ(profile.run({"set", "ShowContactPictures", "users-value"}).exitCode, 0);
    const auto section = sectionOf(makePage(profile), "ShowContactPictures");
    EXPECT_THAT(section, AllOf(HasSubstr("data-overridden"), HasSubstr("value in-force\">users-value<"),
                               HasSubstr("policy-value</span><span class=\"beneath\">RegistryConfigStore"),
                               HasSubstr("once named contactListView")));
}

TEST(HtmlReport, KeyHeldUnderItsOldNameAloneStandsUnderTheNewOne) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", "<TftpServer1>tftp.example.net</TftpServer1>");
    const auto page = makePage(profile, {"--store", file + ":TFTPConfigStore:40"});
    EXPECT_THAT(sectionOf(page, "TFTPPrimaryServer"),
                AllOf(HasSubstr("value in-force\">tftp.example.net<"), HasSubstr("once named TftpServer1")));
    EXPECT_THAT(page, Not(HasSubstr("<span class=\"name\">TftpServer1</span>")));
}

TEST(HtmlReport, SecretIsNotInThePageUnlessAskedFor) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "connectionpassword", "planted-secret"}).exitCode, 0);
    const auto page = makePage(profile);
    EXPECT_THAT(page, Not(HasSubstr("planted-secret")));
    EXPECT_THAT(sectionOf(page, "connectionpassword"), AllOf(HasSubstr("data-sensitive"), HasSubstr("VALUE_HIDDEN")));
    EXPECT_THAT(makePage(profile, {"--show-secrets"}),
                AllOf(HasSubstr("planted-secret"), HasSubstr("shows secrets in clear")));
}

TEST(HtmlReport, PageWithSecretsIsItsOwnersAlone) {
    const Profile profile;
    makePage(profile, {"--show-secrets"});
    using std::filesystem::perms;
    EXPECT_EQ(std::filesystem::status(profile.root() / "page.html").permissions(),
              perms::owner_read | perms::owner_write);
}

TEST(HtmlReport, ForeignStoreStandsInTheChain) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", "<FromServer>x</FromServer>");
    EXPECT_THAT(
        makePage(profile, {"--store", file + ":Foreign:40"}),
        HasSubstr("<td class=\"number\">40</td><th scope=\"row\">Foreign</th><td>handed in by another service"));
}

TEST(HtmlReport, IsEitherAPageOrADocument) {
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
