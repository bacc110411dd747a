#pragma once

#include "output/ChainPage.h"

#include <string>
#include <vector>

namespace lumora_config {

/// A log file: its name without folders, and its text.
struct LogFile {
    std::string name;
    std::string text;
};

/// What a bundle is made of. The values of sensitive keys are already masked in `chain` and `values`; nothing else is.
struct BundleContent {
    ChainFindings chain;
    std::vector<ListedValue> values; ///< The values in force.
    std::string report;              ///< The text of `report`.
    std::vector<LogFile> logs;
    std::string client;                     ///< The version of the running client; empty if there is none.
    std::vector<std::string> secrets;       ///< The values of sensitive keys in all stores.
    std::vector<std::string> sensitiveKeys; ///< Their names, and the sensitive keys of the catalogue.
    std::string pluginDirectory;            ///< For findInModule().
};

} // namespace lumora_config
