#pragma once

#include "InspectionRequest.h"

#include <cstddef>

namespace inspection {

/// The values of a `load` that takes several requests, because a request is limited. Belongs to one connection; not
/// thread-safe.
class StagedValues {
public:
    explicit StagedValues(std::size_t mostBytes) : limit(mostBytes) {}

    /// Adds the values of one request. Throws RequestError (Usage) if all together exceed the limit, and removes all.
    void add(const InspectionRequest& request);
    /// Returns all values and removes them.
    std::vector<InspectionRequest::Value> extract();

private:
    const std::size_t limit;
    std::size_t bytes = 0;
    std::vector<InspectionRequest::Value> values;
};

} // namespace inspection
