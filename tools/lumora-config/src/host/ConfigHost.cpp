#include "ConfigHost.h"

#include "FleetServicePlugin.h"
#include "HostFolders.h"
#include "InspectionPlugin.h"
#include "output/Failure.h"

#include <kyr/FileUtils.h>
#include <kyr/FunctionTask.h>
#include <unified/TypeName.h>
#include <zel/LogLineCatcher.h>
#include <zel/LogSink.h>
#include <zel/SystemMonitorFactory.h>

#include <ConfigCatalogue.h>
#include <ConfigServiceIds.h>
#include <SensitivePolicies.h>

#include <exception>
#include <utility>

namespace lumora_config {

using KyrCoreUtils::FileUtils;
using zel::logging::LogLineCatcher;
using ZelSystemMonitor::SystemMonitorFactory;
using ZelUnified::UnifiedFactoryImpl;

namespace {

constexpr auto loaderLogger = "UnifiedFactory-PluginLoader";

/// Sets the directories before anything reads them. Returns the configuration directory.
std::string settleDirectories(const KyrCoreUtils::HostDirectories& directories, DefaultsUse defaults) {
    FileUtils::overrideDirectories(directories);
    auto configDirectory = FileUtils::getConfigDirectory();
    if (configDirectory.empty()) {
        throw Failure(ExitCode::Environment, "no usable configuration directory: a reset empties it, so it must be a "
                                             "folder of its own");
    }
    if (defaults == DefaultsUse::Required) {
        requireDefaultsFile(FileUtils::getResourcesDirectory());
    }
    return configDirectory;
}

void startLog() {
    zel::logging::logToFile(FileUtils::getStateDirectory() + FileUtils::FileSeparator() + "lumora-config.log");
}

std::shared_ptr<UnifiedFactoryImpl> makeFactory(const std::string& pluginDirectory, ProfileUse use,
                                                const std::vector<PluginSpec>& foreign) {
    ZelUnified::UnifiedFactoryOptions options;
    options.openedForWriting = use == ProfileUse::Change;
    options.changesInMemory = use == ProfileUse::Read;
    options.pluginFolder = pluginDirectory;
    options.plugins = {{ZelUnified::readableTypeName<ZelUnified::ConfigService>(), LUMORA_PLUGIN_LIBRARY},
                       {ZelUnified::readableTypeName<ZelUnified::ConfigFeatureSet>(), LUMORA_PLUGIN_LIBRARY}};
    options.plugins.merge(InspectionPlugin::describe());
    options.plugins.merge(FleetServicePlugin::describe(pluginDirectory));
    for (const auto& plugin : foreign) {
        if (options.plugins.contains(plugin.interfaceName)) {
            throw Failure(ExitCode::Usage, "--plugin " + plugin.interfaceName + ": the program loads its own plug-in");
        }
        options.libraries.insert_or_assign(plugin.interfaceName, plugin.library);
    }
    return std::make_shared<UnifiedFactoryImpl>(std::move(options));
}

/// Returns "" if the service has read the defaults file.
std::string findDefaultsProblem() {
    const auto folder = FileUtils::getResourcesDirectory();
    try {
        requireDefaultsInXml(folder);
        requireDefaultsAccepted(folder, ProfileUse::Read);
    } catch (const Failure& failure) {
        return failure.what();
    }
    return {};
}

} // namespace

ConfigHost::ConfigHost(const KyrCoreUtils::HostDirectories& directories, const std::string& plugins, bool verbose,
                       ProfileUse profileUse, DefaultsUse defaults, std::vector<PluginSpec> foreignPlugins)
    : configDirectory(settleDirectories(directories, defaults)),
      pluginDirectory(findPluginFolder(plugins)),
      foreign(std::move(foreignPlugins)),
      use(profileUse),
      factory(makeFactory(pluginDirectory, use, foreign)) {
    zel::logging::setDebugEnabled(verbose);
    if (use == ProfileUse::Change) {
        lockProfile();
        startLog();
    }
    SystemMonitorFactory::overrideInstance(powerSwitch);
    zel::common::TimerSource::overrideInstance(timerSwitch);
    factory->Init();
    try {
        load();
        if (defaults == DefaultsUse::Required) {
            requireDefaultsAccepted(FileUtils::getResourcesDirectory(), use);
        } else {
            defaultsProblem = findDefaultsProblem();
        }
    } catch (...) {
        end();
        throw;
    }
}

ConfigHost::~ConfigHost() {
    end();
}

void ConfigHost::loadForeignPlugins() const {
    const LogLineCatcher loaderLog(loaderLogger);
    for (const auto& plugin : foreign) {
        bool loaded = false;
        onServices("lumora-config: load " + plugin.interfaceName,
                   [&] { loaded = factory->loadPlugin(plugin.interfaceName); });
        if (!loaded) {
            throw Failure(ExitCode::Environment, "--plugin " + plugin.interfaceName + ": " + loaderLog.getText());
        }
    }
}

void ConfigHost::start() {
    factory->StartFeatureSet(ZelUnified::configServiceId, nullptr);
}

std::string ConfigHost::startInspection(bool changesAllowed) {
    return InspectionPlugin::start(*factory, changesAllowed);
}

void ConfigHost::startFleet() {
    FleetServicePlugin::start(*factory, pluginDirectory);
}

void ConfigHost::stop() {
    factory->StopFeatureSet(ZelUnified::configServiceId, nullptr);
}

bool ConfigHost::isStarted() const {
    return factory->IsFeatureSetStarted(ZelUnified::configServiceId);
}

void ConfigHost::resetData() {
    factory->invokeResetData(ZelUnified::ResetDataOptionEnum::ResetAll);
    poweredDown = false; // the stores have been created again
}

void ConfigHost::refresh() {
    // A store that reads its file again must not overtake a queued write to it.
    settle();
    onServices("lumora-config: refresh", [this] { featureSet->refreshConfigFeatureSet(); });
    poweredDown = false;
}

void ConfigHost::powerDown() {
    settle();
    onServices("lumora-config: power-down",
               [this] { powerSwitch->announce(ZelSystemMonitor::PowerEventTypeEnum::PowerDown); });
    poweredDown = true;
}

void ConfigHost::onBackground(const std::string& name, std::function<void()> work) const {
    factory->getBackgroundDispatcher()->enqueue(std::move(work), name);
}

void ConfigHost::onServices(const std::string& name, const std::function<void()>& work) const {
    std::exception_ptr failure;
    const auto guarded = [&] {
        try {
            work();
        } catch (...) {
            failure = std::current_exception();
        }
    };
    factory->getServicesDispatcher()->enqueueBlock(std::make_shared<KyrCoreUtils::FunctionTask>(guarded, name), false);
    if (failure) {
        std::rethrow_exception(failure);
    }
}

void ConfigHost::settle() const {
    // A task of one dispatcher may post to the other. Two rounds are needed; the order within a round does not matter.
    for (int round = 0; round < 2; ++round) {
        factory->flushBackgroundDispatcher();
        onServices("lumora-config: settle", [] {});
    }
}

std::string ConfigHost::nameThread() const {
    if (factory->getServicesDispatcher()->checkForUpdateAccess()) {
        return "services";
    }
    return std::this_thread::get_id() == mainThread ? "main" : "background";
}

void ConfigHost::lockProfile() {
    lock.emplace(configDirectory, FileUtils::getStateDirectory());
    if (!lock->isHeld()) {
        throw Failure(ExitCode::Environment, lock->getProblem());
    }
}

void ConfigHost::load() {
    const LogLineCatcher loaderLog(loaderLogger);
    onServices("lumora-config: load", [this] {
        service = factory->getServiceByType<ZelUnified::ConfigService>();
        featureSet = factory->getFeatureSetByType<ZelUnified::ConfigFeatureSet>();
        if (featureSet) {
            ZelUnified::markSensitiveKeys(*featureSet);
        }
    });
    if (!service || !featureSet) {
        throw Failure(ExitCode::Environment, "the plug-in does not work: " + loaderLog.getText());
    }
}

void ConfigHost::end() {
    // A value that waits to be written sets the timer of the backup, whose alarm posts the write.
    settle();
    if (timerSwitch->fireAll()) {
        settle();
    }
    factory->Destroy();
    service.reset();
    featureSet.reset();
    zel::common::TimerSource::overrideInstance(nullptr);
    SystemMonitorFactory::overrideInstance(nullptr);
    FileUtils::overrideDirectories({});
}

} // namespace lumora_config
