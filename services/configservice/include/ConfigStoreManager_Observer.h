#pragma once

#include <ConfigServiceExport.h>

#include <string>

namespace ZelUnified {

/// Hears what every key resolves to whenever the chain changes. Called on the thread that made the change, with the
/// chain's locks held. A callback may read and write values and add and remove stores. It must not wait for another
/// thread, and must not start, stop, refresh or reset the feature set: their lock comes before the chain's.
class LUMORA_CONFIG_API ConfigStoreManager_Observer {
public:
    virtual ~ConfigStoreManager_Observer() = default;

    /// The changes of this key, announced before with `deferFire`, may be shown now.
    virtual void onFireIfRequired(std::wstring key) = 0;
    /// The value of this key must not be shown from here on. Told again each time the key is marked.
    virtual void onSensitiveKeyAddedOrUpdated(std::wstring key) = 0;
    /// What is true of the key from here on. `deferFire` asks to note it only, until onFireIfRequired().
    virtual void onConfigAddedOrUpdated(std::wstring key, std::wstring value, std::wstring originalValue,
                                        bool isOverridden, bool isDefined, std::wstring valueStoreName,
                                        std::wstring originalValueStoreName, bool deferFire) = 0;
};

} // namespace ZelUnified
