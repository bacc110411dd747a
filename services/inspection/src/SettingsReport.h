#pragma once

#include "ConfigInspector.h"
#include "InspectionRequest.h"
#include "Json.h"

#include <ConfigMap.h>

#include <memory>
#include <string>

namespace inspection {

/// Reads the values of one source in slices: the user's, those of one store, those in force, or the administrator's.
/// Services dispatcher's thread.
class SettingsReport {
public:
    /// Throws RequestError: Usage for an unknown source, Refused if there is no such store.
    SettingsReport(std::shared_ptr<const ConfigInspector> configInspector, const InspectionRequest& request);

    /// Reads the next values. Returns false after the last one.
    bool proceed();
    /// Returns what the program prints for `dump`.
    Json extract() { return std::move(report); }

private:
    bool readRecords();
    bool readStored();
    void add(const std::wstring& key, const std::wstring& value, const std::wstring& storeName);

    const std::shared_ptr<const ConfigInspector> inspector;
    const bool showSecrets;
    const bool administrators;
    std::shared_ptr<ZelUnified::ConfigStore> store; ///< Null if the records are read.
    ZelUnified::ConfigKeySet keys;                  ///< Those of the store that are not read yet.
    std::wstring last;                              ///< The last record that was read.
    Json report;
};

} // namespace inspection
