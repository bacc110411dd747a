#include <kyr/FileUtils.h>
#include <kyr/FunctionTask.h>
#include <kyr/StringUtils.h>
#include <unified/ProfileLock.h>
#include <unified/PropertyNotifier.h>
#include <unified/TypeName.h>
#include <unified/UnifiedFactoryImpl.h>

#include <ConfigFeatureSet.h>
#include <ConfigService.h>
#include <ConfigServiceIds.h>

#include <chrono>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <utility>

using KyrCoreUtils::FileUtils;
using ZelUnified::ConfigFeatureSet;
using ZelUnified::ConfigService;
using ZelUnified::UnifiedFactoryImpl;

namespace {

std::shared_ptr<UnifiedFactoryImpl> makeFactory(const char* pluginFolder) {
    ZelUnified::UnifiedFactoryOptions options;
    options.openedForWriting = true; // the program holds the lock
    options.servicesThread = ZelUnified::UnifiedFactoryOptions::ServicesThread::Pumped;
    options.pluginFolder = pluginFolder;
    // One library provides both interfaces. It is loaded when one of them is looked up for the first time.
    options.plugins = {{ZelUnified::readableTypeName<ConfigService>(), SERVICE_LIBRARY},
                       {ZelUnified::readableTypeName<ConfigFeatureSet>(), SERVICE_LIBRARY}};
    return std::make_shared<UnifiedFactoryImpl>(std::move(options));
}

/// Posts a write of the key from another thread, and pumps the services dispatcher on this one until the record has
/// changed.
void changeAndPump(UnifiedFactoryImpl& factory, const std::wstring& key, const std::wstring& value) {
    const auto service = factory.getServiceByType<ConfigService>();
    const auto record = service->getConfig(key);
    bool changed = false;
    const auto notifier = record->getConfigValueNotifiers()->getValueNotifier();
    const auto connection = notifier->connect([&changed] { changed = true; });

    const auto dispatcher = factory.getServicesDispatcher();
    const auto write = [&] { service->setConfig(key, value); };
    std::thread worker([&] {
        dispatcher->enqueue(std::make_shared<KyrCoreUtils::FunctionTask>(write, "minimal host: write"), false);
    });
    while (!changed && factory.waitForDispatcherTask(std::chrono::seconds(10))) {
        factory.pumpAllDispatcherTasks();
    }
    worker.join();
    if (const auto connected = connection.lock()) {
        connected->disconnect(); // the callback refers to `changed`, and the record may live longer
    }
    std::cout << KyrCoreUtils::toString(record->getValue()) << " from "
              << KyrCoreUtils::toString(record->getValueStoreName()) << '\n';
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        std::cerr << "usage: minimal_host PLUGIN_FOLDER PROFILE KEY VALUE\n";
        return 2;
    }
    const std::string profile = argv[2];
    FileUtils::overrideDirectories(
        {profile + "/config", profile + "/data", profile + "/state", profile + "/resources"});
    // Two processes that write one profile would overwrite each other's values.
    const ZelUnified::ProfileLock lock(FileUtils::getConfigDirectory(), FileUtils::getStateDirectory());
    if (!lock.isHeld()) {
        std::cerr << "minimal_host: " << lock.getProblem() << '\n';
        return 1;
    }

    const auto factory = makeFactory(argv[1]);
    factory->Init(); // makes this thread the thread of the services dispatcher
    const bool loaded = factory->getServiceByType<ConfigService>() != nullptr;
    if (loaded) {
        factory->StartFeatureSet(ZelUnified::configServiceId, nullptr);
        changeAndPump(*factory, KyrCoreUtils::toWideString(argv[3]), KyrCoreUtils::toWideString(argv[4]));
    } else {
        std::cerr << "minimal_host: the plug-in in " << argv[1] << " cannot be loaded\n";
    }
    factory->Destroy(); // stops the feature set, runs queued writes and releases the services
    return loaded ? 0 : 1;
}
