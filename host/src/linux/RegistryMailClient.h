#pragma once

#include <registry/Registry.h>

#include <string>

namespace zel::registry {

/// The name of the desktop's program for "mailto" links, from the current user's associations or from the system's.
/// Empty when there is none.
std::wstring findDefaultMailClient(HKEY root);

} // namespace zel::registry
