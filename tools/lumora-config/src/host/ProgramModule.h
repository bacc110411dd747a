#pragma once

#include <string>

/// The modules of the program: libraries of its own beside the plug-in, each of which links a library that few commands
/// need. They are loaded when such a command needs them, because every linked library delays the start of every
/// command.
namespace lumora_config {

/// Loads the module if it is not loaded yet. Returns the address of a function that it exports. Throws Failure
/// (Environment).
void* findInModule(const std::string& library, const std::string& function);

/// The same as a pointer of the type `Function`.
template <class Function>
Function findInModule(const std::string& library, const std::string& function) {
    return reinterpret_cast<Function>(findInModule(library, function));
}

} // namespace lumora_config
