#include "NumberWriter.h"

#include "Report.h"
#include "services/impl/ConfigFileCacheTimer.h"
#include "services/impl/ConfigFileCacheTimerCallBack.h"

#include <kyr/FileUtils.h>
#include <kyr/StringUtils.h>
#include <zel/EncryptFileUtils.h>

#include <FaultInjectingFileLayer.h>
#include <LocalFileConfigStore.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <utility>

namespace crash_test {

namespace {

using ZelUnified::LocalFileConfigStore;

constexpr const char* userStore = "LocalFileConfigStore";
constexpr const char* mainFile = "lumoraLocalConfig.dat";
constexpr const char* backupFile = "lumoraLocalConfig_backup.dat";

/// Holds a requested backup until the test writes it.
class HeldBackup final : public ZelUnified::ConfigFileCacheTimer {
public:
    HeldBackup() : ConfigFileCacheTimer(nullptr) {}
    void scheduleTimer(std::shared_ptr<ZelUnified::ConfigFileCacheTimerCallBack> callback, int) override {
        waiting = std::move(callback);
    }
    void write() { waiting->onTimerFired(); }

private:
    std::shared_ptr<ZelUnified::ConfigFileCacheTimerCallBack> waiting;
};

/// Returns a filler whose length depends on the number, so that files grow and shrink.
std::wstring fillerOf(std::uint32_t number) {
    return std::wstring(number * 397 % 6000, static_cast<wchar_t>(L'a' + number % 26));
}

void putNumber(LocalFileConfigStore& store, std::uint32_t number) {
    store.storeValue(L"number", KyrCoreUtils::toWideString(number));
    store.storeValue(L"filler", fillerOf(number));
}

/// Returns the number, or 0 unless the table is complete.
std::uint32_t numberOf(LocalFileConfigStore& store) {
    std::wstring number;
    std::wstring filler;
    if (!store.getValue(L"number", number) || !store.getValue(L"filler", filler)) {
        return 0;
    }
    const auto found = static_cast<std::uint32_t>(KyrCoreUtils::toInt(number, 0));
    return filler == fillerOf(found) ? found : 0;
}

/// Returns the number in one file, ignoring the other file.
std::uint32_t numberIn(const char* file) {
    LocalFileConfigStore reader("Reader", 0, KyrCoreUtils::FileUtils::getConfigDirectory(), file, true, true, true);
    return numberOf(reader);
}

class NumberWriter {
public:
    NumberWriter(int end, Disk kind, std::uint32_t seed) : pipeEnd(end), random(seed), disk(kind) {
        useDisk();
        store->setTimer(backup);
        number = numberOf(*store);
        report(Report::Kind::Loaded, number);
    }

    [[noreturn]] void run() {
        // While the backup is unreadable the main file is not written, until the backup is written again.
        bool backupIsGood = number == 0 || numberIn(backupFile) != 0;
        for (;;) {
            putNumber(*store, ++number);
            bool fits = chooseSpace();
            store->persistValues();
            reportFile(Report::Kind::Main, mainFile, fits && backupIsGood);
            if (random() % 2 == 0) {
                fits = chooseSpace();
                backup->write();
                reportFile(Report::Kind::Backup, backupFile, fits);
                backupIsGood = backupIsGood || fits;
            }
        }
    }

private:
    /// Also drops content that waits to be written: only the content of the disk survives a crash.
    void useDisk() const { zel::storage::EncryptFileUtils::overrideFileLayer(disk == Disk::Fills ? layer : nullptr); }

    /// Returns whether the next file will fit.
    bool chooseSpace() {
        if (disk == Disk::Healthy) {
            return true;
        }
        layer->heal();
        const bool fits = random() % 2 == 0;
        if (!fits) {
            layer->setFreeSpace(random() % 100);
        }
        return fits;
    }

    void reportFile(Report::Kind kind, const char* file, bool mustHold) {
        useDisk();
        const std::uint32_t held = numberIn(file);
        report(mustHold && held != number ? Report::Kind::Lost : kind, held);
    }

    void report(Report::Kind kind, std::uint32_t held) const {
        const Report told{kind, held, 0};
        if (::write(pipeEnd, &told, sizeof(told)) != static_cast<ssize_t>(sizeof(told))) {
            _exit(EXIT_FAILURE);
        }
    }

    int pipeEnd;
    std::mt19937 random;
    Disk disk;
    std::shared_ptr<testing_host::FaultInjectingFileLayer> layer =
        std::make_shared<testing_host::FaultInjectingFileLayer>();
    std::shared_ptr<HeldBackup> backup = std::make_shared<HeldBackup>();
    std::shared_ptr<LocalFileConfigStore> store = std::make_shared<LocalFileConfigStore>(userStore, 20, false);
    std::uint32_t number = 0;
};

} // namespace

void writeNumbers(int pipeEnd, Disk disk, std::uint32_t seed) {
    NumberWriter(pipeEnd, disk, seed).run();
}

} // namespace crash_test
