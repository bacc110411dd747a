#include "ManyWriters.h"

#include "Report.h"
#include "featuresets/adapters/config/ConfigAdapter.h"
#include "featuresets/adapters/config/chain/CachedConfigFiles.h"
#include "featuresets/adapters/config/chain/FakeConfigStore.h"
#include "services/impl/entry/InjectConfigService.h"

#include <kyr/FileUtils.h>
#include <kyr/FunctionTask.h>
#include <kyr/StringUtils.h>
#include <unified/UnifiedFactoryImpl.h>

#include <CacheConfigStore.h>
#include <ConfigFeatureSet.h>
#include <ConfigServiceIds.h>
#include <CountedTimers.h>
#include <LocalFileConfigStore.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>

namespace crash_test {

namespace {

using namespace ZelUnified;

constexpr const wchar_t* userKey = L"number";
constexpr const wchar_t* provisioningKey = L"ServicesDomain";
constexpr const char* userStore = "LocalFileConfigStore";
constexpr const char* provisioningStore = "UrlProvisioningConfigStore";

struct Document {
    WrittenFile file;
    const char* store;
    const wchar_t* key;
};
constexpr Document firstDocument{WrittenFile::FirstCopy, "FirstStore", L"first"};
constexpr Document secondDocument{WrittenFile::SecondCopy, "SecondStore", L"second"};

/// Returns a number with a filler whose length depends on the number. It is one value, since two values may be written
/// separately. A provisioning link has little space.
std::wstring textOf(std::uint32_t number) {
    return KyrCoreUtils::toWideString(number) + L":" +
           std::wstring(number * 397 % 800, static_cast<wchar_t>(L'a' + number % 26));
}

/// Returns the number, or 0 unless the text is complete.
std::uint32_t numberOf(const std::wstring& text) {
    const auto number = static_cast<std::uint32_t>(KyrCoreUtils::toInt(text.substr(0, text.find(L':')), 0));
    return text == textOf(number) ? number : 0;
}

std::uint32_t numberIn(ConfigStore& store, const wchar_t* key) {
    std::wstring text;
    return store.getValue(key, text) ? numberOf(text) : 0;
}

std::uint32_t numberInUserFile(const char* file) {
    LocalFileConfigStore reader("Reader", 0, KyrCoreUtils::FileUtils::getConfigDirectory(), file, true, true, true);
    return numberIn(reader, userKey);
}

std::uint32_t numberInCopy(const char* store, const wchar_t* key) {
    CacheConfigStore reader(store, 0, CachedConfigFiles::getPathOfCopy(store));
    return numberIn(reader, key);
}

class ManyWriters {
public:
    explicit ManyWriters(int end) : pipeEnd(end) {
        timers.setWait(testing_host::CountedTimers::Wait::None);
        factory->Init();
        factory->getServicesDispatcher()->enqueueBlock(
            std::make_shared<KyrCoreUtils::FunctionTask>([this] { InjectConfigService(factory); }, "load"), false);
        adapter = std::dynamic_pointer_cast<ConfigAdapter>(factory->getFeatureSetByType<ConfigFeatureSet>());
        factory->StartFeatureSet(configServiceId, nullptr);
        begin(WrittenFile::Main, numberOf(adapter->getValueFromConfigStore(userStore, userKey)));
        begin(WrittenFile::Backup, numberInUserFile("lumoraLocalConfig_backup.dat"));
        for (const auto& document : {firstDocument, secondDocument}) {
            begin(document.file, numberOf(adapter->getValueFromConfigStore(document.store, document.key)));
        }
        begin(WrittenFile::Provisioning,
              numberOf(adapter->getValueFromConfigStore(provisioningStore, provisioningKey)));
    }

    [[noreturn]] void run() {
        std::thread([this] { download(firstDocument); }).detach();
        std::thread([this] { download(secondDocument); }).detach();
        std::thread([this] { provision(); }).detach();
        changeSettings();
    }

private:
    [[noreturn]] void changeSettings() {
        for (std::uint32_t number = startOf(WrittenFile::Main) + 1;; ++number) {
            adapter->setConfig(userKey, textOf(number));
            factory->flushBackgroundDispatcher();
            report(WrittenFile::Main, number, numberInUserFile("lumoraLocalConfig.dat"));
            timers.settle();
            factory->flushBackgroundDispatcher();
            report(WrittenFile::Backup, number, numberInUserFile("lumoraLocalConfig_backup.dat"));
        }
    }

    [[noreturn]] void download(const Document& document) {
        for (std::uint32_t number = startOf(document.file) + 1;; ++number) {
            const auto store = makeReadOnlyStore(document.store, 40, {{document.key, textOf(number)}});
            store->caching = true;
            store->local = false;
            adapter->addConfigStore(store);
            // The user's file records which copies exist.
            factory->flushBackgroundDispatcher();
            report(document.file, number, numberInCopy(document.store, document.key));
        }
    }

    [[noreturn]] void provision() {
        for (std::uint32_t number = startOf(WrittenFile::Provisioning) + 1;; ++number) {
            adapter->resetAllowUriProvisioningData();
            adapter->setUrlProvisioningData(L"lumora://provision?" + std::wstring(provisioningKey) + L"=" +
                                            textOf(number));
            report(WrittenFile::Provisioning, number, numberInCopy(provisioningStore, provisioningKey));
        }
    }

    void begin(WrittenFile file, std::uint32_t number) {
        startNumbers.at(static_cast<std::size_t>(file)) = number;
        tell({Report::Kind::LoadedFile, number, static_cast<std::uint32_t>(file)});
    }

    std::uint32_t startOf(WrittenFile file) const { return startNumbers.at(static_cast<std::size_t>(file)); }

    void report(WrittenFile file, std::uint32_t written, std::uint32_t found) const {
        tell({found == written ? Report::Kind::File : Report::Kind::Lost, found, static_cast<std::uint32_t>(file)});
    }

    void tell(const Report& told) const {
        if (::write(pipeEnd, &told, sizeof(told)) != static_cast<ssize_t>(sizeof(told))) {
            _exit(EXIT_FAILURE);
        }
    }

    const int pipeEnd;
    testing_host::CountedTimers timers;
    const std::shared_ptr<UnifiedFactoryImpl> factory = std::make_shared<UnifiedFactoryImpl>();
    std::shared_ptr<ConfigAdapter> adapter;
    std::array<std::uint32_t, writtenFiles> startNumbers{};
};

} // namespace

void writeWithManyThreads(int pipeEnd) {
    ManyWriters(pipeEnd).run();
}

} // namespace crash_test
