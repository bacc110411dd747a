#pragma once

#include "BundleContent.h"
#include "output/BundleSummary.h"

#include <string>

namespace lumora_config {

/// A problem report as one file, without secrets and personal data.
struct Bundle {
    std::string archive;
    BundleSummary summary; ///< Without the name of the file.
};

/// Makes the bundle. A part that cannot be made is left out, and its summary says why. Throws Failure (Environment) if
/// no archive can be made. Any thread.
Bundle makeBundle(BundleContent content);

/// Returns the default name of the file: it contains the name of the profile, masked, and the time.
std::string nameBundle(const std::string& configDirectory, const std::string& madeAt);

} // namespace lumora_config
