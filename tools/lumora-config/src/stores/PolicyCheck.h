#pragma once

#include "output/Findings.h"

#include <registry/RegistryTextFile.h>

#include <span>
#include <string>
#include <vector>

namespace lumora_config {

/// Checks the accepted sections of a policy file against the catalogue of keys. Reports keys that the catalogue does
/// not contain, values that the kind of a key excludes, types of values that the client does not read, and keys of the
/// registry that resemble the client's policy key but differ from it. Quotes no value.
class PolicyCheck {
public:
    /// Returns the remarks in order of lines.
    static std::vector<PolicyRemark> examine(std::span<const zel::registry::RegistryTextSection> sections);

private:
    PolicyCheck();

    void examine(const zel::registry::RegistryTextSection& section);
    void examine(const zel::registry::RegistryTextEntry& entry);
    /// Returns "; did you mean 'a' or 'b'?", or "".
    std::string suggest(const std::string& key);
    void add(std::size_t line, const std::string& text, PolicyRemark::Kind kind = PolicyRemark::Kind::Ineffective);

    const std::vector<std::string> knownNames;
    std::size_t suggestionCount = 0;
    std::vector<PolicyRemark> remarks;
};

} // namespace lumora_config
