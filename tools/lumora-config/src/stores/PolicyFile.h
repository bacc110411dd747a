#pragma once

#include "output/Findings.h"

#include <registry/RegistryTextFile.h>

#include <string>
#include <vector>

namespace lumora_config {

/// Reads and checks an administrator's policy file. Invalid lines are skipped; the others are imported.
class PolicyFile {
public:
    /// Reads the file. Throws Failure (Environment) if it is unreadable or not an export of a registry.
    explicit PolicyFile(std::string filePath);

    /// Returns what the import sets, deletes and rejects, and what is suspicious. Never contains values.
    PolicyImport describe() const;
    /// Returns every value, unmasked.
    std::vector<ImportedValue> listValues() const;
    /// Writes the accepted lines to the current user's layer and overwrites a file of the same name. Throws Failure
    /// (Environment) on failure.
    void install() const;
    /// Return the path and the content that install() writes.
    std::string getInstalledPath() const;
    std::string getInstalledText() const;

private:
    const std::string path;
    zel::registry::RegistryText text;
};

} // namespace lumora_config
