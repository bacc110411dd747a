#pragma once

#include <string>

namespace lumora_config {

/// A library loaded at run time. It is never unloaded: objects of its classes may live on.
class SharedLibrary {
public:
    /// Throws Failure (Environment) that names the file and the reason.
    explicit SharedLibrary(const std::string& path);

    /// The address of an exported symbol. Throws Failure (Environment) when there is none.
    void* find(const std::string& symbol) const;

private:
    void* handle;
};

} // namespace lumora_config
