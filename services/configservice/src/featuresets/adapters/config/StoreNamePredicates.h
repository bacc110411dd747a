#pragma once

#include <string_view>

namespace ZelUnified {

/// Each predicate returns true if the name of the store or file starts with the known prefix (case-insensitive).
bool isGarnConfigStore(std::string_view name);
bool isPresenceConfigStore(std::string_view name);
bool isTftpConfigStore(std::string_view name);
bool isTaviLyncRegistryConfigStore(std::string_view name);

/// The same for the names of cached copies, which start with "cached".
bool isCachedGarnConfigStore(std::string_view name);
bool isCachedPresenceConfigStore(std::string_view name);
bool isCachedTftpConfigStore(std::string_view name);

} // namespace ZelUnified
