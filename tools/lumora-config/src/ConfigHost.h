#pragma once

#include "CommandLine.h"
#include "PowerSwitch.h"
#include "TimerSwitch.h"

#include <unified/ProfileLock.h>
#include <unified/UnifiedFactoryImpl.h>

#include <ConfigFeatureSet.h>
#include <ConfigService.h>

#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace lumora_config {

/// A whole host in one object: it settles the folders, takes the profile, loads the plug-in and ends it again. The
/// service and the feature set live as long as the host does. At its end all that was delayed happens at once: the
/// user's file and its backup are both written then. Made, used and destroyed by the main thread.
class ConfigHost {
public:
    /// Loads the plug-in; the feature set is not started yet. Throws Failure (Environment): nothing is left running.
    explicit ConfigHost(const CommandLine& line);
    ~ConfigHost();
    ConfigHost(const ConfigHost&) = delete;
    ConfigHost& operator=(const ConfigHost&) = delete;

    void start();
    void stop();
    bool isStarted() const;
    /// Resets the client as a user would: every provider's reset callback is called.
    void resetData();
    /// Reads the stores that are not local anew, once what was queued before has been written.
    void refresh();
    /// Announces that the machine goes down, once what was queued before has been written.
    void powerDown();
    /// The stores write nothing any more: the machine has announced that it goes down, and no refresh came since.
    bool isPoweredDown() const { return poweredDown; }
    /// Runs `work` on the background dispatcher's thread, later.
    void onBackground(const std::string& name, std::function<void()> work) const;

    /// Runs `work` on the services dispatcher's thread and returns when it is done. What it throws is thrown here.
    void onServices(const std::string& name, const std::function<void()>& work) const;
    /// Returns when everything that was queued on both dispatchers has run.
    void settle() const;
    /// "services", "main" or "background".
    std::string nameThread() const;

    const std::shared_ptr<ZelUnified::ConfigFeatureSet>& getFeatureSet() const { return featureSet; }
    const std::shared_ptr<ZelUnified::ConfigService>& getService() const { return service; }
    const std::string& getConfigDirectory() const { return configDirectory; }
    const std::string& getPluginDirectory() const { return pluginDirectory; }

private:
    void load();
    void end();

    const std::thread::id mainThread = std::this_thread::get_id();
    const std::shared_ptr<PowerSwitch> powerSwitch = std::make_shared<PowerSwitch>();
    const std::shared_ptr<TimerSwitch> timerSwitch = std::make_shared<TimerSwitch>();
    const std::string configDirectory;
    const std::string pluginDirectory;
    /// Two processes that write one configuration would lose each other's values.
    const ZelUnified::ProfileLock lock;
    const std::shared_ptr<ZelUnified::UnifiedFactoryImpl> factory;
    std::shared_ptr<ZelUnified::ConfigFeatureSet> featureSet;
    std::shared_ptr<ZelUnified::ConfigService> service;
    bool poweredDown = false;
};

} // namespace lumora_config
