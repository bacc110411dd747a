#include "ProgramModule.h"

#include "HostFolders.h"
#include "output/Failure.h"

#include <kyr/FileUtils.h>
#include <kyr/SharedLibrary.h>

#include <stdexcept>

namespace lumora_config {

void* findInModule(const std::string& library, const std::string& function, const std::string& pluginDirectory) {
    auto folders = listPluginFolders();
    if (!pluginDirectory.empty()) {
        folders.push_back(pluginDirectory);
    }
    const auto path = findFolder(folders, library, "module") + KyrCoreUtils::FileUtils::FileSeparator() + library;
    try {
        return KyrCoreUtils::SharedLibrary(path).find(function);
    } catch (const std::runtime_error& error) {
        throw Failure(ExitCode::Environment, std::string("a part of the program cannot be loaded: ") + error.what());
    }
}

} // namespace lumora_config
