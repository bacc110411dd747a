#pragma once

#include "StoreSpec.h"

#include <kyr/SharedLibrary.h>

#include <ConfigStore.h>

#include <memory>
#include <optional>
#include <string>

namespace lumora_config {

/// Creates the installer's stores. Their class is in the plug-in, and the program must start without the plug-in; so a
/// small library beside the plug-in, linked to it, creates them. The first store loads the library, which is never
/// unloaded because its stores may still exist.
class BootstrapStores {
public:
    explicit BootstrapStores(std::string directory);

    /// Returns the store. Throws Failure (Environment) if the file is unreadable or the library is missing.
    std::shared_ptr<ZelUnified::ConfigStore> make(const BootstrapSpec& spec);

private:
    void* findMaker();

    const std::string libraryDirectory;
    std::optional<KyrCoreUtils::SharedLibrary> library;
};

} // namespace lumora_config
