#pragma once

#include <unified/ServiceEventListener.h>

#include <chrono>
#include <map>
#include <memory>
#include <string>

namespace ZelUnified {

/// Options of a program for its factory.
struct UnifiedFactoryOptions {
    /// The owner of the services dispatcher's thread: Own is a thread of the factory, Pumped is a thread of the
    /// program.
    enum class ServicesThread { Own, Pumped };

    ServicesThread servicesThread = ServicesThread::Own;
    /// The only folder from which the libraries of `plugins` are loaded.
    std::string pluginFolder;
    /// Maps the readable type name of an interface to the file name, in that folder, of the library that implements it.
    std::map<std::string, std::string> plugins;
    /// Maps the readable type name of an interface to the absolute path of a library outside that folder. The program
    /// must have checked who may change the library. A name that `plugins` contains too is ignored here.
    std::map<std::string, std::string> libraries;
    std::weak_ptr<ServiceEventListener> serviceEventListener;
    /// True if the program holds the profile's lock and may write. Init(), before it calls the entry point of any
    /// plug-in, then moves damaged, empty and wrongly keyed protected files of the configuration directory aside (see
    /// EncryptFileUtils::moveAsideUnusable), and removes temporary files that killed writers left more than ten minutes
    /// ago. A program that only reads leaves it false, and nothing is changed.
    bool openedForWriting = false;
    /// True for a program that only reads. From Init() to Destroy(), whatever the host or a plug-in writes, moves or
    /// removes with FileLayer, FileUtils or EncryptFileUtils is kept in memory and reported as done, and later reads
    /// see it. The disk is unchanged: no file, no directory, no key, no lock. So the program needs neither the
    /// profile's lock nor permission to write. EncryptFileUtils::health(), listMovedAside() and readFromDisk() show the
    /// disk. RegularFile and log files still write to the disk. One factory of the process may set this at a time.
    bool changesInMemory = false;
    /// The maximum time for which Destroy() retries failed writes of protected files, before it logs the content that
    /// is lost.
    std::chrono::milliseconds lastRetries{2000};
};

} // namespace ZelUnified
