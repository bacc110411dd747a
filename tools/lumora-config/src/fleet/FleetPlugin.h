#pragma once

#include <FleetAdministration.h>

#include <memory>
#include <string>

namespace lumora_config {

/// The plug-in of the fleet service, a package of its own.
class FleetPlugin {
public:
    /// Opens a cluster with the plug-in from the folder `plugins` or, if that is empty, from the folder beside the
    /// program. Throws Failure: Environment if there is no plug-in, Usage if the access cannot be used.
    static std::unique_ptr<ZelUnified::FleetAdministration> open(const std::string& plugins,
                                                                 const ZelUnified::FleetAccess& access);
};

} // namespace lumora_config
