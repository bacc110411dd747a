#include "zel/storage/ProtectedFileFormat.h"

#include "SecondImplementation.h"
#include "TemporaryProfile.h"
#include "zel/storage/FileKeyProvider.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

namespace {

using testing_host::readFile;
using zel::storage::FileKeyProvider;
using zel::storage::FileLayer;
using zel::storage::KeyResult;
using zel::storage::MasterKey;
using zel::storage::ProtectedFileFormat;
using zel::storage::ReadResult;
using zel::storage::FileCategoryType::DeviceData;
using zel::storage::FileCategoryType::FileCategory;
using zel::storage::FileCategoryType::UserData;

constexpr std::size_t overhead = ProtectedFileFormat::headerLength + ProtectedFileFormat::tagLength;

struct ProtectedFileFormatTest : testing::Test {
    ProtectedFileFormatTest() {
        std::fill_n(key.data(), MasterKey::length, static_cast<unsigned char>(7));
        file = ProtectedFileFormat::seal(clear, UserData, key).value_or("");
    }

    MasterKey key;
    std::string clear = "<Lumora/>\n";
    std::string file;
    std::string shown;
    bool wasShown = false;

    ReadResult open(std::string_view bytes, FileCategory category, const MasterKey& with) {
        wasShown = false;
        return ProtectedFileFormat::open(bytes, category, with,
                                         [this](std::string_view text) {
                                             wasShown = true;
                                             shown = text;
                                         })
            .result;
    }
    ReadResult open(std::string_view bytes) { return open(bytes, UserData, key); }
};

TEST_F(ProtectedFileFormatTest, OpeningReturnsTheSealedText) {
    for (const std::string& text :
         {std::string("a"), clear, std::string("a\0b\0", 4), std::string(1'000'000, 'x'), std::string(16, '\xff')}) {
        EXPECT_EQ(open(ProtectedFileFormat::seal(text, UserData, key).value_or("")), ReadResult::Ok);
        EXPECT_EQ(shown, text);
    }
}

TEST_F(ProtectedFileFormatTest, TheHeaderConsistsOfMarkVersionAndCategory) {
    EXPECT_EQ(file.size(), 44 + clear.size() + 16);
    EXPECT_EQ(file.substr(0, 8), std::string("LUMS\x01\x02\0\0", 8));
    EXPECT_EQ(ProtectedFileFormat::seal(clear, DeviceData, key).value_or("").substr(0, 8),
              std::string("LUMS\x01\0\0\0", 8));
}

TEST_F(ProtectedFileFormatTest, EachSealingHasNewSaltAndNonceAndTheSameKeyId) {
    const std::string other = ProtectedFileFormat::seal(clear, UserData, key).value_or("");
    EXPECT_EQ(file.substr(8, 8), other.substr(8, 8));
    EXPECT_NE(file.substr(16, 16), other.substr(16, 16));
    EXPECT_NE(file.substr(32, 12), other.substr(32, 12));
    EXPECT_NE(file.substr(44), other.substr(44));
}

TEST_F(ProtectedFileFormatTest, TheFileDoesNotContainTheClearText) {
    clear = "a text with a secret in it";
    file = ProtectedFileFormat::seal(clear, UserData, key).value_or("");
    EXPECT_EQ(file.find("secret"), std::string::npos);
}

TEST_F(ProtectedFileFormatTest, AnyFlippedBitIsDetected) {
    for (std::size_t i = 0; i < file.size(); ++i) {
        for (int bit = 0; bit < 8; ++bit) {
            std::string changed = file;
            changed[i] = static_cast<char>(changed[i] ^ (1 << bit));
            EXPECT_NE(open(changed), ReadResult::Ok) << i << ", " << bit;
            EXPECT_FALSE(wasShown);
        }
    }
}

TEST_F(ProtectedFileFormatTest, AnyTruncationOrAdditionIsDetected) {
    for (std::size_t length = 0; length < file.size(); ++length) {
        EXPECT_EQ(open(file.substr(0, length)), ReadResult::Damaged) << length;
        std::string zeroed = file;
        std::fill(zeroed.begin() + static_cast<std::ptrdiff_t>(length), zeroed.end(), '\0');
        EXPECT_NE(open(zeroed), ReadResult::Ok) << length;
    }
    EXPECT_EQ(open(file + "x"), ReadResult::Damaged);
    EXPECT_EQ(open(file + file), ReadResult::Damaged);
}

TEST_F(ProtectedFileFormatTest, EachCauseOfAFailureHasItsOwnResult) {
    EXPECT_EQ(open(file, DeviceData, key), ReadResult::WrongKey);
    MasterKey other;
    EXPECT_EQ(open(file, UserData, other), ReadResult::WrongKey);
    EXPECT_EQ(open("<?xml version=\"1.0\"?>" + std::string(100, ' ')), ReadResult::Damaged);
    std::string later = file;
    later[4] = 2;
    EXPECT_EQ(open(later), ReadResult::Unreadable);
    std::string reserved = file;
    reserved[7] = 1;
    EXPECT_EQ(open(reserved), ReadResult::Damaged);
    std::string tag = file;
    tag.back() = static_cast<char>(tag.back() ^ 1);
    EXPECT_EQ(open(tag), ReadResult::Damaged);
}

TEST_F(ProtectedFileFormatTest, AFileOfAnotherCategoryDoesNotOpenEvenWithTheSameKey) {
    std::string moved = ProtectedFileFormat::seal(clear, DeviceData, key).value_or("");
    moved[5] = 2;
    EXPECT_EQ(open(moved), ReadResult::Damaged);
}

TEST_F(ProtectedFileFormatTest, AFileMadeByASecondImplementationOfTheFormatOpens) {
    EXPECT_EQ(open(testing_host::sealByDescription(clear, 2, key)), ReadResult::Ok);
    EXPECT_EQ(shown, clear);
    EXPECT_EQ(open(testing_host::sealByDescription(clear, 0, key), DeviceData, key), ReadResult::Ok);
}

TEST_F(ProtectedFileFormatTest, ASealedEmptyTextHasItsOwnResultAndIsNotReturned) {
    EXPECT_EQ(open(testing_host::sealByDescription("", 2, key)), ReadResult::Empty);
    EXPECT_FALSE(wasShown);
}

TEST_F(ProtectedFileFormatTest, SealingRefusesEmptyAndTooLongTexts) {
    EXPECT_FALSE(ProtectedFileFormat::seal("", UserData, key).has_value());
    const std::string longest(ProtectedFileFormat::maximumFileLength - overhead, 'x');
    const auto largest = ProtectedFileFormat::seal(longest, UserData, key);
    ASSERT_TRUE(largest.has_value());
    EXPECT_EQ(largest->size(), std::size_t{ProtectedFileFormat::maximumFileLength});
    EXPECT_FALSE(ProtectedFileFormat::seal(longest + "x", UserData, key).has_value());
}

/// A folder written by the first release, which must always stay readable.
TEST_F(ProtectedFileFormatTest, FilesOfTheFirstReleaseOpen) {
    const std::filesystem::path data = LUMORA_TEST_DATA;
    FileKeyProvider provider(FileLayer::platform(), (data / "first-release").string());
    for (const auto& [category, name] : {std::pair{UserData, "lumoraLocalConfig.dat"},
                                         std::pair{DeviceData, "cachedUrlProvisioningConfigStore.dat"}}) {
        MasterKey stored;
        ASSERT_EQ(provider.find(category, stored), KeyResult::Found);
        const std::string stem = std::filesystem::path(name).stem().string();
        EXPECT_EQ(open(readFile(data / "first-release" / name), category, stored), ReadResult::Ok) << name;
        EXPECT_EQ(shown, readFile(data / "first-release" / (stem + ".txt")));
        EXPECT_FALSE(shown.empty());
    }
}

} // namespace
