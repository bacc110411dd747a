#pragma once

#include <registry/Registry.h>

#include <memory>

namespace zel::registry {

/// The platform's own registry, or the one made of files where the platform has none. One for each platform.
std::shared_ptr<Registry> makePlatformRegistry();

} // namespace zel::registry
