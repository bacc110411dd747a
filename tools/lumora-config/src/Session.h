#pragma once

#include "ChainInspector.h"
#include "ConfigHost.h"
#include "DiskCheck.h"
#include "KeyWatcher.h"
#include "Printer.h"
#include "SecretMask.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace lumora_config {

/// What every command works with. Main thread; the inspector and the watchers are used on the services dispatcher's.
class Session {
public:
    /// The host and the printer must outlive the session.
    Session(ConfigHost& configHost, Printer& target, bool showSecrets);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Hands a store to the service, as another service would. The feature set must be started.
    void addStore(const std::shared_ptr<ZelUnified::ConfigStore>& store);
    /// The same for a file of the user; keys that the document marks as sensitive become so. The copy, if one is
    /// wanted, is written but not checked.
    std::shared_ptr<ZelUnified::ConfigStore> addForeignStore(const StoreSpec& spec);

    /// A worker has set this value; confirmWrites() will look for it on the disk.
    void expectStored(const std::wstring& key, const std::wstring& value);
    /// These keys have been written again since.
    void forgetExpected(const std::vector<std::wstring>& keys);
    void forgetAllExpected() { expectedValues.clear(); }
    /// Forgets all expected values and throws Failure (Environment) if one of them is not on the disk.
    void confirmWrites();

    ConfigHost& getHost() { return host; }
    const DiskCheck& getDisk() const { return disk; }
    Printer& getPrinter() { return printer; }
    const SecretMask& getMask() const { return mask; }
    ChainInspector& getChain() { return *chain; }
    /// By the current name of the key. Services dispatcher's thread.
    std::map<std::wstring, std::shared_ptr<KeyWatcher>, ZelUnified::caseInsensitiveMapComparator>& getWatchers() {
        return watchers;
    }

private:
    ConfigHost& host;
    Printer& printer;
    const SecretMask mask;
    const DiskCheck disk;
    ZelUnified::ConfigMap expectedValues; ///< Set by workers and not looked for yet.
    std::unique_ptr<ChainInspector> chain;
    std::map<std::wstring, std::shared_ptr<KeyWatcher>, ZelUnified::caseInsensitiveMapComparator> watchers;
};

} // namespace lumora_config
