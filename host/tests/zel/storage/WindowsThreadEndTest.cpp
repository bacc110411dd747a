#include "PlainText.h"

#include <zel/EncryptFileUtils.h>

#include <ProcessUsage.h>
#include <TemporaryProfile.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>

namespace {

using testing_host::ProcessUsage;
using zel::storage::EncryptFileUtils;
using zel::storage::FileCategoryType::UserData;

/// Encrypts a file in a thread of its own, which needs random bytes.
void encryptInThread(const std::string& path) {
    std::thread([&path] {
        const testing_host::PlainText content("text");
        EXPECT_TRUE(EncryptFileUtils::writeDataToFile(path, content, UserData));
    }).join();
}

} // namespace

TEST(WindowsThreadEnd, FreesTheRandomGeneratorOfTheThread) {
    constexpr std::size_t threads = 20;
    constexpr std::size_t mostBytesOfOneThread = 500;
    const testing_host::TemporaryProfile profile;
    const std::string path = (profile.config() / "file.dat").string();
    encryptInThread(path);
    const auto before = ProcessUsage::measure();
    for (std::size_t i = 0; i < threads; ++i) {
        encryptInThread(path);
    }
    EXPECT_LT(ProcessUsage::measure().heapBytes, before.heapBytes + threads * mostBytesOfOneThread);
}
