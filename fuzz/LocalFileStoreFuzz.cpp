// Two files with arbitrary content; the first three bytes determine their layout. A store over them never overwrites
// the only readable file, and the next store reads what was written.
#include "FixedKey.h"
#include "Require.h"
#include "secure/SecureString.h"

#include <zel/EncryptFileUtils.h>

#include <FaultInjectingFileLayer.h>
#include <LocalFileConfigStore.h>
#include <TemporaryProfile.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

using fuzz::require;
using testing_host::readFile;
using testing_host::writeFile;
using zel::storage::EncryptFileUtils;
using zel::storage::ReadResult;
using zel::storage::FileCategoryType::UserData;
using ZelUnified::LocalFileConfigStore;

namespace fs = std::filesystem;

namespace {

enum Layout : unsigned { MainIsSealed = 1, BackupIsSealed = 2, MainIsAbsent = 4, BackupIsAbsent = 8, PlainFile = 16 };

constexpr const char* userStore = "LocalFileConfigStore";
constexpr std::size_t headLength = 3;

/// The user's two files, and the plain file of the installation.
class Files {
public:
    Files() { EncryptFileUtils::overrideKeyProvider(std::make_shared<fuzz::FixedKey>()); }

    /// Deletes all files. Uses a layer without syncs, which matter only to an emulated power failure.
    void clear() {
        EncryptFileUtils::overrideFileLayer(std::make_shared<testing_host::FaultInjectingFileLayer>());
        for (const auto& entry : fs::directory_iterator(profile.config())) {
            fs::remove(entry.path());
        }
    }

    fs::path main() const { return profile.config() / "lumoraLocalConfig.dat"; }
    fs::path backup() const { return profile.config() / "lumoraLocalConfig_backup.dat"; }
    fs::path folder() const { return profile.config(); }

private:
    testing_host::TemporaryProfile profile;
};

Files& files() {
    static Files made;
    return made;
}

void put(const fs::path& path, const std::string& bytes, bool isAbsent, bool isSealed) {
    if (isAbsent) {
        return;
    }
    if (!isSealed || !EncryptFileUtils::writeDataToFile(path.string(), zel::SecureString(bytes), UserData)) {
        writeFile(path, bytes);
    }
}

ReadResult stateOf(const fs::path& path) {
    zel::SecureString content;
    return EncryptFileUtils::readData(path.string(), content, UserData);
}

void requireSame(LocalFileConfigStore& store, LocalFileConfigStore& next) {
    require(store.getKeys().size() == next.getKeys().size());
    for (const auto& key : store.getKeys()) {
        std::wstring value;
        std::wstring nextValue;
        require(store.getValue(key, value) && next.getValue(key, nextValue) && value == nextValue);
    }
}

void checkUserFiles(unsigned layout, const std::string& mainBytes, const std::string& backupBytes) {
    put(files().main(), mainBytes, (layout & MainIsAbsent) != 0, (layout & MainIsSealed) != 0);
    put(files().backup(), backupBytes, (layout & BackupIsAbsent) != 0, (layout & BackupIsSealed) != 0);
    const ReadResult main = stateOf(files().main());
    const ReadResult backup = stateOf(files().backup());
    const std::string mainBefore = readFile(files().main());
    const std::string backupBefore = readFile(files().backup());

    const auto store = std::make_shared<LocalFileConfigStore>(userStore, 20, false);
    store->storeValue(L"fuzzed", L"kept");
    store->persistValues();

    require(readFile(files().backup()) == backupBefore);
    const bool backupIsBad = backup != ReadResult::Ok && backup != ReadResult::Absent;
    if (backupIsBad && (main == ReadResult::Ok || main == ReadResult::Absent)) {
        require(stateOf(files().main()) == main && readFile(files().main()) == mainBefore);
        return;
    }
    require(stateOf(files().main()) == ReadResult::Ok);
    const auto next = std::make_shared<LocalFileConfigStore>(userStore, 20, false);
    requireSame(*store, *next);
}

/// Checks that a plain file is unchanged or moved aside as a whole.
void checkPlainFile(const std::string& bytes) {
    const fs::path file = files().folder() / "lumora-config-defaults.xml";
    const fs::path aside = files().folder() / "lumora-config-defaults-backup.xml";
    writeFile(file, bytes);
    LocalFileConfigStore store(file.filename().string(), 900, files().folder().string(), file.filename().string(), true,
                               true, false);
    require(fs::exists(file) != fs::exists(aside));
    require(readFile(fs::exists(file) ? file : aside) == bytes);
    require(fs::exists(file) || store.getKeys().empty());
}

} // namespace

// libFuzzer prescribes the name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) { // NOLINT(readability-identifier-naming)
    if (size < headLength) {
        return 0;
    }
    files().clear();
    const std::string bytes(reinterpret_cast<const char*>(data) + headLength, size - headLength);
    if ((data[0] & PlainFile) != 0) {
        checkPlainFile(bytes);
        return 0;
    }
    const std::size_t cut = (std::size_t{data[1]} + 256 * std::size_t{data[2]}) % (bytes.size() + 1);
    checkUserFiles(data[0], bytes.substr(0, cut), bytes.substr(cut));
    return 0;
}
