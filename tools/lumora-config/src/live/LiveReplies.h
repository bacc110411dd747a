#pragma once

#include "InspectionClient.h"
#include "output/Findings.h"

#include <optional>
#include <vector>

namespace lumora_config {

/// Convert the replies of a running client to findings. Throw nlohmann::json::exception for an unknown form.
std::optional<Reading> toReading(const InspectionClient::Json& reply);
Explanation toExplanation(const InspectionClient::Json& reply);
std::vector<ListedValue> toList(const InspectionClient::Json& reply);
std::vector<StoreFacts> toStores(const InspectionClient::Json& reply);

} // namespace lumora_config
