#pragma once

#include "InspectionClient.h"
#include "output/ChainPage.h"
#include "output/KeyFindings.h"

#include <optional>
#include <vector>

namespace lumora_config {

/// Convert the replies of a running client to findings. Throw nlohmann::json::exception for an unknown form.
std::optional<Reading> toReading(const InspectionClient::Json& reply);
Explanation toExplanation(const InspectionClient::Json& reply);
std::vector<ListedValue> toList(const InspectionClient::Json& reply);
std::vector<StoreFacts> toStores(const InspectionClient::Json& reply);
std::vector<KeyFacts> toKeys(const InspectionClient::Json& reply);
KeyDescription toDescription(const InspectionClient::Json& reply);
/// Converts the stores and the keys of a chain; the caller adds the rest.
ChainFindings toChain(const InspectionClient::Json& reply);

} // namespace lumora_config
