#pragma once

#include <registry/Registry.h>

#include <string>

namespace zel::registry {

/// Returns the name of the desktop's program for "mailto" links, from the associations of the current user or of the
/// system, depending on `root`. Empty if there is none.
std::wstring findDefaultMailClient(HKEY root);

} // namespace zel::registry
