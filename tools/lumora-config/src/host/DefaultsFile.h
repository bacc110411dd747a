#pragma once

#include <string>

namespace lumora_config {

/// The defaults file of the installation. The service goes on without it, with an empty store; a user of the program is
/// told, since every answer would be wrong.
class DefaultsFile {
public:
    explicit DefaultsFile(const std::string& resourcesDirectory);

    /// Before the service reads the file. Throws Failure (Environment) when it is missing or can't be read.
    void requireReadable() const;
    /// After the service has read the file: it puts one that is not XML aside. Throws Failure (Environment) that says
    /// where it is kept.
    void requireAccepted() const;

private:
    const std::string path;
    const std::string quarantinePath;
};

} // namespace lumora_config
