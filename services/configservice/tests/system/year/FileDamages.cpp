#include "FileDamages.h"

#include <zel/KeyProvider.h>
#include <zel/ProtectedText.h>

#include <TemporaryProfile.h>
#include <gtest/gtest.h>
#include <secure/SecureString.h>

#include <algorithm>
#include <memory>

namespace simulated_year {

using config_model::ByteSource;
using zel::storage::EncryptFileUtils;

namespace {

constexpr std::size_t versionAt = 4;
/// All later bytes are authenticated.
constexpr std::size_t keyIdAt = 8;

/// A key of another machine.
class OtherKey final : public zel::storage::KeyProvider {
public:
    zel::storage::KeyResult find(zel::storage::FileCategoryType::FileCategory, zel::storage::MasterKey& key) override {
        std::fill_n(key.data(), zel::storage::MasterKey::length, static_cast<unsigned char>(7));
        return zel::storage::KeyResult::Found;
    }
    zel::storage::KeyResult findOrMake(zel::storage::FileCategoryType::FileCategory category,
                                       zel::storage::MasterKey& key) override {
        return find(category, key);
    }
};

void flip(std::string& content, ByteSource& bytes) {
    const std::size_t room = content.size() - keyIdAt;
    char& byte = content.at(keyIdAt + (bytes.below(256) * 256 + bytes.below(256)) % room);
    byte = static_cast<char>(byte ^ static_cast<char>(1U << bytes.below(8)));
}

/// Writes a file of another machine in the place of this one.
void writeWithOtherKey(const std::filesystem::path& path) {
    using namespace zel::storage;
    const bool isDeviceData = path.filename() == "cachedUrlProvisioningConfigStore.dat";
    std::filesystem::remove(path);
    EncryptFileUtils::overrideKeyProvider(std::make_shared<OtherKey>());
    EXPECT_TRUE(
        EncryptFileUtils::writeDataToFile(path.string(), zel::SecureString(std::string("<Lumora/>")),
                                          isDeviceData ? FileCategoryType::DeviceData : FileCategoryType::UserData));
    EncryptFileUtils::overrideKeyProvider(nullptr);
}

} // namespace

FileDamage pickDamage(ByteSource& bytes) {
    static constexpr FileDamage kinds[] = {FileDamage::FlippedBits, FileDamage::Truncated, FileDamage::Emptied,
                                           FileDamage::OtherKey, FileDamage::OtherVersion};
    return bytes.pick(kinds);
}

std::string describe(FileDamage damage) {
    switch (damage) {
    case FileDamage::FlippedBits:
        return "a flipped bit";
    case FileDamage::Truncated:
        return "truncated";
    case FileDamage::Emptied:
        return "emptied";
    case FileDamage::OtherKey:
        return "encrypted with another key";
    case FileDamage::OtherVersion:
        return "of another version";
    }
    return "";
}

config_model::ServiceModel::Files::Damage effectOf(FileDamage damage) {
    using Effect = config_model::ServiceModel::Files::Damage;
    return damage == FileDamage::OtherVersion ? Effect::StaysInPlace : Effect::MovedAsideAtStart;
}

std::string damageFile(const std::filesystem::path& path, FileDamage damage, ByteSource& bytes) {
    std::string content = testing_host::readFile(path);
    switch (damage) {
    case FileDamage::FlippedBits:
        flip(content, bytes);
        break;
    case FileDamage::Truncated:
        content.resize(content.size() * bytes.below(256) / 256);
        break;
    case FileDamage::Emptied:
        content.clear();
        break;
    case FileDamage::OtherKey:
        writeWithOtherKey(path);
        return testing_host::readFile(path);
    case FileDamage::OtherVersion:
        ++content.at(versionAt);
        break;
    }
    testing_host::writeFile(path, content);
    return content;
}

} // namespace simulated_year
