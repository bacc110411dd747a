#include "secure/SecureBuffer.h"

#include "FreedBlock.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

namespace {

using zel::SecureBuffer;

std::unique_ptr<char[]> bytesOf(const std::string& text) {
    auto bytes = std::make_unique<char[]>(text.size() + 1);
    std::memcpy(bytes.get(), text.data(), text.size());
    return bytes;
}

TEST(SecureBuffer, IsEmptyAtFirst) {
    const SecureBuffer buffer;
    EXPECT_STREQ(buffer.getData(), "");
    EXPECT_EQ(buffer.getLength(), 0U);
}

TEST(SecureBuffer, SetReplacesItsContent) {
    SecureBuffer buffer;
    buffer.set(bytesOf("first"), 5);
    EXPECT_STREQ(buffer.getData(), "first");
    buffer.set(bytesOf(std::string("a\0b", 3)), 3);
    EXPECT_EQ(std::string(buffer.getData(), buffer.getLength()), std::string("a\0b", 3));
}

TEST(SecureBuffer, AnEmptyOrNullTextMakesItEmpty) {
    SecureBuffer buffer;
    buffer.set(bytesOf("hidden"), 0);
    EXPECT_STREQ(buffer.getData(), "");
    EXPECT_EQ(buffer.getLength(), 0U);
    buffer.set(bytesOf("first"), 5);
    buffer.set(nullptr, 7);
    EXPECT_STREQ(buffer.getData(), "");
    EXPECT_EQ(buffer.getLength(), 0U);
}

TEST(SecureBuffer, ZeroesItsBytesBeforeTheyAreFreed) {
    SecureBuffer buffer;
    buffer.set(bytesOf("first"), 5);
    {
        const secure_test::FreedBlock freed(buffer.getData(), 5);
        buffer.set(bytesOf("second"), 6);
        EXPECT_EQ(freed.getContent(), std::string(5, '\0'));
    }
    auto last = std::make_unique<SecureBuffer>();
    last->set(bytesOf("last"), 4);
    const secure_test::FreedBlock freed(last->getData(), 4);
    last.reset();
    EXPECT_EQ(freed.getContent(), std::string(4, '\0'));
}

} // namespace
