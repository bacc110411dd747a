#include "ConfigAdapterFixture.h"
#include "featuresets/adapters/config/xml/XmlConfigParser.h"
#include "secure/SecureString.h"
#include "services/impl/ConfigServiceImpl.h"

#include <zel/EncryptFileUtils.h>
#include <zel/LogSink.h>

#include <BootstrapConfigStore.h>
#include <ConfigStoreAddedObserver.h>
#include <InMemoryConfigStore.h>
#include <LocalFileConfigStore.h>
#include <ManualClock.h>

#include <string_view>
#include <utility>

namespace ZelUnified {

namespace {

/// A line that the service logs, with the operation it names.
struct LogLine {
    std::string_view logger;
    ZelLogLevel level;
    std::string_view operation; ///< Without "ZelUnified::".
    std::string_view beginning;

    bool matches(const zel::logging::LogRecord& record) const {
        return record.logger == logger && record.level == level && record.text.starts_with(beginning) &&
               record.function == std::string("ZelUnified::").append(operation);
    }
};

constexpr auto error = ZelLogLevel::Error;
constexpr auto warning = ZelLogLevel::Warning;
constexpr auto info = ZelLogLevel::Info;
constexpr auto debug = ZelLogLevel::Debug;

constexpr std::string_view adapterLog = "ConfigService-ConfigAdapter";
constexpr std::string_view managerLog = "ConfigService-ConfigStoreManager";
constexpr std::string_view fileLog = "ConfigService-LocalFileConfigStore";
constexpr std::string_view parserLog = "ConfigService-XmlConfigParser";
constexpr std::string_view registryLog = "ConfigService-RegistryConfigStore";
constexpr std::string_view serviceLog = "ConfigService-ConfigServiceImpl";
constexpr std::string_view timerLog = "ConfigFileCacheTimer";

/// Every line of the service that a test can cause without a failure of the library.
constexpr LogLine expectedLines[] = {
    {adapterLog, info, "ConfigAdapter::ConfigAdapter", "Creating a new instance of the ConfigAdapter."},
    {adapterLog, debug, "ConfigAdapter::addInitialConfigStores", "adding initial config stores"},
    {adapterLog, debug, "ConfigAdapter::InitialiseCachedConfigStores", "adding cached config stores"},
    {adapterLog, error, "ConfigAdapter::InitialiseCachedConfigStores", "configStoreManager is null"},
    {adapterLog, info, "ConfigAdapter::InitialiseCachedConfigStores",
     "Url Provisioning not allowed by MDM configuration, removing cached URL provisioning store"},
    {adapterLog, warning, "ConfigAdapter::addCachedConfigStore",
     "Name contains \"..\", cached store not read: [/../Away]"},
    {adapterLog, warning, "ConfigAdapter::cacheStoreOnConfigStoreAdded",
     "Name contains \"..\", store not cached: [/../Away]"},
    {adapterLog, info, "ConfigAdapter::startConfigFeatureSet", "starting config feature set"},
    {adapterLog, info, "ConfigAdapter::stopConfigFeatureSet", "stopping config feature set"},
    {adapterLog, error, "ConfigAdapter::addConfigStore",
     "Config FeatureSet Not Started, failed to add ConfigStore with name: [S]"},
    {adapterLog, error, "ConfigAdapter::removeConfigStore",
     "Config FeatureSet Not Started, failed to remove ConfigStore with name: [S]"},
    {adapterLog, error, "ConfigAdapter::isConfigStorePresent",
     "Config FeatureSet Not Started, failed to check existance of ConfigStore with name: [S]"},
    {adapterLog, error, "ConfigAdapter::removeAllCachedConfigStores",
     "Config FeatureSet Not Started, failed to remove cached ConfigStores"},
    {adapterLog, error, "ConfigAdapter::getConfigStoreByName", "Config FeatureSet Not Started"},
    {adapterLog, error, "ConfigAdapter::getConfig", "Config FeatureSet Not Started"},
    {adapterLog, error, "ConfigAdapter::setInMemoryConfig", "Config FeatureSet Not Started"},
    {adapterLog, error, "ConfigAdapter::getValueFromConfigStore", "Config FeatureSet Not Started"},
    {adapterLog, error, "ConfigAdapter::getAllConfigForPRT", "Config FeatureSet Not Started"},
    {adapterLog, info, "ConfigAdapter::SetTelephonyEnabled", "Setting telephonyEnabled flag: 0"},
    {adapterLog, info, "ConfigAdapter::SetVoicemailEnabled", "Setting voicemailEnabled flag:0"},
    {adapterLog, info, "ConfigAdapter::SetMeetingsEnabled", "Setting Meetings_Enabled flag: 0"},
    {adapterLog, info, "ConfigAdapter::SetTelephonyEnabled",
     "Telephony_Enabled explicitly set to 'x' in the 'GarnStore' config store"},
    {adapterLog, info, "ConfigAdapter::SetVoicemailEnabled",
     "Voicemail_Enabled explicitly set to 'x' in the 'GarnStore' config store"},
    {adapterLog, info, "ConfigAdapter::SetMeetingsEnabled",
     "Meetings_Enabled explicitly set to 'x' in the 'GarnStore' config store"},
    {adapterLog, info, "ConfigAdapter::onPowerEvent",
     "Config adapter received a power down event. Calling destroy on configAdapter"},
    {adapterLog, info, "ConfigAdapter::InvokeResetData", "About to reset the ConfigAdapter..."},
    {adapterLog, info, "ConfigAdapter::InvokeResetData", "ConfigAdapter reset."},
    {adapterLog, info, "ConfigAdapter::removeFilesFromDirectory",
     "file will be excluded from reset deletion: [installationId.txt]"},
    {adapterLog, info, "ConfigAdapter::removeFilesFromDirectory", "File: ["},
    {adapterLog, error, "ConfigAdapter::removeFilesFromDirectory", "Unable to delete file: ["},
    {adapterLog, warning, "ConfigAdapter::addServiceEvent", "No system service, service event dropped"},

    {managerLog, info, "ConfigStoreManager::ConfigStoreManager", "Creating a new instance of the ConfigStoreManager."},
    {managerLog, info, "ConfigStoreManager::addStore", "adding new store: "},
    {managerLog, info, "ConfigStoreManager::addStore", "updating existing store: "},
    {managerLog, info, "ConfigStoreManager::removeStoreWithSameName", "Removing store: "},
    {managerLog, info, "ConfigStoreManager::registerConfigStoreAddedObserver", "ConfigStoreAddedObserver registered"},
    {managerLog, info, "ConfigStoreManager::unregisterConfigStoreAddedObserver",
     "ConfigStoreAddedObserver unregistered"},
    {managerLog, warning, "ConfigStoreManager::unregisterConfigStoreAddedObserver",
     "Attempt to unregister null ConfigStoreAddedObserver"},
    {managerLog, warning, "ConfigStoreManager::unregisterConfigStoreAddedObserver",
     "Attempt to unregister unknown ConfigStoreAddedObserver"},
    {managerLog, debug, "ConfigStoreManager::getValue", "key : ["},
    {managerLog, warning, "ConfigStoreManager::storeValue", "Unable to store the value with key: r"},
    {managerLog, info, "ConfigStoreManager::setUrlProvisioningData", "setting url provisioning data"},
    {managerLog, info, "ConfigStoreManager::resetConfigData", "Removing store "},
    {managerLog, info, "ConfigStoreManager::resetConfigData", "Removing all keys for store: "},
    {managerLog, info, "ConfigStoreManager::removeFile", "Removed file: "},
    {managerLog, error, "ConfigStoreManager::removeFile", "Failed to remove file: "},
    {managerLog, warning, "ConfigStoreManager::removeCachedFiles",
     "Name contains \"..\", cached file not removed: [cached/../Away.dat]"},
    {managerLog, error, "ConfigStoreManager::getConfigForPRTFromFile", "Failed to read config file "},
    {managerLog, warning, "ConfigStoreManager::getConfigForPRT",
     "Characters that XML can't carry are replaced in the report of key: bad"},

    {fileLog, error, "LocalFileConfigStore::readFromEncryptedFile", "Failed to read config file "},
    {fileLog, error, "LocalFileConfigStore::readFromEncryptedFile",
     "Error Invalid XML syntax detected - Unable to read localFileConfigStore configuration"},
    {fileLog, warning, "LocalFileConfigStore::readFromFile", "Read config FAILED, config file doesn't exist: "},
    {fileLog, error, "LocalFileConfigStore::readFromFile",
     "Error Invalid XML syntax detected - Unable to read localFileConfigStore configuration\n"
     "renaming invalid file to: bad-backup.xml and creating new blank XML document"},
    {fileLog, error, "LocalFileConfigStore::readFromFile", "contents of invalid xml with string length: 6\nno xml"},
    {fileLog, error, "LocalFileConfigStore::readFromFile", "error creating backup file: "},
    {fileLog, error, "LocalFileConfigStore::processUserConfigXml", "Error entities expand too far - entry ignored"},
    {fileLog, warning, "LocalFileConfigStore::getDataString",
     "Characters that XML can't carry are replaced in the entry of key: bad"},
    {fileLog, debug, "LocalFileConfigStore::persistValues", "Same content has been saved."},
    {fileLog, error, "LocalFileConfigStore::persistValuesImpl",
     "Failed to read lumoraLocalConfig/backup file, so don't write to lumoraLocalConfig.dat to keep file good."},
    {fileLog, error, "LocalFileConfigStore::persistValuesImpl",
     "Both files are broken, write to lumoraLocalConfig.dat"},
    {fileLog, debug, "LocalFileConfigStore::LocalFileConfigFileCacheTimerCallBackImpl::onTimerFired",
     "About to cache file: lumoraLocalConfig_backup.dat"},

    {parserLog, warning, "XmlConfigParser::readFromFile", "XML in file did not exist or is an invalid XML document: "},
    {parserLog, warning, "XmlConfigParser::readFromEncryptedFile", "Failed to read XML document: "},
    {parserLog, warning, "XmlConfigParser::readFromEncryptedFile",
     "XML in file did not exist or is an invalid XML document: "},
    {parserLog, error, "XmlConfigParser::parseXmlConfig",
     "\n************\nError Invalid XML syntax detected - Unable to read xml configuration.\n************"},
    {parserLog, info, "XmlConfigParser::writeToFile", "data written to file: "},
    {parserLog, warning, "XmlConfigParser::writeToFile",
     "Characters that XML can't carry are replaced in the value of key: bad"},
    {parserLog, warning, "XmlConfigParser::writeToMemory",
     "Characters that XML can't carry are replaced in the value of key: bad"},

    {registryLog, info, "RegistryConfigStore::logConfigMap", "\np: v"},
    {registryLog, info, "RegistryConfigStore::regDelnodeRecurse", "Successfully deleted the key: "},
    {registryLog, warning, "RegistryConfigStore::regDelnodeRecurse", "Key not found: "},
    {registryLog, warning, "RegistryConfigStore::regDelnodeRecurse", "Error opening key: "},

    {serviceLog, info, "ConfigServiceImpl::findConfig", "findConfig key : [TftpServer1] is an alias for key : ["},
    {serviceLog, debug, "ConfigServiceImpl::configDownloadFailed", "ConfigServiceImpl::configDownloadFailed()"},
    {serviceLog, info, "ConfigServiceImpl::logConfig", "\n*********************** Master Configuration Settings "},
    {serviceLog, error, "CalendarIntegrationTypeCheck::GetDefaultMailClientFromRegedit",
     "GetDefaultMailClientFromRegedit - RegOpenKeyEx returned error:2"},
    {serviceLog, error, "CalendarIntegrationTypeCheck::GetDefaultMailClientFromRegedit",
     "GetDefaultMailClientFromRegedit - RegQueryValueExA returned error:2"},

    {"ConfigService-InMemoryConfigStore", debug, "InMemoryConfigStore::persistValues",
     "PersistValues() is not implemented for InMemoryConfigStore ignoring"},
    {"ConfigService-BootstrapConfigStore", warning, "BootstrapConfigStore::BootstrapConfigStore",
     "File does not exist absent"},

    {timerLog, debug, "ConfigFileCacheTimer::Impl::scheduleTimer",
     "Attempting to schedule timer for file: lumoraLocalConfig_backup.dat, lasting: 30000ms"},
    {timerLog, debug, "ConfigFileCacheTimer::Impl::scheduleTimer", "Timer already exists, do nothing"},
    {timerLog, debug, "ConfigFileCacheTimer::Impl::scheduleTimer", "Timer added. Timers count: 1"},
    {timerLog, debug, "ConfigFileCacheTimer::TimerImpl::onTimer",
     "Firing callback for file: lumoraLocalConfig_backup.dat"},
    {timerLog, debug, "ConfigFileCacheTimer::Impl::removeTimerImpl", "Removing timer. Timers count: 1"},
    {timerLog, debug, "ConfigFileCacheTimer::Impl::removeTimerImpl", "Timer removed. Timers count: 0"},
    {timerLog, debug, "ConfigFileCacheTimer::Impl::clearTimers", "Removing all timers, which should stop them all"},
    {timerLog, debug, "ConfigFileCacheTimer::TimerImpl::~TimerImpl", "TimerImpl::~TimerImpl()"},
    {timerLog, debug, "ConfigFileCacheTimer::Impl::~Impl", "ConfigFileCacheTimer Destructor"},
};

/// Returns true for two equal lines. Lookups and tasks that write do not count: equal ones may follow each other.
bool areEqual(const zel::logging::LogRecord& one, const zel::logging::LogRecord& other) {
    return one.logger == other.logger && one.line == other.line && one.function == other.function &&
           one.text == other.text && !one.function.ends_with("::getValue") &&
           !one.function.ends_with("::persistValues");
}

bool isOfService(const zel::logging::LogRecord& record) {
    return record.logger.starts_with("ConfigService-") || record.logger == timerLog;
}

/// Deletes a file as soon as another one is reported as deleted.
class Deleter final : public zel::logging::LogSink {
public:
    Deleter(const std::filesystem::path& reported, std::filesystem::path deleted)
        : text("File: [" + reported.string() + "] deleted"), path(std::move(deleted)) {}
    void write(const zel::logging::LogRecord& record) override {
        if (record.text == text) {
            std::filesystem::remove(path);
        }
    }

private:
    const std::string text;
    const std::filesystem::path path;
};

const std::wstring badValue = L"x\x01";

} // namespace

/// Causes every line that the service logs.
class LogLines : public ConfigAdapterFixture {
protected:
    std::string file(const std::string& name) const { return (profile.config() / name).string(); }
    void runTasks() { factory->backgroundDispatcher->runAll(); }
    void damage(const std::string& name) { testing_host::writeFile(file(name), "damaged"); }

    void callBeforeTheStart() {
        load();
        adapter->addConfigStore(makeReadOnlyStore("S", 1));
        adapter->removeConfigStore("S");
        adapter->isConfigStorePresent("S");
        adapter->removeAllCachedConfigStores();
        adapter->getConfigStoreByName("S");
        valueOf(L"k");
        adapter->setInMemoryConfig(L"k", L"v");
        adapter->getValueFromConfigStore("S", L"k");
        std::wstring report;
        adapter->getAllConfigForPRT(report);
        CachedStores(*adapter, nullptr).InitialiseCachedConfigStores();
    }

    void addAndRemoveStores() {
        const auto refusing = makeWritableStore("Refusing", 900, {{L"bad", badValue}});
        refusing->refusesWrites = true;
        for (const auto& store :
             {makeReadOnlyStore("TftpStore", 40), makeReadOnlyStore("TftpStore", 40),
              makeReadOnlyStore(
                  "GarnStore", 41,
                  {{L"Telephony_Enabled", L"x"}, {L"Voicemail_Enabled", L"x"}, {L"Meetings_Enabled", L"x"}}),
              makeCachingStore("/../Away", 42), makeCachingStore("Kept", 43, {{L"bad", badValue}}), refusing}) {
            adapter->addConfigStore(store);
        }
        adapter->removeConfigStore("/../Away");
        adapter->removeConfigStore("Kept");
        std::filesystem::create_directories(cacheFile("Stuck"));
        ConfigStoreManager(factory).removeCachedFiles("cachedStuck.dat");
        adapter->setConfig({{L"refused", L"v"}});
        std::wstring report;
        adapter->getAllConfigForPRT(report);
    }

    void callObserversAndRecords() {
        struct Observer final : ConfigStoreAddedObserver {
            void OnConfigStoreAdded(const std::string&) override {}
        };
        const auto observer = std::make_shared<Observer>();
        adapter->registerConfigStoreAddedObserver(observer);
        adapter->unregisterConfigStoreAddedObserver(observer);
        adapter->unregisterConfigStoreAddedObserver(observer);
        adapter->unregisterConfigStoreAddedObserver(nullptr);
        adapter->addServiceEvent(1, ConfigServiceIdsEnum::TFTPDownloadFailed, ServiceEventSeverityEnum::Warning);
        service->getConfig(L"TFTPPrimaryServer");
        service->getConfig(L"TftpServer1");
        service->logConfig();
        std::dynamic_pointer_cast<ConfigServiceImpl>(service)->configDownloadFailed();
        // The key of the current user has no default value, that of the machine is absent.
        registry->setText(zel::registry::HKEY_CURRENT_USER, L"SOFTWARE\\Clients\\Mail", L"other", L"x");
        service->getConfig(L"calendarintegrationtype");
    }

    void persistAndRefresh() {
        adapter->setUrlProvisioningData(L"?ServicesDomain=example.com");
        adapter->setConfig(L"bad", badValue);
        adapter->setConfig(L"PrimaryConfigStores", L"/../Away:1;");
        runTasks();
        clock.advance(30);
        runTasks();
        adapter->setMdmConfig("<a><b><AllowUrlProvisioning>false</AllowUrlProvisioning></b></a>");
        adapter->refreshConfigFeatureSet();
        damage("lumoraLocalConfig_backup.dat");
        adapter->setConfig(L"k", L"1");
        runTasks();
        damage("lumoraLocalConfig.dat");
        adapter->setConfig(L"k", L"2");
        runTasks();
    }

    void reset() {
        testing_host::writeFile(file("installationId.txt"), "x");
        testing_host::writeFile(file("a.log"), "x");
        testing_host::writeFile(file("b.log"), "x");
        const auto deleter = std::make_shared<Deleter>(file("a.log"), file("b.log"));
        zel::logging::addSink(deleter);
        adapter->InvokeResetData(ResetDataOptionEnum::ResetAll);
        zel::logging::removeSink(deleter);
        adapter->InvokeResetData(ResetDataOptionEnum::ResetAll);
        registry->failDeleting(policyPath, zel::registry::RegistryResult::AccessDenied);
        registry->failOpening(policyPath, zel::registry::RegistryResult::AccessDenied);
        adapter->InvokeResetData(ResetDataOptionEnum::ResetAll);
    }

    void readBadFiles() {
        const auto directory = profile.resources();
        const auto readPlain = [&](const std::string& name) {
            LocalFileConfigStore("plain", 1, directory.string(), name, true, true, false);
        };
        readPlain("absent.xml");
        testing_host::writeFile(directory / "bad.xml", "no xml");
        testing_host::writeFile(directory / "bad-backup.xml" / "inside", "x");
        readPlain("bad.xml");
        std::string references;
        for (int count = 0; count < 400'000; ++count) {
            references += "&a;";
        }
        testing_host::writeFile(directory / "long.xml",
                                "<!DOCTYPE r [<!ENTITY a 'xx'>]><r><userConfig name='" + references + "'/></r>");
        readPlain("long.xml");
        ASSERT_TRUE(zel::storage::EncryptFileUtils::writeDataToFile(
            file("lumoraLocalConfig.dat"), zel::SecureString("no xml"), zel::storage::FileCategoryType::UserData));
        LocalFileConfigStore("LocalFileConfigStore", 20, false);
        ConfigMap values{{L"bad", badValue}};
        ConfigKeySet sensitive;
        std::string xml;
        XmlConfigParser::writeToMemory(xml, values);
        XmlConfigParser::readFromMemory("no xml", values, sensitive);
        XmlConfigParser::readFromFile((directory / "bad.xml").string(), values, sensitive);
        XmlConfigParser::readFromEncryptedFile(file("lumoraLocalConfig.dat"), values, sensitive);
        const BootstrapConfigStore absent("Bootstrap", "absent", 1);
        InMemoryConfigStore("Memory", 1).persistValues();
    }

    testing_host::ManualClock clock;
    testing_host::LogRecorder debugLog{testing_host::LogRecorder::Debug::On};
};

TEST_F(LogLines, NameAnOperationOfTheLoggersClassAndAreNotRepeated) {
    givenDefaults({{L"Telephony_Enabled", L""}, {L"Voicemail_Enabled", L""}, {L"Meetings_Enabled", L""}});
    givenPolicy(L"p", L"v");
    callBeforeTheStart();
    start();
    addAndRemoveStores();
    callObserversAndRecords();
    persistAndRefresh();
    adapter->StopFeatureSet(configServiceId, nullptr);
    adapter->onPowerEvent(ZelSystemMonitor::PowerEventTypeEnum::PowerDown);
    start();
    adapter->addConfigStore(makeReadOnlyStore("GarnStore", 41));
    reset();
    unload();
    readBadFiles();

    const auto records = debugLog.getRecords();
    for (const auto& record : records) {
        const bool isExpected =
            std::ranges::any_of(expectedLines, [&record](const LogLine& line) { return line.matches(record); });
        EXPECT_TRUE(isExpected || !isOfService(record))
            << record.logger << " " << static_cast<int>(record.level) << " " << record.function << ": " << record.text;
    }
    for (const auto& line : expectedLines) {
        EXPECT_TRUE(std::ranges::any_of(records, [&line](const auto& record) { return line.matches(record); }))
            << "not logged: " << line.logger << " " << line.operation << ": " << line.beginning;
    }
    for (std::size_t i = 1; i < records.size(); ++i) {
        EXPECT_FALSE(areEqual(records[i - 1], records[i]))
            << "logged twice: " << records[i].function << ": " << records[i].text;
    }
}

} // namespace ZelUnified
