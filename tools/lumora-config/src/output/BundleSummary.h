#pragma once

#include "Findings.h"

#include <cstddef>
#include <string>
#include <vector>

namespace lumora_config {

/// A file in a bundle.
struct BundleMember {
    std::string name;
    std::size_t bytes = 0;
    std::string contents; ///< What it contains, for people.
};

/// The answer to `bundle`, and the list in the bundle.
struct BundleSummary {
    std::string file; ///< In the spelling of the user; empty in the bundle.
    std::string madeAt;
    std::vector<BundleMember> members;
    std::vector<HealthItem> problems; ///< What `doctor` says needs attention, such as files that cannot be read.
};

} // namespace lumora_config
