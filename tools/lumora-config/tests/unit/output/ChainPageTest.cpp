#include "output/ChainPage.h"

#include <gmock/gmock.h>
#include <openssl/evp.h>

#include <array>

namespace lumora_config {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

const StoreFacts usersStore{"LocalFileConfigStore", 20, false, false, 1};
const StoreFacts policy{"RegistryConfigStore", 33, true, false, 1};

Explanation makeKey(const std::wstring& name, const std::wstring& value) {
    Explanation key;
    key.key = key.currentName = name;
    key.inForce = Reading{value, L"LocalFileConfigStore", false};
    key.opinions = {{usersStore, {{name, value, true}}}, {policy, {}}};
    return key;
}

std::string render(const Explanation& key) {
    return renderChainPage({{usersStore, policy}, {key}, "2026-01-02T03:04:05Z", false});
}

std::string_view cut(std::string_view page, std::string_view from, std::string_view to) {
    const auto begin = page.find(from) + from.size();
    return page.substr(begin, page.find(to, begin) - begin);
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

TEST(ChainPage, ShowsTheChainWithWhatEachStoreHolds) {
    EXPECT_THAT(render(makeKey(L"k", L"v")),
                HasSubstr("<tr><td class=\"number\">33</td><th scope=\"row\">RegistryConfigStore</th><td>the "
                          "administrator&#39;s policy</td><td>read-only</td><td>not local</td><td "
                          "class=\"number\">1</td><td class=\"number\">0</td></tr>"));
}

TEST(ChainPage, ShowsAKeyWithItsValueStoreAndOpinions) {
    const auto page = render(makeKey(L"k", L"v"));
    EXPECT_THAT(page,
                AllOf(HasSubstr("<span class=\"name\">k</span>"), HasSubstr("<span class=\"value in-force\">v</span>"),
                      HasSubstr("<span class=\"store\">LocalFileConfigStore</span>"),
                      HasSubstr("<td><span class=\"value\">v</span></td><td><span class=\"tag wins\">"),
                      HasSubstr("Nothing from RegistryConfigStore.")));
}

TEST(ChainPage, TellsOverriddenKeysAndTheAdministratorsValue) {
    auto key = makeKey(L"k", L"v");
    EXPECT_THAT(render(key), Not(HasSubstr(" data-overridden>")));
    key.record.overridden = true;
    key.administrators = Reading{L"other", L"RegistryConfigStore", false};
    EXPECT_THAT(render(key), AllOf(HasSubstr("<tbody class=\"key\" data-overridden>"),
                                   HasSubstr("other</span><span class=\"beneath\">RegistryConfigStore</span>")));
}

TEST(ChainPage, TellsAnEmptyValueFromNone) {
    auto key = makeKey(L"k", L"");
    EXPECT_THAT(render(key), HasSubstr("<span class=\"value in-force\"></span><span class=\"faint\">empty</span>"));
    key.inForce.reset();
    EXPECT_THAT(render(key), HasSubstr("<td data-label=\"Value in force\"><div><span class=\"faint\">none</span>"));
}

TEST(ChainPage, SpellsAKeyAsTheCatalogueDoes) {
    EXPECT_THAT(render(makeKey(L"servicesdomain", L"v")), HasSubstr("<span class=\"name\">ServicesDomain</span>"));
}

TEST(ChainPage, HostileTextsAreShownAsWhatTheyAre) {
    const auto page = render(makeKey(L"</script><script>alert(1)", L"\"><img src=x onerror=alert(2)>\x202e"));
    EXPECT_THAT(page, AllOf(HasSubstr("&lt;/script&gt;&lt;script&gt;alert(1)"), Not(HasSubstr("<script>alert")),
                            Not(HasSubstr("<img")), HasSubstr("[U+202E]")));
}

TEST(ChainPage, WarnsOfSecretsInIt) {
    const std::string warning = "This page shows secrets in clear.";
    EXPECT_THAT(renderChainPage({{}, {}, "", true}), HasSubstr(warning));
    EXPECT_THAT(renderChainPage({{}, {}, "", false}), Not(HasSubstr(warning)));
}

TEST(ChainPage, LoadsNothing) {
    const auto page = renderChainPage({{}, {}, "", false});
    for (const auto* reference : {" src=", " href=", "url(", "@import", "http:", "https:"}) {
        EXPECT_THAT(page, Not(HasSubstr(reference)));
    }
    EXPECT_THAT(page, HasSubstr("default-src 'none'"));
}

TEST(ChainPage, ItsPolicyAllowsItsOwnStyleAndScriptAlone) {
    const auto page = renderChainPage({{}, {}, "", false});
    EXPECT_THAT(page, HasSubstr("style-src 'sha256-" + digest(cut(page, "<style>", "</style>")) + "'"))
        << "scripts/check-html-report --seal mends this";
    EXPECT_THAT(page, HasSubstr("script-src 'sha256-" + digest(cut(page, "<script>", "</script>")) + "'"))
        << "scripts/check-html-report --seal mends this";
}

} // namespace lumora_config
