#pragma once

#include "PlainText.h"
#include "StorageProfile.h"

#include <zel/EncryptFileUtils.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace storage_test {

/// A profile with a protected file in each of the states.
struct MovedAsideFixture : testing::Test {
    testing_host::StorageProfile storage;
    const std::filesystem::path config = storage.profile.config();
    const std::string configDirectory = config.string();

    void write(const std::string& name, const std::string& text = "text",
               zel::storage::FileCategoryType::FileCategory category = zel::storage::FileCategoryType::UserData) const {
        ASSERT_TRUE(zel::storage::EncryptFileUtils::writeDataToFile(storage.configFile(name),
                                                                    testing_host::PlainText(text), category));
    }
    void writeAllStates() const {
        write("wrongkey.dat");
        write("wrongcategory.dat", "text", zel::storage::FileCategoryType::DeviceData);
        std::filesystem::remove(storage.keys() / "cat2.key");
        write("good.dat");
        std::filesystem::create_directory(config / "Cache");
        write("Cache/cachedUrlProvisioningConfigStore.dat", "link", zel::storage::FileCategoryType::DeviceData);
        testing_host::writeFile(config / "lumoraLocalConfig.dat", "rubbish");
        testing_host::writeFile(config / "Cache/cachedStore.dat", "");
        testing_host::writeFile(config / "later.dat",
                                testing_host::readFile(config / "good.dat").replace(4, 1, "\x02"));
        testing_host::writeFile(config / "foreign.xml", "rubbish");
    }
    static std::vector<zel::storage::MovedFile> check(const std::string& directory) {
        return zel::storage::EncryptFileUtils::moveAsideUnusable(directory);
    }
};

} // namespace storage_test
