#pragma once

#include <ConfigServiceExport.h>

#include <string>

namespace ZelUnified {

/// Receives the effective value of every key affected by a change of the chain. Called on the thread that made the
/// change, with the chain's locks held. A callback may read and write values and add and remove stores. It must not
/// wait for another thread, and must not start, stop, refresh or reset the feature set, nor call IsFeatureSetStarted():
/// their lock must be acquired before the chain's.
class LUMORA_CONFIG_API ConfigStoreManager_Observer {
public:
    virtual ~ConfigStoreManager_Observer() = default;

    /// Ends the deferral for this key: changes passed earlier with `deferFire` may be shown from now on.
    virtual void onFireIfRequired(std::wstring key) = 0;
    /// Reports that the key is sensitive: its value must not be shown from now on. Called each time the key is marked.
    /// The chain's lock is not held, so this callback must not use the chain.
    virtual void onSensitiveKeyAddedOrUpdated(std::wstring key) = 0;
    /// Reports the new state of the key. If `deferFire` is true, the observer only records it until onFireIfRequired().
    virtual void onConfigAddedOrUpdated(std::wstring key, std::wstring value, std::wstring originalValue,
                                        bool isOverridden, bool isDefined, std::wstring valueStoreName,
                                        std::wstring originalValueStoreName, bool deferFire) = 0;
};

} // namespace ZelUnified
