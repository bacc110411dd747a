#pragma once

#include "Findings.h"

#include <string>
#include <vector>

namespace lumora_config {

/// All of the chain at one moment. Secrets are hidden in it already.
struct ChainFindings {
    std::vector<StoreFacts> stores;
    std::vector<Explanation> keys;
    std::string madeAt;
    bool showsSecrets = false;
};

/// The page for support people: one document that needs nothing but a browser. Any thread.
std::string renderChainPage(const ChainFindings& findings);

/// The page as it is before it is filled, from report/chain.html.
std::string_view getChainPageTemplate();

} // namespace lumora_config
