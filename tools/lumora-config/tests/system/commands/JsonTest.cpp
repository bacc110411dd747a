#include "Program.h"

#include <TemporaryProfile.h>
#include <gmock/gmock.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <utility>

namespace program_test {

using nlohmann::json;
using testing::HasSubstr;

namespace {

json onlyLine(const Outcome& outcome) {
    const auto lines = outcome.lines();
    EXPECT_EQ(lines.size(), 1U) << outcome.out;
    return lines.empty() ? json() : lines.front();
}

using Fields = std::set<std::string>;

Fields fieldsOf(const json& object) {
    Fields fields;
    for (const auto& [name, value] : object.items()) {
        fields.insert(name);
    }
    return fields;
}

Fields operator+(Fields fields, const Fields& more) {
    fields.insert(more.begin(), more.end());
    return fields;
}

const Fields reading{"found", "value", "store", "underOldName", "origin"};
const Fields store{"priority", "name", "readOnly", "local", "keys"};

/// The fields that scripts rely on. Fields may be added, but none may be removed or renamed.
const std::map<std::string, Fields> published{
    {"value", Fields{"type", "key"} + reading},
    {"explanation", Fields{"type", "key", "newName", "oldName", "stores", "administrator", "defined", "overridden",
                           "originalValue", "originalStore"} +
                        reading},
    {"keys", {"type", "keys"}},
    {"description", Fields{"type", "key", "known", "sensitive", "oldName", "kind", "values", "permitted",
                           "provisioning", "meaning", "rule", "use"} +
                        reading},
    {"list", {"type", "values"}},
    {"dump", {"type", "source", "values"}},
    {"load", {"type", "file", "dryRun", "set", "added", "changed", "unchanged", "leftOut"}},
    {"comparison", {"type", "left", "right", "equal", "unknown", "differences"}},
    {"stores", {"type", "stores"}},
    {"health", {"type", "attention", "items"}},
    {"import", {"type", "file", "taken", "refused", "remarks", "dryRun", "values"}},
    {"report", {"type", "text"}},
    {"log", {"type", "text"}},
    {"help", {"type", "text"}},
    {"done", {"type", "command", "message"}},
    {"notification", {"type", "key", "property", "old", "new", "thread", "with"}},
    {"failure", {"type", "command", "exitCode", "message"}},
};

/// The fields of the elements of a list, by the type of the object and the name of the list.
const std::map<std::pair<std::string, std::string>, Fields> publishedElements{
    {{"keys", "keys"},
     {"key", "oldName", "sensitive", "kind", "values", "permitted", "provisioning", "meaning", "rule", "use"}},
    {{"list", "values"}, {"key", "value", "store", "overridden"}},
    {{"dump", "values"}, {"key", "value", "store", "sensitive", "hidden"}},
    {{"comparison", "differences"}, {"key", "left", "right"}},
    {{"stores", "stores"}, store},
    {{"health", "items"}, {"area", "path", "state", "attention"}},
    {{"import", "taken"}, {"line", "key", "deleted", "valuesSet", "valuesDeleted"}},
    {{"import", "refused"}, {"line", "reason"}},
    {{"import", "remarks"}, {"line", "message", "ineffective"}},
    {{"import", "values"}, {"line", "key", "deleted", "value"}},
};

/// Returns one object of each type.
std::map<std::string, json> oneOfEach(const Profile& profile) {
    const auto dump = (profile.root() / "theme.dump").generic_string();
    const auto policy = (profile.root() / "policy.reg").generic_string();
    testing_host::writeFile(dump, "theme = \"light\"\n");
    testing_host::writeFile(policy, "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\Policies\\Ventrix Systems, Inc.\\"
                                    "Unified Communications\\VentrixUC]\r\n\"AllowUrlProvisioning\"=\"0\"\r\nx\r\n");
    std::map<std::string, json> objects;
    for (auto& line :
         profile
             .shell({"get Theme", "explain Theme", "list Theme", "stores", "report", "log", "help", "observe Theme",
                     "set Theme dark", "reset NoSuchKey", "keys IP_MODE", "describe IP_MODE", "dump", "diff " + dump,
                     "load --dry-run " + dump, "doctor", "import-policy --dry-run " + policy},
                    {"--json"})
             .lines()) {
        objects.emplace(line.at("type"), std::move(line));
    }
    return objects;
}

} // namespace

TEST(Json, TheFieldsOfEachTypeAreThePublishedOnes) {
    const Profile profile;
    auto objects = oneOfEach(profile);
    for (const auto& [type, fields] : published) {
        EXPECT_EQ(fieldsOf(objects[type]), fields) << type;
    }
    const auto& explanation = objects["explanation"];
    EXPECT_EQ(fieldsOf(explanation.at("administrator")), reading);
    EXPECT_EQ(fieldsOf(explanation.at("stores").back()), (store + Fields{"wins", "holds"}));
    EXPECT_EQ(fieldsOf(explanation.at("stores").back().at("holds").front()),
              (Fields{"name", "value", "wins", "origin"}));
    for (const auto& [place, fields] : publishedElements) {
        const auto& [type, list] = place;
        const auto& elements = objects[type].at(list);
        ASSERT_FALSE(elements.empty()) << type << ' ' << list;
        EXPECT_EQ(fieldsOf(elements.front()), fields) << type << ' ' << list;
    }
}

TEST(Json, EachTypeAndFieldIsOnThePage) {
    const auto page =
        testing_host::readFile(std::filesystem::path(LUMORA_SOURCE_FOLDER) / "tools/lumora-config/README.md");
    const auto begin = page.find("## JSON");
    ASSERT_NE(begin, std::string::npos);
    const auto section = page.substr(begin, page.find("\n## ", begin + 1) - begin);
    Fields names{"wins", "holds"};
    for (const auto& [type, fields] : published) {
        names = names + Fields{type} + fields;
    }
    for (const auto& [place, fields] : publishedElements) {
        names = names + fields;
    }
    for (const auto& name : names + store) {
        EXPECT_THAT(section, HasSubstr('`' + name + '`'));
    }
}

TEST(Json, AValueContainsStoreAndOrigin) {
    const Profile profile;
    const json origin{{"file", profile.defaultsFile().string()}, {"line", lineOf(profile.defaultsFile(), "\"Theme\"")}};
    EXPECT_EQ(onlyLine(profile.run({"--json", "get", "Theme"})), (json{{"type", "value"},
                                                                       {"key", "Theme"},
                                                                       {"found", true},
                                                                       {"value", "system"},
                                                                       {"store", "lumora-config-defaults.xml"},
                                                                       {"underOldName", false},
                                                                       {"origin", origin}}));
}

TEST(Json, AMissingKeyIsPrintedBesideTheMessageOnStandardError) {
    const Profile profile;
    const auto outcome = profile.run({"--json", "get", "NoSuchKey"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(onlyLine(outcome), (json{{"type", "value"}, {"key", "NoSuchKey"}, {"found", false}}));
    EXPECT_THAT(outcome.error, HasSubstr("no store holds the key"));
}

TEST(Json, AnExplanationContainsNamesValuesAndStores) {
    const Profile profile;
    const auto file = profile.writeDocument("old.xml", "<TftpServer1>old.example</TftpServer1>");
    const auto object =
        onlyLine(profile.run({"--json", "--store", file + ":Foreign:40", "explain", "TFTPPrimaryServer"}));
    EXPECT_EQ(object.at("type"), "explanation");
    EXPECT_EQ(object.at("newName"), "TFTPPrimaryServer");
    EXPECT_EQ(object.at("oldName"), "TftpServer1");
    EXPECT_EQ(object.at("value"), "old.example");
    EXPECT_EQ(object.at("underOldName"), true);
    EXPECT_EQ(object.at("administrator").at("value"), "old.example");
    EXPECT_EQ(object.at("overridden"), false);
    EXPECT_EQ(object.at("defined"), true);
    EXPECT_EQ(object.at("originalStore"), "Foreign");
    const auto& opinion = object.at("stores").at(2);
    EXPECT_EQ(opinion, (json{{"priority", 40},
                             {"name", "Foreign"},
                             {"readOnly", true},
                             {"local", false},
                             {"keys", 1},
                             {"wins", true},
                             {"holds", json::array({{{"name", "TftpServer1"},
                                                     {"value", "old.example"},
                                                     {"wins", true},
                                                     {"origin", {{"file", file}, {"line", 1}}}}})}}));
}

TEST(Json, AListContainsTheValues) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    const auto object = onlyLine(profile.run({"--json", "list", "them"}));
    EXPECT_EQ(object.at("type"), "list");
    ASSERT_EQ(object.at("values").size(), 1U);
    const auto& listed = object.at("values").at(0);
    EXPECT_EQ(listed.at("value"), "dark");
    EXPECT_EQ(listed.at("store"), "LocalFileConfigStore");
    EXPECT_EQ(listed.at("overridden"), true);
}

TEST(Json, ACompletedCommandContainsItsName) {
    const Profile profile;
    const auto object = onlyLine(profile.run({"--json", "set", "Theme", "dark"}));
    EXPECT_EQ(object.at("type"), "done");
    EXPECT_EQ(object.at("command"), "set");
}

TEST(Json, TheReportContainsItsText) {
    const Profile profile;
    const auto object = onlyLine(profile.run({"--json", "report"}));
    EXPECT_EQ(object.at("type"), "report");
    EXPECT_THAT(object.at("text").get<std::string>(), HasSubstr("<AllConfigs>"));
}

TEST(Json, TheShellPrintsFailuresAsObjects) {
    const Profile profile;
    const auto outcome = profile.shell({"get NoSuchKey", "no-such-command"}, {"--json"});
    EXPECT_EQ(outcome.exitCode, 1);
    const auto lines = outcome.lines();
    ASSERT_EQ(lines.size(), 3U) << outcome.out;
    EXPECT_EQ(lines[1].at("type"), "failure");
    EXPECT_EQ(lines[1].at("command"), "get");
    EXPECT_EQ(lines[1].at("exitCode"), 1);
    EXPECT_EQ(lines[2].at("exitCode"), 2);
    EXPECT_EQ(outcome.error, "");
}

TEST(Json, BytesThatAreNotUtf8DoNotEndTheProgram) {
    const Profile profile;
    const auto outcome = profile.run({"--json", "get", "a\xff"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(onlyLine(outcome).at("found"), false);
}

} // namespace program_test
