#pragma once

#include "Findings.h"

#include <registry/RegistryTextFile.h>

#include <string>

namespace lumora_config {

/// An administrator's policy file, read and checked. A line that can't be taken is left out, and the rest counts.
class PolicyFile {
public:
    /// Throws Failure (Environment) when the file can't be read or is no export of a registry.
    explicit PolicyFile(std::string filePath);

    PolicyImport describe() const;
    /// Writes what was taken into the current user's layer, over an earlier file of that name. Throws Failure
    /// (Environment).
    void install() const;
    /// Where install() writes, and what.
    std::string getInstalledPath() const;
    std::string getInstalledText() const;

private:
    /// Refuses what would stop the client's reading.
    void dropLongValues();

    const std::string path;
    zel::registry::RegistryText text;
};

} // namespace lumora_config
