#pragma once

#include "PluginSpec.h"
#include "PowerSwitch.h"
#include "ProfileUse.h"
#include "TimerSwitch.h"

#include <kyr/FileUtils.h>
#include <unified/ProfileLock.h>
#include <unified/UnifiedFactoryImpl.h>

#include <ConfigFeatureSet.h>
#include <ConfigService.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace lumora_config {

/// A complete host: sets the directories, locks the profile if it may change it, loads the plug-in and unloads it. The
/// service and the feature set live as long as the host. The destructor runs all delayed work at once, so the user's
/// file and its backup are both written. Construct, use and destroy on the main thread.
class ConfigHost {
public:
    /// Loads the plug-in from the folder `plugins` or, if that is empty, from the folder beside the program. Does not
    /// start the feature set. Throws Failure (Environment) and leaves nothing running.
    ConfigHost(const KyrCoreUtils::HostDirectories& directories, const std::string& plugins, bool verbose,
               ProfileUse profileUse, DefaultsUse defaults = DefaultsUse::Required,
               std::vector<PluginSpec> foreignPlugins = {});
    ~ConfigHost();
    ConfigHost(const ConfigHost&) = delete;
    ConfigHost& operator=(const ConfigHost&) = delete;

    /// Loads the foreign plug-ins, which may add stores and observe keys at once if the feature set is started. Throws
    /// Failure (Environment) for the first one that cannot be loaded.
    void loadForeignPlugins() const;
    void start();
    /// Lets other processes of the user inspect the configuration, and change it if `changesAllowed` is true. Returns
    /// the path of the socket. Call it after start(). Throws Failure (Environment).
    std::string startInspection(bool changesAllowed);
    /// Follows the settings of a fleet, if the plug-in is installed and a cluster is configured. Call it after start().
    void startFleet();
    void stop();
    bool isStarted() const;
    /// Resets the client as a user does: calls the reset callback of every provider.
    void resetData();
    /// Waits for queued writes, then makes the stores that are not local read their sources again.
    void refresh();
    /// Waits for queued writes, then announces that the machine shuts down.
    void powerDown();
    /// Returns true after powerDown() until the next refresh. The stores write nothing meanwhile.
    bool isPoweredDown() const { return poweredDown; }
    /// Posts `work` to the background dispatcher.
    void onBackground(const std::string& name, std::function<void()> work) const;

    /// Runs `work` on the services dispatcher's thread and waits for it. Rethrows what it throws.
    void onServices(const std::string& name, const std::function<void()>& work) const;
    /// Waits until all tasks queued on both dispatchers have run.
    void settle() const;
    /// Returns "services", "main" or "background" for the calling thread.
    std::string nameThread() const;

    const std::shared_ptr<ZelUnified::ConfigFeatureSet>& getFeatureSet() const { return featureSet; }
    const std::shared_ptr<ZelUnified::ConfigService>& getService() const { return service; }
    const std::string& getConfigDirectory() const { return configDirectory; }
    /// Returns why the values of the defaults file are missing; "" if they are not.
    const std::string& getDefaultsProblem() const { return defaultsProblem; }
    /// Returns true if this process holds the lock of the profile.
    bool isProfileLocked() const { return lock.has_value(); }

private:
    void lockProfile();
    void load();
    void end();

    const std::thread::id mainThread = std::this_thread::get_id();
    const std::shared_ptr<PowerSwitch> powerSwitch = std::make_shared<PowerSwitch>();
    const std::shared_ptr<TimerSwitch> timerSwitch = std::make_shared<TimerSwitch>();
    const std::string configDirectory;
    const std::string pluginDirectory;
    const std::vector<PluginSpec> foreign;
    const ProfileUse use;
    /// Two processes that write one configuration would overwrite each other's values.
    std::optional<ZelUnified::ProfileLock> lock;
    const std::shared_ptr<ZelUnified::UnifiedFactoryImpl> factory;
    std::shared_ptr<ZelUnified::ConfigFeatureSet> featureSet;
    std::shared_ptr<ZelUnified::ConfigService> service;
    std::string defaultsProblem;
    bool poweredDown = false;
};

} // namespace lumora_config
