#pragma once

#include <zel/HostExport.h>

#include <string>

namespace KyrCoreUtils {

/// A library loaded at run time. It is never unloaded: objects of its classes, tasks and type names outlive any moment
/// at which that would be safe. Any thread.
class LUMORA_HOST_API SharedLibrary {
public:
    /// `path` is UTF-8. Throws std::runtime_error with the platform's reason, which names the file.
    explicit SharedLibrary(const std::string& path);

    /// The address of an exported symbol, never null. Throws std::runtime_error when there is none.
    void* find(const std::string& symbol) const;

private:
    void* handle;
};

} // namespace KyrCoreUtils
