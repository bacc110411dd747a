#pragma once

#include <ConfigServiceExport.h>

#include <string>

namespace ZelUnified {

/// Told of every store that joins the chain, later, on the background dispatcher's thread, with no lock held. Held
/// weakly; a notification on its way keeps the observer alive.
class LUMORA_CONFIG_API ConfigStoreAddedObserver {
public:
    virtual void OnConfigStoreAdded(const std::string& storeName) = 0;

protected:
    ~ConfigStoreAddedObserver() = default;
};

} // namespace ZelUnified
