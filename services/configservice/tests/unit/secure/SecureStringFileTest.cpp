#include "LogRecorder.h"
#include "TemporaryProfile.h"
#include "secure/SecureBuffer.h"
#include "secure/SecureString.h"

#include <zel/EncryptFileUtils.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using zel::SecureString;
using zel::storage::EncryptFileUtils;
using zel::storage::FileCategoryType::UserData;

struct SecureStringFile : testing::Test {
    testing_host::TemporaryProfile profile;
    const std::string path = (profile.config() / "settings.xml").string();
};

TEST_F(SecureStringFile, ASecretRoundTripsThroughAProtectedFile) {
    const testing_host::LogRecorder log(testing_host::LogRecorder::Debug::On);
    const std::string text("hunter2 \0 and more", 18);
    ASSERT_TRUE(EncryptFileUtils::writeDataToFile(path, SecureString(text), UserData));
    SecureString content;
    ASSERT_TRUE(EncryptFileUtils::readDataFromFile(path, content, UserData));
    zel::SecureBuffer clear;
    content.decrypt(clear);
    EXPECT_EQ(std::string(clear.getData(), clear.getLength()), text);
    EXPECT_EQ(testing_host::readFile(profile.config() / "settings.dat").find("hunter2"), std::string::npos);
    EXPECT_FALSE(log.mentions("hunter2"));
}

TEST_F(SecureStringFile, AnEmptiedSecretIsNotWritten) {
    ASSERT_TRUE(EncryptFileUtils::writeDataToFile(path, SecureString("kept"), UserData));
    SecureString emptied("lost");
    emptied.setContent("", 0);
    EXPECT_FALSE(EncryptFileUtils::writeDataToFile(path, emptied, UserData));
    EXPECT_FALSE(EncryptFileUtils::writeDataToFile(path, SecureString(), UserData));
    SecureString content;
    ASSERT_TRUE(EncryptFileUtils::readDataFromFile(path, content, UserData));
    zel::SecureBuffer clear;
    content.decrypt(clear);
    EXPECT_STREQ(clear.getData(), "kept");
}

TEST_F(SecureStringFile, AFailedReadLeavesTheSecretUnchanged) {
    SecureString content("before");
    EXPECT_FALSE(EncryptFileUtils::readDataFromFile(path, content, UserData));
    zel::SecureBuffer clear;
    content.decrypt(clear);
    EXPECT_STREQ(clear.getData(), "before");
}

} // namespace
