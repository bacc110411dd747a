#pragma once

#include "Findings.h"

#include <string>
#include <string_view>
#include <vector>

namespace lumora_config {

/// The whole chain at one moment. Secrets and the owners of files are already masked.
struct ChainFindings {
    std::vector<StoreFacts> stores;
    std::vector<Explanation> keys; ///< Each with one opinion per store, in the order of `stores`.
    HealthReport health;
    std::string profile; ///< The configuration directory.
    std::string host;
    std::string madeAt; ///< ISO 8601.
    bool showsSecrets = false;
};

/// Returns the page for support staff: one self-contained HTML document. Its script creates the rows that are visible
/// from data in JSON; without scripts it is a plain table of the values in force. Any thread.
std::string renderChainPage(const ChainFindings& findings);

/// Returns the template of the page, report/chain.html.
std::string_view getChainPageTemplate();

} // namespace lumora_config
