#pragma once

#include <registry/Registry.h>

#include <memory>

namespace zel::registry {

/// Creates the platform's registry, or one that consists of files if the platform has none. Each platform implements
/// it.
std::shared_ptr<Registry> makePlatformRegistry();

} // namespace zel::registry
