#pragma once

#include <ConfigServiceExport.h>

#include <string>

namespace ZelUnified {

/// Receives the name of every store that joins the chain: asynchronously, on the background dispatcher's thread, with
/// no lock held. The chain holds a weak reference; a pending notification keeps the observer alive.
class LUMORA_CONFIG_API ConfigStoreAddedObserver {
public:
    virtual void OnConfigStoreAdded(const std::string& storeName) = 0;

protected:
    ~ConfigStoreAddedObserver() = default;
};

} // namespace ZelUnified
