#pragma once

#include <zel/HostExport.h>

#include <string>

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
