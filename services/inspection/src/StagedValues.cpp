#include "StagedValues.h"

#include <utility>

namespace inspection {

void StagedValues::add(const InspectionRequest& request) {
    for (const auto& value : request.values) {
        bytes += (value.key.size() + value.value.size()) * sizeof(wchar_t);
    }
    if (bytes > limit) {
        extract();
        throw RequestError(RequestError::Code::Usage,
                           "the values of one load take more than " + std::to_string(limit) + " bytes");
    }
    values.insert(values.end(), request.values.begin(), request.values.end());
}

std::vector<InspectionRequest::Value> StagedValues::extract() {
    bytes = 0;
    return std::exchange(values, {});
}

} // namespace inspection
