#include "FileKeyProvider.h"

#include "DurableFile.h"
#include "EncryptFileUtilsLogger.h"
#include "FileHandle.h"
#include "FileReader.h"
#include "KeyDerivation.h"
#include "KeyProtection.h"
#include "PathParts.h"
#include "WipedBytes.h"

#include <kyr/FileUtils.h>

#include <openssl/crypto.h>
#include <openssl/rand.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <optional>
#include <utility>

namespace zel::storage {

namespace {

constexpr std::string_view keyFileMagic = "LUMK";
/// The file holds the key itself, or the key as the platform's protection has wrapped it.
constexpr unsigned char plainVersion = 1;
constexpr unsigned char wrappedVersion = 2;
constexpr std::size_t keyFileVersionAt = 4;
constexpr std::size_t keyFileCategoryAt = 5;
constexpr std::size_t idAt = 8;
constexpr std::size_t keyAt = 16;
constexpr std::size_t longestFile = 4096;

/// Another process holds the lock only while it creates one key.
constexpr std::chrono::seconds longestWait{2};

/// Writes all fields except the key itself.
bool fillKeyFileHeader(FileCategoryType::FileCategory category, const MasterKey& key, unsigned char version,
                       unsigned char* file) {
    KeyId id{};
    if (!deriveKeyId(key, id)) {
        return false;
    }
    std::fill_n(file, keyAt, static_cast<unsigned char>(0));
    std::copy(keyFileMagic.begin(), keyFileMagic.end(), file);
    file[keyFileVersionAt] = version;
    file[keyFileCategoryAt] = static_cast<unsigned char>(category);
    std::copy(id.begin(), id.end(), file + idAt);
    return true;
}

/// Returns Found, Malformed or Unavailable.
KeyResult readKey(unsigned char version, std::string_view content, MasterKey& key) {
    if (version == wrappedVersion) {
        return KeyProtection::unwrap(content, key);
    }
    if (version != plainVersion || content.size() != MasterKey::length) {
        return KeyResult::Malformed;
    }
    std::copy(content.begin(), content.end(), key.data());
    return KeyResult::Found;
}

KeyResult parse(std::string_view file, FileCategoryType::FileCategory category, MasterKey& key) {
    if (file.size() < keyAt) {
        return KeyResult::Malformed;
    }
    const auto version = static_cast<unsigned char>(file[keyFileVersionAt]);
    if (const KeyResult result = readKey(version, file.substr(keyAt), key); result != KeyResult::Found) {
        return result;
    }
    unsigned char expected[keyAt];
    if (!fillKeyFileHeader(category, key, version, expected)) {
        return KeyResult::Unavailable;
    }
    const bool inOrder = std::equal(std::begin(expected), std::end(expected), file.begin(),
                                    [](unsigned char a, char b) { return a == static_cast<unsigned char>(b); });
    return inOrder ? KeyResult::Found : KeyResult::Malformed;
}

/// Sets `content` to what the file of the key holds behind its header. Returns the version of the file; nullopt on
/// failure.
std::optional<unsigned char> writeKey(const MasterKey& key, std::string& content) {
    if (KeyProtection::isPresent()) {
        return KeyProtection::wrap(key, content) ? std::optional(wrappedVersion) : std::nullopt;
    }
    content.assign(reinterpret_cast<const char*>(key.data()), MasterKey::length);
    return plainVersion;
}

} // namespace

FileKeyProvider::FileKeyProvider(FileLayer& files, std::string applicationData)
    : layer(files),
      parent(std::move(applicationData)),
      folder(parent.empty() ? "" : parent + KyrCoreUtils::FileUtils::FileSeparator() + "keys") {}

std::string FileKeyProvider::pathOf(FileCategoryType::FileCategory category) const {
    return folder + KyrCoreUtils::FileUtils::FileSeparator() + "cat" + std::to_string(static_cast<int>(category)) +
           ".key";
}

KeyResult FileKeyProvider::find(FileCategoryType::FileCategory category, MasterKey& key) {
    if (folder.empty()) {
        return KeyResult::Unavailable;
    }
    WipedText file;
    const ReadOutcome outcome = readRegularFile(layer, pathOf(category), longestFile, file.text);
    switch (outcome.result) {
    case ReadResult::Ok:
        return parse(file.text, category, key);
    case ReadResult::Absent:
        return KeyResult::Absent;
    default:
        return outcome.lasting ? KeyResult::Malformed : KeyResult::Unavailable;
    }
}

KeyResult FileKeyProvider::findOrMake(FileCategoryType::FileCategory category, MasterKey& key) {
    const KeyResult atFirst = find(category, key);
    if (atFirst == KeyResult::Unavailable) {
        return atFirst;
    }
    if (atFirst == KeyResult::Found) {
        // Another thread or process may have created the key and not synced its name yet. A power cut must not leave a
        // file without its key.
        return layer.syncDirectory(folder) == 0 ? KeyResult::Found : KeyResult::Unavailable;
    }
    if (!prepareFolder()) {
        return KeyResult::Unavailable;
    }
    // Without the lock, one process could move aside, as malformed, the valid key that another one has just created.
    FileLayer::Handle opened = -1;
    if (const int error = layer.lockDirectory(folder, longestWait, opened); error != 0) {
        return reportLockFailure(error);
    }
    const FileHandle lock(layer, opened);
    const KeyResult underLock = find(category, key);
    if (underLock == KeyResult::Found || underLock == KeyResult::Unavailable) {
        return underLock;
    }
    if (underLock == KeyResult::Malformed) {
        const std::string path = pathOf(category);
        if (layer.rename(path, path + ".bad") != 0) {
            return KeyResult::Unavailable;
        }
        ZelLog(encryptFileUtilsLogger, ZelLogLevel::Warning, ZEL_HERE,
               "Malformed key file kept as " + splitPath(path).name + ".bad, a new key is made");
    }
    if (!make(category)) {
        return KeyResult::Unavailable;
    }
    return find(category, key) == KeyResult::Found ? KeyResult::Found : KeyResult::Unavailable;
}

KeyResult FileKeyProvider::reportLockFailure(int error) const {
    if (error != ETIMEDOUT) {
        return KeyResult::Unavailable;
    }
    ZelLog(encryptFileUtilsLogger, ZelLogLevel::Error, ZEL_HERE,
           "The keys in " + ZelLogger_replacePIIData(folder) + " are locked by another process, gave up after " +
               std::to_string(longestWait.count()) + " seconds");
    return KeyResult::Locked;
}

bool FileKeyProvider::prepareFolder() {
    return KyrCoreUtils::FileUtils::createDirectory(parent) == 0 && layer.createDirectory(folder) == 0 &&
           layer.syncDirectory(parent) == 0;
}

bool FileKeyProvider::make(FileCategoryType::FileCategory category) {
    MasterKey fresh;
    WipedText content;
    if (RAND_priv_bytes(fresh.data(), static_cast<int>(MasterKey::length)) != 1) {
        return false;
    }
    const auto version = writeKey(fresh, content.text);
    WipedBytes file(keyAt + content.text.size());
    if (!version || !fillKeyFileHeader(category, fresh, *version, file.data())) {
        return false;
    }
    std::copy(content.text.begin(), content.text.end(), file.data() + keyAt);
    const int error = DurableFile::create(layer, pathOf(category), file.view());
    // Without working locks another process may have created the key first: the link decides which key is used.
    return error == 0 || error == EEXIST;
}

} // namespace zel::storage
