#include "EncryptFileUtilsLogger.h"
#include "FileKeyProvider.h"
#include "PathParts.h"
#include "ProtectedFiles.h"

#include <kyr/FileUtils.h>
#include <zel/EncryptFileUtils.h>

#include <exception>
#include <mutex>
#include <utility>

namespace zel::storage {

namespace {

ZelLogger& logger = encryptFileUtilsLogger();

/// What an embedding program or a test has put in place of the defaults.
struct Overrides {
    std::mutex mutex;
    std::shared_ptr<FileLayer> layer;
    std::shared_ptr<KeyProvider> provider;
};

Overrides& overrides() {
    static Overrides current;
    return current;
}

/// The layer and the keys for one call, kept alive over it.
class Environment {
public:
    Environment() {
        Overrides& current = overrides();
        {
            const std::lock_guard lock(current.mutex);
            layer = current.layer;
            provider = current.provider;
        }
        if (!layer) {
            layer = std::shared_ptr<FileLayer>(std::shared_ptr<void>(), &FileLayer::platform());
        }
        if (!provider) {
            provider = std::make_shared<FileKeyProvider>(*layer, KyrCoreUtils::FileUtils::getUserLocalAppDir());
        }
    }

    ProtectedFiles files() { return {*layer, *provider}; }

private:
    std::shared_ptr<FileLayer> layer;
    std::shared_ptr<KeyProvider> provider;
};

/// The text of an exception may quote what it was about, so it is not told.
void logException(const std::string& path) noexcept {
    try {
        if (ZelLog_isDebugEnabled(logger)) {
            ZelLog(logger, ZelLogLevel::Debug, ZEL_HERE, "Exception at " + splitPath(path).name);
        }
    } catch (...) {
        return; // No memory for the line either; the caller hears of the failure all the same.
    }
}

/// Runs `work`; a failure that it throws becomes `failed`.
template <typename Result, typename Work>
Result guarded(const std::string& path, Result failed, Work work) noexcept {
    try {
        return work();
    } catch (...) {
        logException(path);
        return failed;
    }
}

} // namespace

bool EncryptFileUtils::readDataFromFile(const std::string& path, ProtectedText& content,
                                        FileCategoryType::FileCategory category) {
    return readData(path, content, category) == ReadResult::Ok;
}

ReadResult EncryptFileUtils::readData(const std::string& path, ProtectedText& content,
                                      FileCategoryType::FileCategory category) {
    return guarded(path, ReadResult::Unreadable, [&] { return Environment().files().read(path, content, category); });
}

bool EncryptFileUtils::writeDataToFile(const std::string& path, const ProtectedText& content,
                                       FileCategoryType::FileCategory category) {
    return guarded(path, false, [&] {
        bool written = false;
        if (!content.isEmpty()) {
            content.withClearText([&](std::string_view clear) {
                Environment environment;
                written = environment.files().write(path, clear, category);
            });
        }
        return written;
    });
}

void EncryptFileUtils::overrideFileLayer(std::shared_ptr<FileLayer> layer) {
    const std::lock_guard lock(overrides().mutex);
    overrides().layer.swap(layer);
}

void EncryptFileUtils::overrideKeyProvider(std::shared_ptr<KeyProvider> provider) {
    const std::lock_guard lock(overrides().mutex);
    overrides().provider.swap(provider);
}

} // namespace zel::storage
