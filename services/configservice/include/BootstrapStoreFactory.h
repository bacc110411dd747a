#pragma once

#include <ConfigServiceExport.h>

#include <memory>
#include <string>

namespace ZelUnified {

class ConfigStore;

/// Creates stores of the class BootstrapConfigStore for a host that loads the plug-in at run time and so cannot call
/// their constructor. The feature set implements this interface; cast a pointer to ConfigFeatureSet to it. Any thread.
class LUMORA_CONFIG_API BootstrapStoreFactory {
public:
    /// Returns a store named "BootstrapConfigStore" that has read the file, and does not add it to the chain. If the
    /// file cannot be opened, logs a warning, and the store is empty.
    virtual std::shared_ptr<ConfigStore> createBootstrapStore(const std::string& path, int priority) = 0;

protected:
    BootstrapStoreFactory() = default;
    BootstrapStoreFactory(const BootstrapStoreFactory&) = default;
    BootstrapStoreFactory& operator=(const BootstrapStoreFactory&) = default;
    ~BootstrapStoreFactory() = default;
};

} // namespace ZelUnified
