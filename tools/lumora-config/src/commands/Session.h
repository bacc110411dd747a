#pragma once

#include "CommandInput.h"
#include "KeyWatcher.h"
#include "SecretMask.h"
#include "disk/DiskCheck.h"
#include "disk/OriginFinder.h"
#include "host/ConfigHost.h"
#include "output/Printer.h"
#include "stores/ChainInspector.h"
#include "stores/StoreSpec.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace lumora_config {

/// Holds the objects that all commands use. Main thread, except the inspector and the watchers, which are used on the
/// services dispatcher's thread.
class Session {
public:
    /// The host and the printer must outlive the session.
    Session(ConfigHost& configHost, Printer& target, bool showSecrets);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Adds a store to the service, as another service would. The feature set must be started.
    void addStore(const std::shared_ptr<ZelUnified::ConfigStore>& store);
    /// Adds a store that reads the user's file. Keys that the document marks as sensitive become sensitive. Writes the
    /// cached copy if one is requested, but does not check it.
    std::shared_ptr<ZelUnified::ConfigStore> addForeignStore(const StoreSpec& spec);
    /// Adds a store of the plug-in that reads an installer's file. Throws Failure (Environment) if the file is
    /// unreadable.
    void addBootstrapStore(const BootstrapSpec& spec);

    /// Adds the installer's store, which reads this file.
    void addBootstrapStore(const std::shared_ptr<ZelUnified::ConfigStore>& store, const std::string& file);
    /// Records that this program has just filled the store of that name.
    void recordArrival(const std::string& storeName, StoreArrivals::Kind kind, const std::string& file = {});
    /// Records that this program has just set a value in memory.
    void recordInMemory(const std::wstring& key, const std::wstring& value);
    /// Returns a finder for one question.
    OriginFinder makeOriginFinder() const { return {host.getFeatureSet(), arrivals, host.getConfigDirectory()}; }

    /// Records a value that a worker has set; confirmWrites() checks that it is on the disk.
    void expectStored(const std::wstring& key, const std::wstring& value);
    /// Removes keys that have been written again since from the expected values.
    void forgetExpected(const std::vector<std::wstring>& keys);
    void forgetAllExpected() { expectedValues.clear(); }
    /// Clears the expected values. Throws Failure (Environment) if one of them is not on the disk.
    void confirmWrites();

    ConfigHost& getHost() { return host; }
    const DiskCheck& getDiskCheck() const { return disk; }
    Printer& getPrinter() { return printer; }
    const SecretMask& getMask() const { return mask; }
    CommandInput& getInput() { return input; }
    ChainInspector& getChain() { return *chain; }
    /// Keyed by the new name. Services dispatcher's thread.
    std::map<std::wstring, std::shared_ptr<KeyWatcher>, ZelUnified::caseInsensitiveMapComparator>& getWatchers() {
        return watchers;
    }

private:
    ConfigHost& host;
    Printer& printer;
    const SecretMask mask;
    const DiskCheck disk;
    CommandInput input;
    StoreArrivals arrivals;
    ZelUnified::ConfigMap expectedValues; ///< Set by workers and not checked yet.
    std::unique_ptr<ChainInspector> chain;
    std::map<std::wstring, std::shared_ptr<KeyWatcher>, ZelUnified::caseInsensitiveMapComparator> watchers;
};

} // namespace lumora_config
