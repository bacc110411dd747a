#pragma once

#include "Findings.h"

#include <string>
#include <vector>

namespace lumora_config {

/// The whole chain at one moment. Secrets are already masked.
struct ChainFindings {
    std::vector<StoreFacts> stores;
    std::vector<Explanation> keys;
    std::string madeAt;
    bool showsSecrets = false;
};

/// Returns the page for support staff: one self-contained HTML document. Any thread.
std::string renderChainPage(const ChainFindings& findings);

/// Returns the template of the page, report/chain.html.
std::string_view getChainPageTemplate();

} // namespace lumora_config
