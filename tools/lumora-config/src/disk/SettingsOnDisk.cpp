#include "SettingsOnDisk.h"

#include "output/Failure.h"
#include "stores/XmlSettings.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>
#include <kyr/XmlNames.h>
#include <zel/EncryptFileUtils.h>
#include <zel/ProtectedText.h>

#include <ConfigKeys.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace lumora_config {

using KyrCoreUtils::FileUtils;
using zel::storage::ReadResult;
namespace ConfigKeys = ZelUnified::ConfigKeys;
namespace Category = zel::storage::FileCategoryType;

namespace {

template <class Text>
void wipe(Text& text) {
    volatile auto* characters = text.data();
    for (std::size_t i = 0; i < text.size(); ++i) {
        characters[i] = 0;
    }
}

/// Holds the decrypted content of a file during one parse.
class ClearText final : public zel::storage::ProtectedText {
public:
    ClearText() = default;
    ~ClearText() { wipe(text); }
    ClearText(const ClearText&) = delete;
    ClearText& operator=(const ClearText&) = delete;

    bool isEmpty() const override { return text.empty(); }
    void setContent(const char* bytes, std::size_t length) override {
        if (bytes != nullptr) {
            wipe(text);
            text.assign(bytes, length);
        }
    }
    void withClearText(const std::function<void(std::string_view)>& use) const override {
        if (!text.empty()) {
            use(text);
        }
    }
    std::shared_ptr<const ProtectedText> copy() const override {
        auto other = std::make_shared<ClearText>();
        other->setContent(text.data(), text.size());
        return other;
    }

private:
    std::string text;
};

/// Returns the category by which the service chooses the encryption key of the file.
Category::FileCategory categoryOf(const std::string& path) {
    const auto name = FileUtils::getFileName(path);
    const bool isUsersFile = name == ConfigKeys::localConfigFile || name == ConfigKeys::localConfigBackupFile;
    const bool isProvisioned = path.find(ConfigKeys::urlProvisioningConfigStore) != std::string::npos;
    return isProvisioned && !isUsersFile ? Category::DeviceData : Category::UserData;
}

} // namespace

SettingsOnDisk::~SettingsOnDisk() {
    for (auto& [key, value] : values) {
        wipe(value);
    }
}

ReadResult readDocument(const std::string& path, const std::function<void(std::string_view)>& use) {
    ClearText content;
    const auto state = zel::storage::EncryptFileUtils::readFromDisk(path, content, categoryOf(path));
    if (state == ReadResult::Ok) {
        content.withClearText(use);
    }
    return state;
}

SettingsOnDisk readSettings(const std::string& path) {
    SettingsOnDisk read;
    read.state = readDocument(path, [&](std::string_view clear) {
        try {
            for (auto& setting : parseXmlSettings(clear, path)) {
                read.values.emplace(std::move(setting.key), std::move(setting.value));
            }
            read.wellFormed = true;
        } catch (const Failure&) {
            read.values.clear();
        }
    });
    return read;
}

SettingsOnDisk readUserSettings(const std::string& configDirectory) {
    const auto folder = configDirectory + FileUtils::FileSeparator();
    auto read = readSettings(folder + std::string(ConfigKeys::localConfigFile));
    if (read.state == ReadResult::Ok) {
        return read;
    }
    auto backup = readSettings(folder + std::string(ConfigKeys::localConfigBackupFile));
    return backup.state == ReadResult::Ok ? std::move(backup) : std::move(read);
}

std::vector<zel::storage::ProtectedFileHealth> examineProtectedFiles(const std::string& configDirectory) {
    auto files = zel::storage::EncryptFileUtils::health(configDirectory).files;
    for (const auto name : {ConfigKeys::localConfigFile, ConfigKeys::localConfigBackupFile}) {
        const auto path = configDirectory + FileUtils::FileSeparator() + std::string(name);
        const bool isListed = std::ranges::find(files, path, &zel::storage::ProtectedFileHealth::path) != files.end();
        if (!isListed && FileUtils::fileExists(path)) {
            files.push_back({path, readSettings(path).state, {}, false});
        }
    }
    return files;
}

std::wstring toStoredText(const std::wstring& value) {
    // Converts through UTF-8 because the service replaces lone surrogates in that conversion.
    auto kept = KyrCoreUtils::toWideString(KyrCoreUtils::toString(value));
    while (const auto character = KyrCoreUtils::findUnrepresentable(kept)) {
        std::ranges::replace(kept, static_cast<wchar_t>(*character), L'\xFFFD');
    }
    return kept;
}

} // namespace lumora_config
