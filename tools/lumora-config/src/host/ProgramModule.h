#pragma once

#include <string>

/// The modules of the program: libraries of its own beside the plug-in, each of which links a library that few commands
/// need. They are loaded when such a command needs them, because every linked library delays the start of every
/// command.
namespace lumora_config {

/// Loads the module if it is not loaded yet. Searches it in the folders of the program's plug-ins and then in
/// `pluginDirectory`, the one on the command line, or empty; the caller has checked that it is trusted. Returns the
/// address of a function that the module exports. Throws Failure (Environment).
///
/// The name of the file, `library`, contains the version of the program: a module of another version is not found.
void* findInModule(const std::string& library, const std::string& function, const std::string& pluginDirectory);

/// The same as a pointer of the type `Function`.
template <class Function>
Function findInModule(const std::string& library, const std::string& function, const std::string& pluginDirectory) {
    return reinterpret_cast<Function>(findInModule(library, function, pluginDirectory));
}

} // namespace lumora_config
