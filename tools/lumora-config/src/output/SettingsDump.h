#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace lumora_config {

/// One key of a dump.
struct DumpedSetting {
    std::wstring key;
    std::wstring value; ///< Empty if `hidden`.
    std::wstring storeName;
    bool sensitive = false;
    bool hidden = false; ///< The value of a sensitive key is left out.
};

/// The answer to `dump`, and the content of a file that it wrote.
struct SettingsDump {
    std::string
        source; ///< "user", "effective", "administrator", "report" or a store; empty if a file does not name it.
    std::vector<DumpedSetting> settings;
    std::string name; ///< The file or the profile; empty for the profile in use.
};

/// What `load` did, or would do.
struct LoadSummary {
    std::string file;
    std::size_t added = 0;
    std::size_t changed = 0;
    std::size_t unchanged = 0;
    std::size_t leftOut = 0; ///< Sensitive keys without a value, and keys that belong to one profile only.
    bool dryRun = false;

    std::size_t countSet() const { return added + changed + unchanged; }
};

/// A key whose values differ. A side is empty if it does not contain the key.
struct Difference {
    std::wstring key;
    std::optional<DumpedSetting> left;
    std::optional<DumpedSetting> right;
};

/// The answer to `diff`.
struct Comparison {
    std::string left; ///< The names of the two sides.
    std::string right;
    std::vector<Difference> differences; ///< In key order.
    std::size_t equal = 0;
    std::size_t unknown = 0; ///< Keys that both sides contain and one side hides, so they cannot be compared.
};

} // namespace lumora_config
