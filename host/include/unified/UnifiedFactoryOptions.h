#pragma once

#include <unified/ServiceEventListener.h>

#include <chrono>
#include <map>
#include <memory>
#include <string>

namespace ZelUnified {

/// How a program wants its factory.
struct UnifiedFactoryOptions {
    /// Who runs the services dispatcher: a thread of the factory's own, or the program, which pumps it.
    enum class ServicesThread { Own, Pumped };

    ServicesThread servicesThread = ServicesThread::Own;
    /// The one folder from which plug-ins are loaded.
    std::string pluginFolder;
    /// Readable type name of an interface -> file name, in that folder, of the library that provides it.
    std::map<std::string, std::string> plugins;
    std::weak_ptr<ServiceEventListener> serviceEventListener;
    /// Set it if the program holds the profile's lock and may write. Init(), which comes before any plug-in's entry,
    /// then moves damaged, empty and wrongly keyed protected files of the configuration directory aside (see
    /// EncryptFileUtils::moveAsideUnusable). A program that only reads leaves it false, and nothing is changed.
    bool openedForWriting = false;
    /// How long Destroy() retries failed writes of protected files at most, before it logs what is lost.
    std::chrono::milliseconds lastRetries{2000};
};

} // namespace ZelUnified
