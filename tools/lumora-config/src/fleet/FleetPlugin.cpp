#include "FleetPlugin.h"

#include "host/HostFolders.h"
#include "output/Failure.h"

#include <kyr/FileUtils.h>
#include <kyr/SharedLibrary.h>

#include <stdexcept>

namespace lumora_config {

namespace {

using Open = decltype(&OpenFleetAdministration);

Open findFunction(const std::string& plugins) {
    const auto path = findPluginFolder(plugins) + KyrCoreUtils::FileUtils::FileSeparator() + LUMORA_FLEET_LIBRARY;
    try {
        return reinterpret_cast<Open>(KyrCoreUtils::SharedLibrary(path).find("OpenFleetAdministration"));
    } catch (const std::runtime_error& error) {
        throw Failure(ExitCode::Environment,
                      std::string("the fleet service's plug-in cannot be loaded: ") + error.what());
    }
}

} // namespace

std::unique_ptr<ZelUnified::FleetAdministration> FleetPlugin::open(const std::string& plugins,
                                                                   const ZelUnified::FleetAccess& access) {
    const auto function = findFunction(plugins);
    std::unique_ptr<ZelUnified::FleetAdministration> opened;
    try {
        function(access, opened);
    } catch (const std::runtime_error& error) {
        throw Failure(ExitCode::Usage, error.what());
    }
    return opened;
}

} // namespace lumora_config
