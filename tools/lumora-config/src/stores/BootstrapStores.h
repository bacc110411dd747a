#pragma once

#include "StoreSpec.h"

#include <kyr/SharedLibrary.h>

#include <ConfigStore.h>

#include <memory>
#include <optional>
#include <string>

namespace lumora_config {

/// Makes the installer's stores. Their class lives in the plug-in, which the program must not need to start; so a small
/// library beside the plug-in, bound to it, makes them. It is loaded at the first store and stays while the process
/// does, since stores of it do.
class BootstrapStores {
public:
    explicit BootstrapStores(std::string directory);

    /// Throws Failure (Environment) when the file can't be read or the library is missing.
    std::shared_ptr<ZelUnified::ConfigStore> make(const BootstrapSpec& spec);

private:
    void* findMaker();

    const std::string libraryDirectory;
    std::optional<KyrCoreUtils::SharedLibrary> library;
};

} // namespace lumora_config
