#pragma once

#include <string_view>

namespace ZelUnified {

/// What the adapter tells by a store's or file's name: true when the name begins with the known part, ignoring case.
bool isGarnConfigStore(std::string_view name);
bool isPresenceConfigStore(std::string_view name);
bool isTftpConfigStore(std::string_view name);
bool isTaviLyncRegistryConfigStore(std::string_view name);

/// The same for the names of cached copies, which begin with "cached".
bool isCachedGarnConfigStore(std::string_view name);
bool isCachedPresenceConfigStore(std::string_view name);
bool isCachedTftpConfigStore(std::string_view name);

} // namespace ZelUnified
