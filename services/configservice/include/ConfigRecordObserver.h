#pragma once

#include <ConfigServiceExport.h>

#include <string>

namespace ZelUnified {

/// The properties of a record at one moment.
struct ConfigRecordState {
    std::wstring value;
    std::wstring originalValue;
    bool isOverridden = false;
    bool isDefined = false;
    std::wstring valueStoreName;
    std::wstring originalValueStoreName;

    bool operator==(const ConfigRecordState&) const = default;
};

/// Observes all records of the configuration service, including those that do not exist yet; see
/// ConfigRecords::addRecordObserver(). Called on the services dispatcher's thread, possibly with the chain's lock held.
/// A callback may read. It must not write, wait for another thread, start, stop, refresh or reset the feature set, or
/// call IsFeatureSetStarted().
class LUMORA_CONFIG_API ConfigRecordObserver {
public:
    /// Reports a change of at least one property, after the record is updated and before its own observers are called.
    virtual void OnRecordChanged(const std::wstring& key, const ConfigRecordState& before,
                                 const ConfigRecordState& after) = 0;

protected:
    ~ConfigRecordObserver() = default;
};

} // namespace ZelUnified
