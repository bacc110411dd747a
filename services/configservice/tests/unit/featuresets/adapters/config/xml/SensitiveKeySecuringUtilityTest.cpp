#include "featuresets/adapters/config/xml/SensitiveKeySecuringUtility.h"

#include "LogRecorder.h"
#include "secure/CipherKey.h"

#include <kyr/StringUtils.h>

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using ZelUnified::ConfigMap;
using ZelUnified::SensitiveKeySecuringUtility;

std::wstring secured(const std::wstring& value) {
    ConfigMap values{{L"ConnectionPassword", value}};
    SensitiveKeySecuringUtility::secureWellKnownSensitiveKeys(values);
    return values.at(L"ConnectionPassword");
}

/// Decrypts a secured value; the product never does.
std::string openSecured(const std::wstring& value) {
    const std::string base64 = KyrCoreUtils::toString(value);
    std::vector<unsigned char> bytes(base64.size());
    const int decoded = EVP_DecodeBlock(bytes.data(), reinterpret_cast<const unsigned char*>(base64.data()),
                                        static_cast<int>(base64.size()));
    bytes.resize(static_cast<std::size_t>(decoded - std::count(base64.begin(), base64.end(), '=')));
    const zel::CipherKey key;
    std::string clear(bytes.size(), '\0');
    auto* const output = reinterpret_cast<unsigned char*>(clear.data());
    int updated = 0;
    int finished = 0;
    EVP_CIPHER_CTX* const context = EVP_CIPHER_CTX_new();
    EVP_DecryptInit_ex(context, EVP_aes_256_cbc(), nullptr, key.data(), bytes.data());
    EVP_DecryptUpdate(context, output, &updated, bytes.data() + 16, static_cast<int>(bytes.size()) - 16);
    EXPECT_EQ(EVP_DecryptFinal_ex(context, output + updated, &finished), 1);
    EVP_CIPHER_CTX_free(context);
    return clear.substr(0, static_cast<std::size_t>(updated + finished));
}

TEST(SensitiveKeySecuringUtility, ListsTheTwoKeysInOrder) {
    EXPECT_EQ(SensitiveKeySecuringUtility::KEYS_TO_SECURE, 2U);
    EXPECT_EQ(SensitiveKeySecuringUtility::EDI_PSW_KEY, L"ConnectionPassword");
    EXPECT_EQ(SensitiveKeySecuringUtility::BDI_PSW_KEY, L"BDIConnectionPassword");
    EXPECT_EQ(SensitiveKeySecuringUtility::WELL_KNOWN_SENSITIVE_KEYS[0], L"ConnectionPassword");
    EXPECT_EQ(SensitiveKeySecuringUtility::WELL_KNOWN_SENSITIVE_KEYS[1], L"BDIConnectionPassword");
}

TEST(SensitiveKeySecuringUtility, RecognisesTheKeysIgnoringCase) {
    EXPECT_TRUE(SensitiveKeySecuringUtility::isWellKnownSensitiveKey(L"connectionPASSWORD"));
    EXPECT_TRUE(SensitiveKeySecuringUtility::isWellKnownSensitiveKey(L"bdiconnectionpassword"));
    EXPECT_FALSE(SensitiveKeySecuringUtility::isWellKnownSensitiveKey(L"ConnectionPassword2"));
    EXPECT_FALSE(SensitiveKeySecuringUtility::isWellKnownSensitiveKey(L""));
}

TEST(SensitiveKeySecuringUtility, AMapWithoutTheKeysIsUnchanged) {
    ConfigMap values{{L"ServicesDomain", L"example.com"}, {L"Password", L"hunter2"}};
    const ConfigMap before = values;
    SensitiveKeySecuringUtility::secureWellKnownSensitiveKeys(values);
    EXPECT_EQ(values, before);
}

TEST(SensitiveKeySecuringUtility, SecuresBothKeysAndLeavesTheOthers) {
    ConfigMap values{
        {L"ConnectionPassword", L"hunter2"}, {L"BDIConnectionPassword", L"hunter3"}, {L"ServicesDomain", L"x"}};
    SensitiveKeySecuringUtility::secureWellKnownSensitiveKeys(values);
    EXPECT_EQ(openSecured(values.at(L"ConnectionPassword")), "hunter2");
    EXPECT_EQ(openSecured(values.at(L"BDIConnectionPassword")), "hunter3");
    EXPECT_EQ(values.at(L"ServicesDomain"), L"x");
    EXPECT_EQ(values.size(), 3U);
}

TEST(SensitiveKeySecuringUtility, AKeyInAnotherCaseIsSecuredAndKeepsItsSpelling) {
    ConfigMap values{{L"connectionpassword", L"hunter2"}};
    SensitiveKeySecuringUtility::secureWellKnownSensitiveKeys(values);
    EXPECT_EQ(values.begin()->first, L"connectionpassword");
    EXPECT_EQ(openSecured(values.begin()->second), "hunter2");
}

TEST(SensitiveKeySecuringUtility, AnEmptyValueStaysEmpty) {
    EXPECT_EQ(secured(L""), L"");
}

TEST(SensitiveKeySecuringUtility, TheSecuredTextIsTheBase64OfVectorAndPaddedBlocks) {
    const std::wstring one = secured(L"a");
    EXPECT_EQ(one.size(), 44U);
    EXPECT_EQ(std::count(one.begin(), one.end(), L'='), 1);
    const std::wstring block = secured(std::wstring(16, L'a'));
    EXPECT_EQ(block.size(), 64U);
    EXPECT_EQ(std::count(block.begin(), block.end(), L'='), 0);
    EXPECT_EQ(secured(std::wstring(200, L'a')).find(L'\r'), std::wstring::npos);
}

TEST(SensitiveKeySecuringUtility, TheLengthIsCountedInBytesOfUtf8) {
    EXPECT_EQ(secured(std::wstring(8, L'\xe4')).size(), 64U);
    EXPECT_EQ(openSecured(secured(L"\xe4\x20ac")), "\xc3\xa4\xe2\x82\xac");
}

TEST(SensitiveKeySecuringUtility, EveryCallEncryptsWithANewVector) {
    EXPECT_NE(secured(L"hunter2"), secured(L"hunter2"));
    ConfigMap values{{L"ConnectionPassword", L"hunter2"}};
    SensitiveKeySecuringUtility::secureWellKnownSensitiveKeys(values);
    const std::wstring once = values.at(L"ConnectionPassword");
    SensitiveKeySecuringUtility::secureWellKnownSensitiveKeys(values);
    EXPECT_EQ(openSecured(values.at(L"ConnectionPassword")), KyrCoreUtils::toString(once));
}

TEST(SensitiveKeySecuringUtility, AFailingCipherEmptiesTheValueWithoutALine) {
    const testing_host::LogRecorder log(testing_host::LogRecorder::Debug::On);
    EVP_set_default_properties(nullptr, "provider=none");
    const std::wstring value = secured(L"hunter2");
    EVP_set_default_properties(nullptr, "");
    EXPECT_EQ(value, L"");
    EXPECT_TRUE(log.getRecords().empty());
}

} // namespace
