#include "secure/SecureString.h"

#include "FreedBlock.h"
#include "secure/Base64Encoding.h"
#include "secure/CipherKey.h"
#include "secure/SecureBuffer.h"

#include <LogRecorder.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace {

using zel::SecureBuffer;
using zel::SecureString;

std::string clearTextOf(const SecureString& secret) {
    SecureBuffer buffer;
    secret.decrypt(buffer);
    EXPECT_EQ(buffer.getData()[buffer.getLength()], '\0');
    return {buffer.getData(), buffer.getLength()};
}

std::string shownBy(const SecureString& secret) {
    std::string shown = "not called";
    secret.withClearText([&](std::string_view text) { shown = text; });
    return shown;
}

/// Makes the library find no cipher during its lifetime, as on a machine whose policy forbids all of them.
class NoCipher {
public:
    NoCipher() { EVP_set_default_properties(nullptr, "provider=none"); }
    ~NoCipher() { EVP_set_default_properties(nullptr, ""); }
    NoCipher(const NoCipher&) = delete;
    NoCipher& operator=(const NoCipher&) = delete;
};

TEST(SecureString, WithoutContentReturnsNothing) {
    const SecureString secret;
    EXPECT_TRUE(secret.isEmpty());
    EXPECT_THAT(secret.toBytes(), testing::IsEmpty());
    EXPECT_EQ(secret.toBase64(), "");
    EXPECT_EQ(shownBy(secret), "not called");
    SecureBuffer buffer;
    secret.decrypt(buffer);
    EXPECT_EQ(buffer.getLength(), 0U);
    EXPECT_TRUE(SecureString(std::string()).isEmpty());
}

TEST(SecureString, ReturnsTheTextItContains) {
    for (const std::string& text : {std::string("a"), std::string("fifteen letters"), std::string("sixteen letters!"),
                                    std::string("a\0b\0", 4), std::string(100'000, 'x')}) {
        const SecureString secret(text);
        EXPECT_FALSE(secret.isEmpty());
        EXPECT_EQ(clearTextOf(secret), text);
        EXPECT_EQ(shownBy(secret), text);
    }
}

TEST(SecureString, TheBytesAreTheVectorAndPaddedBlocks) {
    EXPECT_EQ(SecureString(std::string(1, 'a')).toBytes().size(), 16U + 16U);
    EXPECT_EQ(SecureString(std::string(15, 'a')).toBytes().size(), 16U + 16U);
    EXPECT_EQ(SecureString(std::string(16, 'a')).toBytes().size(), 16U + 32U);
    EXPECT_EQ(SecureString(std::string(33, 'a')).toBytes().size(), 16U + 48U);
}

TEST(SecureString, TheBytesAreAes256InCbcModeUnderTheCipherKey) {
    const std::string text = "a secret that is longer than a block";
    std::vector<unsigned char> bytes = SecureString(text).toBytes();
    const zel::CipherKey key;
    std::string clear(bytes.size(), '\0');
    auto* const output = reinterpret_cast<unsigned char*>(clear.data());
    int updated = 0;
    int finished = 0;
    EVP_CIPHER_CTX* const context = EVP_CIPHER_CTX_new();
    EXPECT_EQ(EVP_CipherInit_ex(context, EVP_aes_256_cbc(), nullptr, key.data(), bytes.data(), 0), 1);
    EXPECT_EQ(EVP_CipherUpdate(context, output, &updated, bytes.data() + 16, static_cast<int>(bytes.size() - 16)), 1);
    EXPECT_EQ(EVP_CipherFinal_ex(context, output + updated, &finished), 1);
    EVP_CIPHER_CTX_free(context);
    clear.resize(static_cast<std::size_t>(updated + finished));
    EXPECT_EQ(clear, text);
}

TEST(SecureString, ItsBytesDoNotContainTheText) {
    const std::vector<unsigned char> bytes = SecureString("hunter2hunter2hunter2").toBytes();
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()).find("hunter2"), std::string::npos);
}

TEST(SecureString, EachSettingUsesANewVector) {
    EXPECT_NE(SecureString("same").toBytes(), SecureString("same").toBytes());
    SecureString secret("same");
    const auto before = secret.toBytes();
    secret.setContent("same", 4);
    EXPECT_NE(secret.toBytes(), before);
}

TEST(SecureString, Base64IsThatOfTheBytesWithoutLineBreaks) {
    const SecureString secret(std::string(200, 'a'));
    const auto bytes = secret.toBytes();
    EXPECT_EQ(secret.toBase64(),
              zel::Base64Encoding::instance().encode(bytes.data(), bytes.size(), zel::Encoding::LineBreaks::None));
    EXPECT_EQ(secret.toBase64().find('\r'), std::string::npos);
    EXPECT_EQ(SecureString("a").toBase64().size(), 44U);
}

TEST(SecureString, ANullPointerChangesNothing) {
    SecureString secret("abc");
    secret.setContent(nullptr, 3);
    secret.setContent(nullptr, 0);
    EXPECT_FALSE(secret.isEmpty());
    EXPECT_EQ(clearTextOf(secret), "abc");
}

TEST(SecureString, ALengthOfZeroMarksItEmpty) {
    SecureString secret("abc");
    secret.setContent("", 0);
    EXPECT_TRUE(secret.isEmpty());
    EXPECT_THAT(secret.toBytes(), testing::IsEmpty());
    EXPECT_EQ(secret.toBase64(), "");
    EXPECT_EQ(shownBy(secret), "not called");
    EXPECT_EQ(clearTextOf(secret), "abc");
    secret.setContent("new", 3);
    EXPECT_FALSE(secret.isEmpty());
    EXPECT_EQ(clearTextOf(secret), "new");
}

TEST(SecureString, CopiesShareTheirContent) {
    SecureString one("abc");
    SecureString other(one);
    SecureString assigned;
    assigned = other;
    other.setContent("changed", 7);
    EXPECT_EQ(clearTextOf(one), "changed");
    EXPECT_EQ(clearTextOf(assigned), "changed");
}

TEST(SecureString, CopyEncryptsWithANewVectorAndIsIndependent) {
    SecureString secret("secret");
    const auto copied = std::dynamic_pointer_cast<const SecureString>(secret.copy());
    ASSERT_NE(copied, nullptr);
    EXPECT_NE(copied->toBytes(), secret.toBytes()) << "a new vector";
    secret.setContent("other", 5);
    EXPECT_EQ(clearTextOf(*copied), "secret");
    EXPECT_TRUE(SecureString().copy()->isEmpty());
    const NoCipher guard;
    EXPECT_TRUE(secret.copy()->isEmpty());
}

TEST(SecureString, AMovedFromStringRemainsUsable) {
    SecureString one("abc");
    const SecureString moved(std::move(one));
    EXPECT_EQ(clearTextOf(moved), "abc");
    EXPECT_EQ(clearTextOf(one), "abc"); // NOLINT(bugprone-use-after-move): that it may be used is the point
}

TEST(SecureString, AFailingCipherMarksItEmptyWithoutALine) {
    const testing_host::LogRecorder log(testing_host::LogRecorder::Debug::On);
    SecureString secret("abc");
    {
        const NoCipher policy;
        secret.setContent("hunter2", 7);
        EXPECT_TRUE(secret.isEmpty());
        EXPECT_THAT(secret.toBytes(), testing::IsEmpty());
        EXPECT_EQ(secret.toBase64(), "");
        EXPECT_EQ(shownBy(secret), "not called");
    }
    EXPECT_THAT(log.getRecords(), testing::IsEmpty());
    secret.setContent("works again", 11);
    EXPECT_EQ(clearTextOf(secret), "works again");
}

TEST(SecureString, AFailingDecryptionLeavesTheBufferUnchangedWithoutALine) {
    const testing_host::LogRecorder log(testing_host::LogRecorder::Debug::On);
    SecureBuffer buffer;
    SecureString("old").decrypt(buffer);
    SecureString().decrypt(buffer);
    EXPECT_STREQ(buffer.getData(), "old");
    const SecureString secret("new");
    {
        const NoCipher policy;
        secret.decrypt(buffer);
        EXPECT_STREQ(buffer.getData(), "old");
        EXPECT_EQ(buffer.getLength(), 3U);
    }
    EXPECT_THAT(log.getRecords(), testing::IsEmpty());
    secret.decrypt(buffer);
    EXPECT_STREQ(buffer.getData(), "new");
}

TEST(SecureString, WipingZeroesTheBytesAndKeepsTheAllocation) {
    std::string narrow = "a secret that is too long for the short form";
    const std::size_t length = narrow.size();
    const std::size_t capacity = narrow.capacity();
    const char* const bytes = narrow.data();
    SecureString::wipe(narrow);
    EXPECT_EQ(narrow.size(), 0U);
    EXPECT_EQ(narrow.capacity(), capacity);
    EXPECT_EQ(narrow.data(), bytes);
    narrow.reserve(length);
    // The new size is within the capacity, so the bytes still belong to the string; only resize() would overwrite them.
    EXPECT_TRUE(std::all_of(bytes, bytes + length, [](char c) { return c == '\0'; }));
}

TEST(SecureString, WipingAWideTextZeroesAllOfEachCharacter) {
    std::wstring wide(50, L'\x20ac');
    const wchar_t* const characters = wide.data();
    SecureString::wipe(wide);
    EXPECT_EQ(wide.size(), 0U);
    EXPECT_TRUE(std::all_of(characters, characters + 50, [](wchar_t c) { return c == L'\0'; }));
}

TEST(SecureString, WipingWorksOnShortAndEmptyTexts) {
    std::string shortText = "abc";
    const char* const bytes = shortText.data();
    SecureString::wipe(shortText);
    EXPECT_EQ(std::string(bytes, 3), std::string(3, '\0'));
    SecureString::wipe(shortText);
    EXPECT_EQ(shortText, "");
}

TEST(SecureString, ZeroesTheCiphertextAndTheVectorThatNewContentReplaces) {
    // The block sizes, with the number of bytes that the cipher wrote.
    const std::map<std::size_t, std::size_t> blocks{{101 + 32, 112}, {16, 16}};
    for (const auto& [size, filled] : blocks) {
        SecureString secret(std::string(101, 'x'));
        const void* const block = secure_test::lastBlockOfSize(size);
        ASSERT_NE(block, nullptr) << size;
        const secure_test::FreedBlock freed(block, filled);
        secret.setContent("y", 1);
        EXPECT_EQ(freed.getContent(), std::string(filled, '\0'));
        EXPECT_EQ(clearTextOf(secret), "y");
    }
}

} // namespace
