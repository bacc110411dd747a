#pragma once

#include <string>

namespace lumora_config {

/// Checks the defaults file of the installation. The service works without it, with an empty store; the program reports
/// an error, since every answer would be wrong.
class DefaultsFile {
public:
    explicit DefaultsFile(const std::string& resourcesDirectory);

    /// Call before the service reads the file. Throws Failure (Environment) if it is missing or unreadable.
    void requireReadable() const;
    /// Call after the service has read the file; the service moves a file aside that is not XML. Throws Failure
    /// (Environment) with the new path in that case.
    void requireAccepted() const;

private:
    const std::string path;
    const std::string quarantinePath;
};

} // namespace lumora_config
