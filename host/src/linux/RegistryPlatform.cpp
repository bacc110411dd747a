#include "RegistryMailClient.h"
#include "registry/PlatformRegistry.h"

#include <registry/RegistryFiles.h>

namespace zel::registry {

std::shared_ptr<Registry> makePlatformRegistry() {
    return makeFileRegistry({"/etc/lumora/registry", {}}, findDefaultMailClient);
}

} // namespace zel::registry
