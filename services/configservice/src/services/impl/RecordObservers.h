#pragma once

#include "ConfigValueImpl.h"

#include <ConfigRecordObserver.h>

#include <memory>
#include <optional>
#include <vector>

namespace ZelUnified {

/// The observers of all records. Services dispatcher's thread. An observer may be added or removed during a call.
class RecordObservers {
public:
    void add(std::weak_ptr<ConfigRecordObserver> observer);
    /// Removes the observer and those that no longer exist.
    void remove(const std::weak_ptr<ConfigRecordObserver>& observer);

    /// Returns the state of the record before a change, or nothing if there is no observer.
    std::optional<ConfigRecordState> beginChange(ConfigValueImpl& record) const;
    /// Calls the observers if the record differs from `before`. An observer that throws is logged.
    void endChange(ConfigValueImpl& record, const std::optional<ConfigRecordState>& before) const;

private:
    std::vector<std::weak_ptr<ConfigRecordObserver>> observers;
};

} // namespace ZelUnified
