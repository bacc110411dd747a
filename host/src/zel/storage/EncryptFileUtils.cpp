#include "EncryptFileUtilsLogger.h"
#include "FileKeyProvider.h"
#include "InMemoryFileLayer.h"
#include "MovedFiles.h"
#include "PathParts.h"
#include "PendingWrites.h"
#include "ProtectedFileTree.h"
#include "ProtectedFiles.h"
#include "Quarantine.h"

#include <kyr/AnnotatedMutex.h>
#include <kyr/FileUtils.h>
#include <kyr/LockGuard.h>
#include <zel/EncryptFileUtils.h>

#include <chrono>
#include <exception>
#include <utility>

namespace zel::storage {

namespace {

/// The layer and key provider that an embedding program or a test has set in place of the defaults.
struct Overrides {
    KyrCoreUtils::AnnotatedMutex<> mutex;
    std::shared_ptr<FileLayer> layer LUMORA_GUARDED_BY(mutex);
    std::shared_ptr<KeyProvider> provider LUMORA_GUARDED_BY(mutex);
};

Overrides& overrides() {
    static Overrides current;
    return current;
}

MovedFiles& movedFiles() {
    static MovedFiles files;
    return files;
}

/// The layer and the key provider of one call, kept alive during the call.
class Environment {
public:
    /// The files as this process sees them, or those on the disk. They differ while a host keeps its changes in memory.
    enum class View { Process, Disk };

    explicit Environment(View view = View::Process) {
        Overrides& current = overrides();
        {
            const KyrCoreUtils::LockGuard lock(current.mutex);
            layer = current.layer;
            provider = current.provider;
        }
        if (auto inMemory = InMemoryFileLayer::getActive(); inMemory && view == View::Process) {
            layer = std::move(inMemory);
        }
        if (!layer) {
            layer = std::shared_ptr<FileLayer>(std::shared_ptr<void>(), &FileLayer::disk());
        }
        if (!provider) {
            provider = std::make_shared<FileKeyProvider>(*layer, KyrCoreUtils::FileUtils::getUserLocalAppDir());
        }
    }

    ProtectedFiles files() { return {*layer, *provider, movedFiles()}; }

private:
    std::shared_ptr<FileLayer> layer;
    std::shared_ptr<KeyProvider> provider;
};

/// Logs without the text of the exception, which may quote the content.
void logException(const std::string& path) noexcept {
    try {
        if (ZelLog_isDebugEnabled(encryptFileUtilsLogger)) {
            ZelLog(encryptFileUtilsLogger, ZelLogLevel::Debug, ZEL_HERE, "Exception at " + splitPath(path).name);
        }
    } catch (...) {
        return; // no memory for the log line; the caller still gets the failure
    }
}

/// Runs `work` and returns its result; returns `failed` if it throws.
template <typename Result, typename Work>
Result guarded(const std::string& path, Result failed, Work work) noexcept {
    try {
        return work();
    } catch (...) {
        logException(path);
        return failed;
    }
}

/// The Attempt that is passed to PendingWrites.
std::string writeToDisk(const std::string& path, const ProtectedText& content,
                        FileCategoryType::FileCategory category) {
    return guarded(path, std::string("unexpected failure"), [&] {
        std::string cause = "the content can't be deciphered";
        content.withClearText(
            [&](std::string_view clear) { cause = Environment().files().write(path, clear, category); });
        return cause;
    });
}

ReadResult readKept(const PendingWrites::Kept& kept, ProtectedText& content, FileCategoryType::FileCategory category) {
    if (kept.category != category) {
        return ReadResult::WrongKey;
    }
    bool shown = false;
    kept.content->withClearText([&](std::string_view clear) {
        content.setContent(clear.data(), clear.size());
        shown = true;
    });
    return shown && !content.isEmpty() ? ReadResult::Ok : ReadResult::Unreadable;
}

} // namespace

bool EncryptFileUtils::readDataFromFile(const std::string& path, ProtectedText& content,
                                        FileCategoryType::FileCategory category) {
    return readData(path, content, category) == ReadResult::Ok;
}

ReadResult EncryptFileUtils::readData(const std::string& path, ProtectedText& content,
                                      FileCategoryType::FileCategory category) {
    return guarded(path, ReadResult::Unreadable, [&] {
        if (const auto kept = PendingWrites::instance().find(ProtectedFiles::physicalPath(path))) {
            return readKept(*kept, content, category);
        }
        return Environment().files().read(path, content, category);
    });
}

ReadResult EncryptFileUtils::readFromDisk(const std::string& path, ProtectedText& content,
                                          FileCategoryType::FileCategory category) {
    return guarded(path, ReadResult::Unreadable,
                   [&] { return Environment(Environment::View::Disk).files().read(path, content, category); });
}

bool EncryptFileUtils::writeDataToFile(const std::string& path, const ProtectedText& content,
                                       FileCategoryType::FileCategory category) {
    return guarded(path, false, [&] {
        return !content.isEmpty() &&
               PendingWrites::instance().write(ProtectedFiles::physicalPath(path), content, category, writeToDisk);
    });
}

bool EncryptFileUtils::retryPendingWrites() {
    return guarded("pending writes", false, [] { return PendingWrites::instance().retry(writeToDisk); });
}

StorageHealth EncryptFileUtils::health(const std::string& configDirectory) {
    return guarded(configDirectory, StorageHealth(), [&] {
        Environment environment(Environment::View::Disk);
        ProtectedFiles files = environment.files();
        return StorageHealth{ProtectedFileTree(files, configDirectory).examine(PendingWrites::instance()),
                             movedFiles().list(configDirectory)};
    });
}

std::vector<KeptFile> EncryptFileUtils::listMovedAside(const std::string& directory) {
    return guarded(directory, std::vector<KeptFile>(), [&] {
        Environment environment(Environment::View::Disk);
        ProtectedFiles files = environment.files();
        return ProtectedFileTree(files, directory).listMovedAside();
    });
}

std::vector<MovedFile> EncryptFileUtils::moveAsideUnusable(const std::string& configDirectory) {
    return guarded(configDirectory, std::vector<MovedFile>(), [&] {
        Environment environment;
        ProtectedFiles files = environment.files();
        ProtectedFileTree(files, configDirectory).moveAsideUnusable();
        return movedFiles().list(configDirectory);
    });
}

WriteOutcome EncryptFileUtils::restoreMovedAside(const std::string& keptAs) {
    const auto now = std::chrono::system_clock::now();
    return guarded(keptAs, WriteOutcome{false, "unexpected failure", now}, [&] {
        const auto dropped = PendingWrites::instance().extract(Quarantine::parse(keptAs).original);
        const std::string cause = Environment().files().restore(keptAs);
        if (!cause.empty()) {
            PendingWrites::instance().putBack(dropped);
        }
        return WriteOutcome{cause.empty(), cause, now};
    });
}

void EncryptFileUtils::overrideFileLayer(std::shared_ptr<FileLayer> layer) {
    {
        const KyrCoreUtils::LockGuard lock(overrides().mutex);
        overrides().layer.swap(layer);
    }
    PendingWrites::instance().clear();
    movedFiles().clear();
}

void EncryptFileUtils::overrideKeyProvider(std::shared_ptr<KeyProvider> provider) {
    const KyrCoreUtils::LockGuard lock(overrides().mutex);
    overrides().provider.swap(provider);
}

} // namespace zel::storage
