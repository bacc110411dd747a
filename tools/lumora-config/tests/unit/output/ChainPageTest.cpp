#include "output/ChainPage.h"

#include <ConfigCatalogue.h>
#include <gmock/gmock.h>
#include <openssl/evp.h>

#include <array>
#include <nlohmann/json.hpp>

namespace lumora_config {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

const StoreFacts usersStore{"LocalFileConfigStore", 20, false, false, 1};
const StoreFacts policy{"RegistryConfigStore", 33, true, false, 1};

Explanation makeKey(const std::wstring& name, const std::wstring& value) {
    Explanation key;
    key.key = key.newName = name;
    key.inForce = Reading{value, L"LocalFileConfigStore", false};
    key.opinions = {{usersStore, {{name, value, true}}}, {policy, {}}};
    return key;
}

ChainFindings makeFindings(const Explanation& key) {
    ChainFindings findings;
    findings.stores = {usersStore, policy};
    findings.keys = {key};
    findings.madeAt = "2026-01-02T03:04:05Z";
    return findings;
}

std::string render(const Explanation& key) {
    return renderChainPage(makeFindings(key));
}

std::string_view cut(std::string_view page, std::string_view from, std::string_view to) {
    const auto begin = page.find(from) + from.size();
    return page.substr(begin, page.find(to, begin) - begin);
}

std::string_view cutData(std::string_view page) {
    return cut(page, "<script type=\"application/json\" id=\"data\">", "</script>");
}

std::string_view cutTable(std::string_view page) {
    return cut(page, "<noscript>", "</noscript>");
}

json readData(const ChainFindings& findings) {
    return json::parse(cutData(renderChainPage(findings)));
}

json readRow(const Explanation& key) {
    return readData(makeFindings(key)).at("keys").at(0);
}

std::string digest(std::string_view text) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> hash{};
    unsigned length = 0;
    EVP_Digest(text.data(), text.size(), hash.data(), &length, EVP_sha256(), nullptr);
    std::array<unsigned char, 2 * EVP_MAX_MD_SIZE> encoded{};
    const int written = EVP_EncodeBlock(encoded.data(), hash.data(), static_cast<int>(length));
    return {encoded.begin(), encoded.begin() + written};
}

} // namespace

TEST(ChainPage, ContainsTheChainWithWhatEachStoreHolds) {
    EXPECT_EQ(readData(makeFindings(makeKey(L"k", L"v"))).at("stores").at(1), json::parse(R"({
        "priority": 33, "name": "RegistryConfigStore", "holds": "the administrator's policy", "readOnly": true,
        "local": false, "keys": 1})"));
}

TEST(ChainPage, ContainsAKeyWithWhatTheStoresHoldAndThePositionOfTheValueInForce) {
    EXPECT_EQ(readRow(makeKey(L"k", L"v")), json::parse(R"(["k", [[0, "v"]], 0, null, 0])"));
}

TEST(ChainPage, MarksOverriddenAndSensitiveKeys) {
    auto key = makeKey(L"k", L"v");
    key.record.overridden = true;
    EXPECT_EQ(readRow(key).at(4), 1);
    key.sensitive = true;
    EXPECT_EQ(readRow(key).at(4), 3);
    key.record.overridden = false;
    EXPECT_EQ(readRow(key).at(4), 2);
}

TEST(ChainPage, ContainsTheOldNameAndMarksWhatIsHeldUnderIt) {
    auto key = makeKey(L"new", L"v");
    key.oldName = L"old";
    key.opinions[1].holdings = {{L"old", L"w", false}};
    key.administrators = Reading{L"w", L"registryconfigstore", true};
    EXPECT_EQ(readRow(key), json::parse(R"(["new", [[0, "v"], [1, "w", 1]], 0, 1, 0, "old"])"));
}

TEST(ChainPage, ContainsAReadingThatNoStoreHolds) {
    auto key = makeKey(L"k", L"v");
    key.administrators = Reading{L"derived", L"Elsewhere", false};
    EXPECT_EQ(readRow(key).at(3), json::parse(R"(["derived", "Elsewhere"])"));
}

TEST(ChainPage, ContainsTheOriginOfEachValueWithPersonalDataMasked) {
    auto key = makeKey(L"k", L"v");
    key.opinions[0].holdings[0].origin = {.file = "/home/jane/a.xml", .line = 7, .how = "", .when = ""};
    key.opinions[1].holdings = {{L"k", L"w", false, {.file = "", .line = 0, .how = "set", .when = "2026"}}};
    auto findings = makeFindings(key);
    findings.keys.push_back(key);
    const auto data = readData(findings);
    EXPECT_EQ(data.at("files"), json::parse(R"(["/home/<user>/a.xml"])"));
    EXPECT_EQ(data.at("keys").at(1).at(1),
              json::parse(R"([[0, "v", 0, [0, 7]], [1, "w", 0, [null, 0, "set", "2026"]]])"));
}

TEST(ChainPage, DistinguishesAnEmptyValueFromNone) {
    auto key = makeKey(L"k", L"");
    EXPECT_EQ(readRow(key).at(2), 0);
    key.inForce.reset();
    EXPECT_EQ(readRow(key).at(2), nullptr);
}

TEST(ChainPage, SpellsAKeyAsTheCatalogueDoes) {
    EXPECT_EQ(readRow(makeKey(L"servicesdomain", L"v")).at(0), "ServicesDomain");
}

TEST(ChainPage, ContainsTheMeaningOfAKnownKey) {
    const auto* const known = ZelUnified::ConfigKeys::findKey(L"ServicesDomain");
    ASSERT_NE(known, nullptr);
    EXPECT_EQ(readRow(makeKey(L"servicesdomain", L"v")).at(6), known->meaning);
    EXPECT_EQ(readRow(makeKey(L"unknown", L"v")).size(), 5U);
}

TEST(ChainPage, WithoutScriptsItIsATableOfTheValuesInForce) {
    auto key = makeKey(L"k", L"a < b");
    EXPECT_THAT(std::string(cutTable(render(key))),
                HasSubstr("<tr><th scope=\"row\">k<td>a &lt; b<td>LocalFileConfigStore\n"));
    key.inForce.reset();
    EXPECT_THAT(std::string(cutTable(render(key))), Not(HasSubstr("scope=\"row\"")));
}

TEST(ChainPage, HostileTextsEndNeitherTheDataNorTheTable) {
    const auto* const hostile = L"</noscript></script><!--<script>\"'&\x2028\x2029\x202e";
    const auto page = render(makeKey(hostile, hostile));
    EXPECT_THAT(std::string(cutData(page)), AllOf(Not(HasSubstr("<")), HasSubstr("\\u2028\\u2029[U+202E]")));
    EXPECT_THAT(std::string(cutTable(page)),
                AllOf(HasSubstr("&lt;/noscript&gt;&lt;/script&gt;&lt;!--&lt;script&gt;&quot;&#39;&amp;"),
                      HasSubstr("[U+202E]")));
    EXPECT_EQ(json::parse(cutData(page)).at("keys").at(0).at(0),
              "</noscript></script><!--<script>\"'&\xE2\x80\xA8\xE2\x80\xA9[U+202E]");
}

TEST(ChainPage, TextLikeAPlaceholderIsNotReplaced) {
    EXPECT_EQ(readRow(makeKey(L"{{version}}", L"{{none}}")).at(0), "{{version}}");
}

TEST(ChainPage, NamesTheProfileAndTheMachineWithPersonalDataMasked) {
    auto findings = makeFindings(makeKey(L"k", L"v"));
    findings.profile = "/home/jane/.config/Lumora/Config";
    findings.host = "desk<12>";
    findings.health.items = {{"file", "/home/jane/x", "unreadable", true}};
    const auto page = renderChainPage(findings);
    EXPECT_THAT(page, AllOf(HasSubstr("<code>/home/&lt;user&gt;/.config/Lumora/Config</code> on "
                                      "<code>desk&lt;12&gt;</code>"),
                            Not(HasSubstr("jane"))));
    EXPECT_EQ(readData(findings).at("health").at(0),
              json::parse(R"({"area": "file", "path": "/home/<user>/x", "state": "unreadable", "attention": true})"));
}

TEST(ChainPage, WarnsOfSecretsInIt) {
    const std::string warning = "This page shows secrets in clear.";
    ChainFindings findings;
    EXPECT_THAT(renderChainPage(findings), Not(HasSubstr(warning)));
    findings.showsSecrets = true;
    EXPECT_THAT(renderChainPage(findings), HasSubstr(warning));
}

TEST(ChainPage, LoadsNoOtherFile) {
    const auto page = renderChainPage({});
    for (const auto* reference : {" src=", " href=", "url(", "@import", "http:", "https:"}) {
        EXPECT_THAT(page, Not(HasSubstr(reference)));
    }
    EXPECT_THAT(page, HasSubstr("default-src 'none'"));
}

TEST(ChainPage, ItsSecurityPolicyAllowsOnlyItsStyleAndScript) {
    const auto page = renderChainPage({});
    EXPECT_THAT(page, HasSubstr("style-src 'sha256-" + digest(cut(page, "<style>", "</style>")) + "'"))
        << "'scripts/check-html-report --seal' corrects this";
    EXPECT_THAT(page, HasSubstr("script-src 'sha256-" + digest(cut(page, "<script>", "</script>")) + "'"))
        << "'scripts/check-html-report --seal' corrects this";
}

} // namespace lumora_config
