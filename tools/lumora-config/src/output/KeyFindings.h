#pragma once

#include "Findings.h"

#include <optional>
#include <string>
#include <vector>

namespace lumora_config {

/// What the catalogue says about one key, ready to be printed.
struct KeyFacts {
    std::wstring key;                    ///< The new name, in the spelling of the catalogue.
    std::optional<std::wstring> oldName; ///< Empty if the key was never renamed.
    bool sensitive = false;
    bool provisionable = false;
    std::string kind;                ///< "text", "boolean", "enumeration" or "list".
    std::string permitted;           ///< The permitted values in words.
    std::vector<std::string> values; ///< The permitted values, if they can be listed.
    std::string rule;                ///< How the service reads the value; empty for most keys.
    std::string meaning;             ///< One sentence.
    std::string use;                 ///< What the service does with the key; may be empty.
};

/// The answer to `describe`.
struct KeyDescription {
    std::wstring key;              ///< The new name; for a key outside the catalogue, the spelling of the request.
    std::optional<KeyFacts> facts; ///< Empty if the key is not in the catalogue.
    bool sensitive = false;        ///< The key is marked as sensitive in this run.
    std::optional<Reading> inForce;
};

} // namespace lumora_config
