#include "RegistryMailClient.h"
#include "registry/PlatformRegistry.h"

#include <registry/RegistryFiles.h>

namespace zel::registry {

std::string getAdministratorRegistryFolder() {
    return "/etc/lumora/registry";
}

std::shared_ptr<Registry> makePlatformRegistry() {
    return makeFileRegistry({getAdministratorRegistryFolder(), {}}, findDefaultMailClient);
}

} // namespace zel::registry
