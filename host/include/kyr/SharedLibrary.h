#pragma once

#include <zel/HostExport.h>

#include <string>

/// Declares a member of a class of functions of a library: a pointer to the function `name`, under that name. The class
/// has the SharedLibrary as a member `library` before it, and the header of the function is included. Its constructor
/// throws std::runtime_error if the library lacks the function.
// NOLINTNEXTLINE(cppcoreguidelines-macro-usage): the name of a member is also that of the symbol
#define LUMORA_LIBRARY_CALL(name)                                                                                      \
    decltype(&::name) const name = reinterpret_cast<decltype(&::name)>(library.find(#name))

namespace KyrCoreUtils {

/// A library loaded at run time. It is never unloaded, because objects of its classes, tasks and type names may exist
/// until the process ends. Any thread.
class LUMORA_HOST_API SharedLibrary {
public:
    /// Loads the library; `path` is UTF-8. Throws std::runtime_error with the platform's reason, which includes the
    /// file name.
    explicit SharedLibrary(const std::string& path);

    /// Returns the address of an exported symbol, never null. Throws std::runtime_error if there is none.
    void* find(const std::string& symbol) const;

private:
    void* handle;
};

} // namespace KyrCoreUtils
