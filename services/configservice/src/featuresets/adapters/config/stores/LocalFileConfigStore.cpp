#include "LocalFileDocument.h"
#include "LocalFileLogger.h"
#include "StoreTable.h"
#include "featuresets/adapters/config/xml/XmlReader.h"
#include "secure/SecureBuffer.h"
#include "secure/SecureString.h"
#include "secure/StackWiper.h"
#include "services/impl/ConfigFileCacheTimer.h"
#include "services/impl/ConfigFileCacheTimerCallBack.h"
#include "table/WipedValues.h"

#include <kyr/FileUtils.h>
#include <kyr/FstreamUtils.h>
#include <kyr/StringUtils.h>
#include <zel/EncryptFileUtils.h>

#include <ConfigKeys.h>
#include <LocalFileConfigStore.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <utility>

namespace ZelUnified {

using KyrCoreUtils::FileUtils;
using zel::storage::EncryptFileUtils;
using zel::storage::FileCategoryType::UserData;

namespace {

constexpr std::string_view invalidSyntax =
    "Error Invalid XML syntax detected - Unable to read localFileConfigStore configuration";

std::string toBackupName(std::string file) {
    return file.insert(file.find('.'), "_backup");
}

ConfigMap readTable(const std::string& store, const XmlDocument& document) {
    ConfigMap table;
    LocalFileDocument(store, table).read(document);
    return table;
}

std::string readWhole(const std::string& path) {
    std::fstream stream;
    if (!KyrCoreUtils::FstreamUtils::open(stream, path, KyrCoreUtils::StreamMode::Read)) {
        return {};
    }
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// Makes `copy` equal to `entries` and zeroes the values that it overwrites or removes. Reuses the nodes up to the
/// first key that differs, because most persists follow changes of values only.
void copyEntries(const std::vector<ConfigEntry::Owner>& entries, ConfigMap& copy) {
    auto copied = copy.begin();
    auto entry = entries.begin();
    for (; copied != copy.end() && entry != entries.end() && copied->first == (*entry)->getKey(); ++copied, ++entry) {
        if (copied->second != (*entry)->getValue()) {
            overwriteValue(copied->second, (*entry)->getValue());
        }
    }
    while (copied != copy.end()) {
        zel::SecureString::wipe(copied->second);
        copied = copy.erase(copied);
    }
    for (; entry != entries.end(); ++entry) {
        copy.emplace_hint(copy.end(), (*entry)->getKey(), (*entry)->getValue());
    }
}

/// Logs the content of a file that is not well-formed and renames the file.
void quarantine(const std::string& directory, const std::string& file, const LogPlace& place) {
    const auto logError = [&place](const auto& text) { ZelLog(localFileLogger, ZelLogLevel::Error, place, text); };
    const std::string quarantineName = file.substr(0, file.rfind('.')) + "-backup.xml";
    std::string text(invalidSyntax);
    text.append("\nrenaming invalid file to: ").append(quarantineName).append(" and creating new blank XML document");
    logError(text);
    const std::string content = readWhole(directory + file);
    logError("contents of invalid xml with string length: " + std::to_string(content.size()) + "\n" + content);
    const std::string target = directory + quarantineName;
    if (FileUtils::moveFile(directory + file, target, false) != 0) {
        logError(L"error creating backup file: " + KyrCoreUtils::toWideString(target));
    }
}

} // namespace

/// Writes the backup if the store still exists when the timer fires.
class LocalFileConfigStore::LocalFileConfigFileCacheTimerCallBackImpl final : public ConfigFileCacheTimerCallBack {
public:
    LocalFileConfigFileCacheTimerCallBackImpl(std::weak_ptr<LocalFileConfigStore> written, std::string file)
        : store(std::move(written)), fileName(std::move(file)) {}

    void onTimerFired() override {
        if (ZelLog_isDebugEnabled(localFileLogger)) {
            ZelLog(localFileLogger, ZelLogLevel::Debug, ZEL_HERE, "About to cache file: " + fileName);
        }
        if (const auto alive = store.lock()) {
            alive->backupConfigFile();
        }
    }

    std::string getFileName() override { return fileName; }

private:
    std::weak_ptr<LocalFileConfigStore> store;
    std::string fileName;
};

LocalFileConfigStore::LocalFileConfigStore(std::string storeName, int storePriority, std::string directory,
                                           std::string file, bool isLocalStore, bool isReadOnlyStore, bool encrypted)
    : name(std::move(storeName)),
      priority(storePriority),
      local(isLocalStore),
      readOnly(isReadOnlyStore),
      table(std::make_unique<StoreTable>(StoreTable::Rule::AnswersAll)),
      configDirectory(directory.empty() ? std::move(directory) : directory + FileUtils::FileSeparator()),
      fileName(std::move(file)),
      backupFileName(toBackupName(fileName)) {
    encrypted ? readFromEncryptedFile() : readFromFile();
}

LocalFileConfigStore::LocalFileConfigStore(std::string storeName, int storePriority, bool isLocalStore)
    : name(std::move(storeName)),
      priority(storePriority),
      local(isLocalStore),
      readOnly(false),
      table(std::make_unique<StoreTable>(StoreTable::Rule::AnswersAll)),
      configDirectory(FileUtils::getConfigDirectory() + FileUtils::FileSeparator()),
      fileName(ConfigKeys::localConfigFile),
      backupFileName(ConfigKeys::localConfigBackupFile) {
    readFromEncryptedFile();
}

LocalFileConfigStore::~LocalFileConfigStore() {
    wipeValues(lastPersistedValues);
}

bool LocalFileConfigStore::getValue(const std::wstring& key, std::wstring& value) {
    return table->getValue(key, value);
}

bool LocalFileConfigStore::storeValue(const std::wstring& key, const std::wstring& value) {
    return table->storeValue(LocalFileDocument::migrateKey(key), value);
}

std::vector<std::wstring> LocalFileConfigStore::getKeys() {
    return table->getKeys();
}

bool LocalFileConfigStore::removeValue(const std::wstring& key) {
    return table->removeValue(key);
}

void LocalFileConfigStore::removeAllValues() {
    table->removeAllValues();
}

void LocalFileConfigStore::waitForWrite() {
    const zel::Mutex::ScopedLock fileLock(fileMutex);
}

void LocalFileConfigStore::destroy() {
    const auto values = table->lock();
    destroyed = true;
}

void LocalFileConfigStore::setTimer(std::shared_ptr<ConfigFileCacheTimer> cacheTimer) {
    timer = std::move(cacheTimer);
}

void LocalFileConfigStore::setInterval(int milliseconds) {
    interval = milliseconds;
}

bool LocalFileConfigStore::readFromEncryptedFile() {
    const zel::StackWiper wiper;
    const zel::Mutex::ScopedLock fileLock(fileMutex);
    const auto values = table->lock();
    zel::SecureString content;
    if (!readProtectedText(content)) {
        ZelLog(localFileLogger, ZelLogLevel::Error, ZEL_HERE,
               "Failed to read config file " + configDirectory + (hasBackup() ? backupFileName : fileName));
        return false;
    }
    zel::SecureBuffer clear;
    content.decrypt(clear);
    std::string text(clear.getData(), clear.getLength());
    if (const XmlDocument document = XmlReader::parseDoc(text)) {
        values->replace(readTable(name, document));
    } else {
        ZelLog(localFileLogger, ZelLogLevel::Error, ZEL_HERE, invalidSyntax);
    }
    zel::SecureString::wipe(text);
    return true;
}

bool LocalFileConfigStore::readProtectedText(zel::SecureString& content) {
    return EncryptFileUtils::readDataFromFile(configDirectory + fileName, content, UserData) ||
           (hasBackup() && EncryptFileUtils::readDataFromFile(configDirectory + backupFileName, content, UserData));
}

bool LocalFileConfigStore::hasBackup() const {
    return name == ConfigKeys::localFileConfigStore;
}

bool LocalFileConfigStore::readFromFile() {
    const zel::Mutex::ScopedLock fileLock(fileMutex);
    const auto values = table->lock();
    const std::string path = configDirectory + fileName;
    if (!FileUtils::fileExists(path)) {
        ZelLog(localFileLogger, ZelLogLevel::Warning, ZEL_HERE,
               L"Read config FAILED, config file doesn't exist: " + KyrCoreUtils::toWideString(path));
        return false;
    }
    if (const XmlDocument document = XmlReader::readFile(path)) {
        values->replace(readTable(name, document));
    } else {
        quarantine(configDirectory, fileName, {ZEL_HERE});
    }
    return true;
}

void LocalFileConfigStore::createConfigDirectory() {
    if (configDirectory.empty()) {
        return;
    }
    std::string directory = configDirectory;
    if (FileUtils::FileSeparator().find(directory.back()) != std::string::npos) {
        directory.pop_back();
    }
    FileUtils::createDirectory(directory);
}

void LocalFileConfigStore::persistValues() {
    {
        const auto values = table->lock();
        if (std::ranges::equal(lastPersistedValues, values->list(), [](const auto& persisted, const auto& entry) {
                return persisted.first == entry->getKey() && persisted.second == entry->getValue();
            })) {
            if (ZelLog_isDebugEnabled(localFileLogger)) {
                ZelLog(localFileLogger, ZelLogLevel::Debug, ZEL_HERE, "Same content has been saved.");
            }
            return;
        }
    }
    persistValuesImpl(fileName);
    if (hasBackup() && timer) {
        timer->scheduleTimer(
            std::make_shared<LocalFileConfigFileCacheTimerCallBackImpl>(weak_from_this(), backupFileName), interval);
    }
}

void LocalFileConfigStore::persistValuesImpl(const std::string& target) {
    const zel::StackWiper wiper;
    const zel::Mutex::ScopedLock fileLock(fileMutex);
    if (!checkIfGoodToWrite(target, false)) {
        if (checkIfGoodToWrite(target, true)) {
            ZelLog(localFileLogger, ZelLogLevel::Error, ZEL_HERE,
                   "Failed to read lumoraLocalConfig/backup file, so don't write to " + target + " to keep file good.");
            return;
        }
        ZelLog(localFileLogger, ZelLogLevel::Error, ZEL_HERE, "Both files are broken, write to " + target);
    }
    zel::SecureString content;
    {
        const auto values = table->lock();
        getDataString(content);
        if (target == fileName) {
            try {
                copyEntries(values->list(), lastPersistedValues);
            } catch (...) {
                // A later table could equal a mixture of old and new values, and would not be written.
                wipeValues(lastPersistedValues);
                lastPersistedValues.clear();
                throw;
            }
        }
    }
    // The facility rejects empty content. This protects the file of a store that must not write.
    EncryptFileUtils::writeDataToFile(configDirectory + target, content, UserData);
}

bool LocalFileConfigStore::checkIfGoodToWrite(const std::string& target, bool checkTarget) {
    const zel::Mutex::ScopedLock lock(fileMutex);
    const std::string& counterpart = target == fileName ? backupFileName : fileName;
    const std::string path = configDirectory + (checkTarget ? target : counterpart);
    if (!FileUtils::fileExists(path)) {
        return true;
    }
    zel::SecureString scratch;
    return EncryptFileUtils::readDataFromFile(path, scratch, UserData);
}

void LocalFileConfigStore::getDataString(zel::SecureString& content) {
    const auto values = table->lock();
    if (readOnly || destroyed) {
        return;
    }
    createConfigDirectory();
    LocalFileDocument::getDataString(*values, content);
}

void LocalFileConfigStore::backupConfigFile() {
    persistValuesImpl(backupFileName);
}

} // namespace ZelUnified
