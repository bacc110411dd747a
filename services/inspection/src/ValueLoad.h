#pragma once

#include "ConfigInspector.h"
#include "InspectionRequest.h"
#include "Json.h"

#include <ConfigMap.h>

namespace inspection {

/// Sets all values of a request with one write of the user's file, or none.
class ValueLoad {
public:
    /// Checks the values as `set` does. Throws RequestError (Refused) if one of them is refused or a key occurs twice.
    /// Any thread.
    explicit ValueLoad(const InspectionRequest& request);

    /// Counts the values that would be added, changed or left as they are. Services dispatcher's thread.
    void count(const ConfigInspector& inspector);
    /// Sets them. Throws RequestError (Refused) if no store accepts values. Services dispatcher's thread.
    void set(const ConfigInspector& inspector) const;
    /// Returns the counts. Any thread.
    Json describe() const;
    bool isDryRun() const { return dryRun; }
    bool isEmpty() const { return values.empty(); }
    bool changesNothing() const { return added == 0 && changed == 0; }

private:
    ZelUnified::ConfigMap values;
    const bool dryRun;
    std::size_t added = 0;
    std::size_t changed = 0;
    std::size_t unchanged = 0;
};

} // namespace inspection
